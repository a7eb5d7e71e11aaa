#include "ui/setup_wizard_form.h"
