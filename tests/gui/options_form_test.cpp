#include "ui/options_form.h"
