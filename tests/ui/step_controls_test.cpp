#include "ui/step_controls.h"
