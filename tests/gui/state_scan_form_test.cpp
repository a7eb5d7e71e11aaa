#include "ui/state_scan_form.h"
