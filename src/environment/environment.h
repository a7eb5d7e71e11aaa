// Front door of `environment`: the platform behind small interfaces, the studio's installation
// settings, and the project types. Promises: no message is shown here, no text of the string table
// is known here, nothing above this folder is included; every failing operation throws
// RuntimeError.
#pragma once

#include "environment/archiver.h"
#include "environment/clock.h"
#include "environment/code_page.h"
#include "environment/file_locks.h"
#include "environment/file_system.h"
#include "environment/installation.h"
#include "environment/message_boxes.h"
#include "environment/platform.h"
#include "environment/profile_document.h"
#include "environment/profile_files.h"
#include "environment/project_configurator.h"
#include "environment/project_type.h"
#include "environment/registry.h"
#include "environment/runtime_error.h"
#include "environment/special_folders.h"
#include "environment/system_tools.h"
#include "environment/version_info.h"
#include "environment/windows_path.h"
