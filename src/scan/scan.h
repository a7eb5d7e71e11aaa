// Front door of `scan`: a project on the developer's disk becomes the complete file list.
//
// Promises: rows that stood in the list keep every edit; a second Scan adds nothing; a cancelled
// one leaves what it had found; whatever cannot be found is named to the user with the chain that
// needs it; damaged input ends in a message. Reads projects, dependency files and the registry,
// writes none of them. Knows no form and nothing of Create.
#pragma once

#include "scan/dependency_resolution.h"
#include "scan/scan_run.h"
#include "scan/scan_view.h"
#include "scan/search_file_dialog.h"
#include "scan/search_file_model.h"
