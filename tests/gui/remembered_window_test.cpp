#include "ui/remembered_window.h"
