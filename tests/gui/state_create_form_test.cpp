#include "ui/state_create_form.h"
