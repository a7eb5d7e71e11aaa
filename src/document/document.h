// Front door of `document`: the setup document (file list and companions, path variables, step
// settings), its settings file and its checks, and the Application that holds the process-wide
// state. Promises: knows no form and no run; a failed save never harms the settings file.
#pragma once

#include "document/application.h"
#include "document/document_check.h"
#include "document/file_list.h"
#include "document/medium.h"
#include "document/path_variables.h"
#include "document/project_lock.h"
#include "document/settings_file.h"
#include "document/setup_document.h"
#include "document/step_settings.h"
