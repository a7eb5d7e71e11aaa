#include "ui/window_memory.h"
