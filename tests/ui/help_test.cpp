#include "ui/help.h"
