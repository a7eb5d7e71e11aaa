// The checks that run on leaving a step and before Create.
#pragma once

#include <string>

#include "document/application.h"

namespace txs {

enum class Step : int {
  kAll = 0,
  kTexts = 1,
  kDirectories = 2,
  kFunctions = 3,
  kFiles = 4,
  kMedium = 5
};

// Checks what belongs to `step`, or everything in the order of the steps: background pictures exist
// (1707), the two destination directories are given (1708), directory names begin with a drive
// (1712), every listed source file exists (1709), every row has a destination (1710). The first
// failure shows its message, marks the rows concerned, and returns false. On the way every row's
// length is taken afresh from its source file, and the step-5 figures (count, bytes, disks) with
// it. `wrong`, where it is given, is then the text among the document's step settings that the
// message is about, null when it is about rows. Never throws.
[[nodiscard]] bool CheckDocument(Application& application, Step step,
                                 const std::string** wrong = nullptr);

// Takes every row's length afresh from its source file, then the figures of step 5. No message, no
// mark: a file that is not there, or whose path cannot be resolved, has no length and counts as
// empty.
void MeasureFiles(Application& application);

// Takes the figures of step 5 from the rows: count, bytes, and the estimate of the disks needed.
void RefreshFigures(Application& application);

}  // namespace txs
