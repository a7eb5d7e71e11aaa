#include "ui/info_form.h"
