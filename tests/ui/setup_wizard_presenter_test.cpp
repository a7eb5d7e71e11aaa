#include "ui/setup_wizard_presenter.h"
