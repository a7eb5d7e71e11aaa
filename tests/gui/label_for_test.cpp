#include "ui/label_for.h"
