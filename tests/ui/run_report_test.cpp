#include "ui/run_report.h"
