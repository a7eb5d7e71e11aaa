#include "environment/profile_files.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "environment/runtime_error.h"
#include "fakes/memory_file_system.h"

namespace txs {
namespace {

constexpr char kPath[] = "C:\\Demo\\Demo.swz";

// Counts what ProfileFiles asks of the file system, and can make writing fail.
class WatchedFiles : public MemoryFileSystem {
 public:
  std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    ++opened;
    if (unreadable) throw RuntimeError(ErrorNumber::kPermissionDenied, std::string(path));
    return MemoryFileSystem::OpenForReading(path);
  }
  void ReplaceWhole(std::string_view path, std::string_view bytes) override {
    ++replaced;
    if (full) throw RuntimeError(ErrorNumber::kDiskFull, std::string(path));
    MemoryFileSystem::ReplaceWhole(path, bytes);
  }

  mutable int opened = 0;
  int replaced = 0;
  bool unreadable = false;
  bool full = false;
};

class ProfileFilesTest : public testing::Test {
 protected:
  ProfileFilesTest() { files_.MakeFolder("C:\\Demo"); }

  void PutFile(std::string_view bytes) {
    files_.ReplaceWhole(kPath, bytes);
    files_.replaced = 0;
  }

  WatchedFiles files_;
  ProfileFiles profiles_{files_};
};

TEST_F(ProfileFilesTest, AFileIsReadOnceForManyKeys) {
  PutFile("[s]\r\nk=1\r\n");

  for (int i = 0; i < 100; ++i) EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "1");

  EXPECT_EQ(files_.opened, 1);
}

TEST_F(ProfileFilesTest, EverySpellingOfAPathIsTheSameFile) {
  PutFile("[s]\r\nk=1\r\n");

  (void)profiles_.Open(kPath);
  (void)profiles_.Open("c:/DEMO//demo.SWZ");

  EXPECT_EQ(files_.opened, 1);
}

TEST_F(ProfileFilesTest, AFileThatChangedIsReadAgain) {
  PutFile("[s]\r\nk=1\r\n");
  (void)profiles_.Open(kPath);

  PutFile("[s]\r\nk=22\r\n");

  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "22");
}

TEST_F(ProfileFilesTest, AMissingFileIsAnEmptyDocument) {
  EXPECT_EQ(profiles_.Open(kPath).Bytes(), "");
  EXPECT_EQ(profiles_.Open("C:\\No\\Folder\\x.ini").Bytes(), "");
  EXPECT_EQ(profiles_.Open("").Bytes(), "");
}

TEST_F(ProfileFilesTest, AFileTooLargeToBeAProfileFileIsRefusedUnread) {
  PutFile(std::string((std::size_t{64} << 20) + 1, ' '));

  try {
    (void)profiles_.Open(kPath);
    FAIL();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kOutOfMemory);
  }
  EXPECT_EQ(files_.opened, 0);
}

// They were read as files without any entry, and a save put ANSI lines into them.
TEST_F(ProfileFilesTest, Utf16ThatIsNotMarkedAsLittleEndianIsRefused) {
  using namespace std::string_literals;
  for (const std::string& bytes : {"\xFE\xFF\0[\0s\0]"s, "\xFE\xFF"s, "[\0s\0]\0\r\0\n\0"s,
                                   "\0[\0s\0]"s, "[s]\r\nk=1\r\n\0"s}) {
    PutFile(bytes);

    for (const bool changes : {false, true}) {
      try {
        if (changes) {
          profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "2"); });
        } else {
          (void)profiles_.Open(kPath);
        }
        ADD_FAILURE() << "no error was thrown";
      } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
        EXPECT_TRUE(error.Description().starts_with(kPath)) << error.Description();
      }
    }
    EXPECT_EQ(files_.ReadWhole(kPath), bytes);
  }
}

TEST_F(ProfileFilesTest, Utf16MarkedAsLittleEndianIsRead) {
  using namespace std::string_literals;
  PutFile("\xFF\xFE[\0s\0]\0\r\0\n\0k\0=\0001\0"s);

  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "1");
}

TEST_F(ProfileFilesTest, AFileThatAppearsOrDisappearsIsNoticed) {
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), std::nullopt);
  PutFile("[s]\r\nk=1\r\n");
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "1");
  files_.RemoveFile(kPath);
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), std::nullopt);
}

TEST_F(ProfileFilesTest, AFileThatCannotBeReadIsAnError) {
  PutFile("[s]\r\nk=1\r\n");
  files_.unreadable = true;

  try {
    (void)profiles_.Open(kPath);
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPermissionDenied);
  }
}

// It was read as an empty file, so that a save could have thrown away what it holds.
TEST_F(ProfileFilesTest, AFileThatWasThereAMomentAgoIsNotTakenForAMissingOne) {
  PutFile("[s]\r\nk=1\r\n");
  files_.FailPath(kPath, "OpenForReading", ErrorNumber::kFileNotFound);

  try {
    (void)profiles_.Open(kPath);
    ADD_FAILURE() << "no error was thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kFileNotFound);
  }
}

TEST_F(ProfileFilesTest, AFolderIsNoProfileFile) {
  EXPECT_THROW((void)profiles_.Open("C:\\Demo"), RuntimeError);
}

TEST_F(ProfileFilesTest, AChangeIsWrittenAndKept) {
  PutFile("; mine\r\n[s]\r\nk=1\r\n");

  profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "2"); });

  EXPECT_EQ(files_.ReadWhole(kPath), "; mine\r\n[s]\r\nk=2\r\n");
  files_.opened = 0;
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "2");
  EXPECT_EQ(files_.opened, 0);
}

// The clocks of some file systems go in steps of two seconds.
TEST_F(ProfileFilesTest, AChangeIsMadeToWhatTheFileHoldsNowWhateverItsTimeSays) {
  PutFile("[s]\r\nk=1\r\nl=1\r\n");
  (void)profiles_.Open(kPath);
  const FileStamp before = *files_.Stamp(kPath);
  files_.AddFile(kPath, "[s]\r\nk=1\r\nl=9\r\n", before.last_write);
  ASSERT_EQ(files_.Stamp(kPath), before);

  profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "2"); });

  EXPECT_EQ(files_.ReadWhole(kPath), "[s]\r\nk=2\r\nl=9\r\n");
}

TEST_F(ProfileFilesTest, AChangeCreatesTheFile) {
  profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "1"); });

  EXPECT_EQ(files_.ReadWhole(kPath), "[s]\r\nk=1\r\n");
}

TEST_F(ProfileFilesTest, AnEditThatChangesNothingWritesNothing) {
  PutFile("[s]\r\nk=1\r\n");

  profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "1"); });
  profiles_.Change("C:\\Demo\\other.ini",
                   [](ProfileDocument& document) { document.RemoveSection("s"); });

  EXPECT_EQ(files_.replaced, 0);
  EXPECT_FALSE(files_.FileExists("C:\\Demo\\other.ini"));
}

TEST_F(ProfileFilesTest, AnEditThatFailsLeavesFileAndDocumentAsTheyWere) {
  PutFile("[s]\r\nk=1\r\n");

  EXPECT_THROW(profiles_.Change(kPath,
                                [](ProfileDocument& document) {
                                  document.Set("s", "k", "2");
                                  document.Set("s", "l", "a\nb");
                                }),
               RuntimeError);

  EXPECT_EQ(files_.ReadWhole(kPath), "[s]\r\nk=1\r\n");
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "1");
}

TEST_F(ProfileFilesTest, AWriteThatFailsLeavesFileAndDocumentAsTheyWere) {
  PutFile("[s]\r\nk=1\r\n");
  files_.full = true;

  EXPECT_THROW(
      profiles_.Change(kPath, [](ProfileDocument& document) { document.Set("s", "k", "2"); }),
      RuntimeError);

  EXPECT_EQ(files_.ReadWhole(kPath), "[s]\r\nk=1\r\n");
  EXPECT_EQ(profiles_.Open(kPath).Value("s", "k"), "1");
}

}  // namespace
}  // namespace txs
