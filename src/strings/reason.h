// Why something failed, in the program's own words: texts 1800 to 1899 of the string table.
//
// What the system says (`strerror`, `FormatMessage`) comes in the language of the process, and so
// do these: an error is put into words where it is found, far below whoever shows it, and the words
// then travel with it as they are.
#pragma once

#include <string>
#include <vector>

namespace txs {

// In the order of their texts.
enum class Reason : long {
  kOutOfMemory = 1800,
  kFileNotFound,
  kFolderNotFound,
  kNoSuchDrive,
  kNoFileName,
  kNotAcceptedByWindows,
  kOnNoDrive,
  kOnNoDriveOrShare,
  kNetworkPath,
  kIsAFolder,
  kIsAFile,
  kIsAWholeDrive,
  kNotAFolder,
  kNoOrdinaryFile,
  kReadOnly,
  kOntoItself,
  kTooLargeToRead,
  kNoUtf8Byte,
  kHighByteFirst,
  kZeroBytes,
  kProfileTooLarge,
  kUnwritableKey,
  kUnwritableSection,
  kUnwritableLineBreak,
  kMalformedText,
  kHalfCharacter,
  kZeroCharacters,
  kNoRegistryHeader,
  kNotForTheRegistry,
  kRegistryIsBusy,
  kNoOpenProject,
  kAnswerIsNoText,
  kFileDialogFailed,
  kWindowsError,
  kValueTooLong,
  kCommaInRow,
  kLineBreakInRow,
  kBlanksInRow,
  kEmptyIniName,
  kNoProjectDirectory,
  kSettingsNotRead,
  kSettingsChanged,
  kNumberTooLarge,
  kNoNumber,
  kNoCompletePath,
  kWouldBeDeleted,
  kChangedDuringRun,
  kLiesOnTheDisk,
  kArchiveIsShorter,
  kKeyIsMissing,
  kNoNumberOfFiles,
  kNoDesignerProject,
};

// 1033 is English, which holds until something else is said; every other number is German. For the
// whole process, from any thread.
void SetReasonLanguage(long language_id);

// The text, without line break or full stop; parameter 1 is the first.
[[nodiscard]] std::string Words(Reason reason, const std::vector<std::string>& parameters = {});

}  // namespace txs
