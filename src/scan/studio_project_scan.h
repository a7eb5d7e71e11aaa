// Stage 1 of every Scan: what a studio project needs on the target computer besides its forms.
#pragma once

#include "scan/dependency_resolution.h"
#include "scan/scan_session.h"

namespace txs {

// Adds the product runtime for the project's type, the project file, its registration lines, the
// database, and, for the types that run a server, server components and ".rct" files; for all types
// the drivers of device1 to device5. Puts the predefined runtime setups into use that this runtime
// brings, as far as their programs are there. Sets the main program of Server projects.
//
// False after a message (908, or 907 about one file) and when Cancel was pressed. A driver that is
// not registered is a message (915) and recorded as missing, but no failure.
[[nodiscard]] bool ScanStudioProject(ScanSession& session, DependencyResolver& resolver);

// Puts the predefined runtime setups into use whose programs are listed, for what is added without
// a Scan. Throws RuntimeError when a description cannot be read.
void UseListedSetups(ScanSession& session);

}  // namespace txs
