// Front door of `startup`: command line, start routine, ShowMessage with its log. Promises: an
// unattended run opens no window and ends with exit code 1 exactly when its Create failed.
#pragma once

#include "startup/command_line.h"
#include "startup/message_routing.h"
#include "startup/start_routine.h"
