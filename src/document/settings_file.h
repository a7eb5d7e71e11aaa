// The settings file <project name>.swz: read into the document, written back, cleared. See
// docs/formats/settings-file.md.
#pragma once

#include "document/application.h"

namespace txs {

// Fills document and steps from the file of the current project; lists that the document held are
// replaced. Absent file, section or key: the default. The path variables must be built before.
// Throws RuntimeError when the file exists and cannot be read; the document then holds the
// defaults, and `settings_source` keeps a save from putting them in place of the file. A project
// without a directory has the defaults and no file. Message 1936 names every numbered list that a
// gap cuts short.
void ReadSettings(Application& application);

// Writes steps and document to the file and clears the changed flag. Atomic: on failure the file is
// the old one, byte for byte, and the flag stays. Comments, order, the hidden sections,
// `ServicePack` and unknown keys outside [path], [ini] and [file] stay as they are. What could not
// be read back as it is, is refused: RuntimeError kInvalidCall names the row whose source or
// destination holds a comma, which separates the fields, or whose source or registration begins or
// ends in blanks; also for line breaks, an empty INI file name, and characters that the code page
// lacks. Throws RuntimeError when the file cannot be read or replaced, and kAlreadyExists when what
// is in it was never read, or when another program has changed something since that would be
// replaced. A file that has gone is written anew. kPathNotFound: the project has no directory.
void WriteSettings(Application& application);

// The work routine around WriteSettings: false after a message. That is 901 when the project has no
// directory, 1930 when another process works on it, 1931 when the settings were not read at its
// opening, 1933 when another program has changed them since they were read or saved, else 911.
// Never throws.
[[nodiscard]] bool SaveSettings(Application& application);

// Sets document and steps to the defaults; writes nothing, but the next save may replace whatever
// the file holds by then. Path variables stay.
void ClearSettings(Application& application);

// Brings the path variables <UserDirN> in line with the user-directory list of step 2, and
// <TempDir> with the temporary directory of the current project.
void ExtendPathVariables(Application& application);

}  // namespace txs
