// Front door of `create`: the Create run with its stages and its view. Promises: the same document
// and files give the same bytes; no stage throws; sources are only read; a failed run leaves what
// it made and says what failed.
#pragma once

#include "create/compression.h"
#include "create/create_run.h"
#include "create/create_view.h"
#include "create/disk_distribution.h"
#include "create/setup_control_file.h"
#include "create/setup_kit.h"
