#include "ui/file_grid.h"
