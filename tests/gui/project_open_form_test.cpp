#include "ui/project_open_form.h"
