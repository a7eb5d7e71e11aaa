// What only the registry file of a host has: encodings, the 32-bit view, other processes, files
// that cannot be used.

#include "environment/registry_host.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "environment/runtime_error.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Hive kUser = Hive::kCurrentUser;
constexpr Hive kMachine = Hive::kLocalMachine;
constexpr Hive kClasses = Hive::kClassesRoot;
constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

template <typename Action>
ErrorNumber NumberThrownBy(const Action& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return ErrorNumber{};
}

class HostRegistryTest : public testing::Test {
 protected:
  void Put(std::string_view bytes) const {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  void PutKeys(std::string_view keys) const { Put(std::string(kHeader) + std::string(keys)); }
  [[nodiscard]] std::string Bytes() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
  }

  TempFolder folder;
  std::string path = folder.Path() / "registry.reg";
};

TEST_F(HostRegistryTest, AMissingFileIsEmptyAndMadeByTheFirstWrite) {
  HostRegistry registry(path);
  EXPECT_FALSE(std::filesystem::exists(path));

  registry.Write(kUser, "Software\\Demo", "a", "x");

  EXPECT_EQ(Bytes(),
            std::string(kHeader) + "[HKEY_CURRENT_USER\\Software\\Demo]\r\n\"a\"=\"x\"\r\n");
  EXPECT_THAT(Names(), ElementsAre("registry.reg", "registry.reg.lock"));
}

TEST_F(HostRegistryTest, ReadingMakesNoFile) {
  HostRegistry registry(path);

  static_cast<void>(registry.Read(kUser, "Software", "x"));
  registry.RemoveKey(kUser, "Software\\Demo");

  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(HostRegistryTest, AMissingFolderIsAnEmptyRegistryThatCannotBeWritten) {
  HostRegistry registry(folder.Path() / "none" / "registry.reg");

  EXPECT_FALSE(registry.Read(kUser, "Software", "x"));
  EXPECT_EQ(NumberThrownBy([&] { registry.Write(kUser, "Software", "x", "1"); }),
            ErrorNumber::kPathNotFound);
}

TEST_F(HostRegistryTest, AUtf16ExportIsReadAndKeptInItsEncoding) {
  std::string bytes = "\xFF\xFE";
  for (const char c : std::string(kHeader) + "[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"\xE4\"\r\n") {
    bytes += c;
    bytes += '\0';
  }
  Put(bytes);
  HostRegistry registry(path);

  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("\xC3\xA4"));
  registry.Write(kUser, "k", "b", "\xC3\xBC");

  EXPECT_TRUE(Bytes().starts_with(bytes));
  EXPECT_THAT(Bytes(), HasSubstr(std::string("\"\0\xFC\0\"\0", 6)));
}

TEST_F(HostRegistryTest, AnAnsiExportRefusesACharacterThatItLacksAndStays) {
  const std::string bytes = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"\xE4\"\r\n";
  Put(bytes);
  HostRegistry registry(path);

  EXPECT_EQ(NumberThrownBy([&] { registry.Write(kUser, "k", "b", "\xC4\x8C"); }),
            ErrorNumber::kInvalidCall);

  EXPECT_EQ(Bytes(), bytes);
  EXPECT_FALSE(registry.Read(kUser, "k", "b"));
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("\xC3\xA4"));
}

TEST_F(HostRegistryTest, ValuesBelowWow6432NodeAreSeenFirstAndOthersFallBack) {
  PutKeys(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Demo]\r\n\"a\"=\"64\"\r\n\"only64\"=\"64\"\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Demo]\r\n\"a\"=\"32\"\r\n");
  const HostRegistry registry(path);

  EXPECT_EQ(registry.Read(kMachine, "Software\\Demo", "a"), RegistryValue("32"));
  EXPECT_EQ(registry.Read(kMachine, "Software\\Demo", "only64"), RegistryValue("64"));
  EXPECT_EQ(registry.Read(kMachine, "Software\\Wow6432Node\\Demo", "a"), RegistryValue("32"));
  EXPECT_FALSE(registry.Read(kMachine, "Software\\Wow6432Node\\Demo", "only64"));
  EXPECT_FALSE(registry.Read(kMachine, "SoftwareX\\Demo", "a"));
}

TEST_F(HostRegistryTest, SubkeysOfBothViewsAreListedOnceThe32BitOnesFirst) {
  PutKeys(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\P\\One]\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\P\\Two]\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\P\\Three]\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\P\\TWO]\r\n");
  const HostRegistry registry(path);

  EXPECT_THAT(registry.Subkeys(kMachine, "Software\\P"), ElementsAre("Three", "TWO", "One"));
}

TEST_F(HostRegistryTest, WritingGoesToTheWow6432NodeKeyThatExistsElseToThePlainOne) {
  PutKeys("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Demo]\r\n\"a\"=\"1\"\r\n");
  HostRegistry registry(path);

  registry.Write(kMachine, "Software\\Demo", "b", "32");
  registry.Write(kMachine, "Software\\New", "b", "plain");

  EXPECT_EQ(Bytes(), std::string(kHeader) +
                         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Demo]\r\n\"a\"=\"1\"\r\n"
                         "\"b\"=\"32\"\r\n\r\n[HKEY_LOCAL_MACHINE\\Software\\New]\r\n"
                         "\"b\"=\"plain\"\r\n");
}

TEST_F(HostRegistryTest, ANewKeyIsMadeInTheWow6432NodeTreeThatHasItsParent) {
  PutKeys(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Demo\\Projects]\r\n\"a\"=\"64\"\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Demo]\r\n\"a\"=\"32\"\r\n");
  HostRegistry registry(path);

  registry.Write(kMachine, "Software\\Demo\\Projects\\One", "b", "32");
  registry.Write(kMachine, "Software\\Demo\\Projects", "b", "32");

  EXPECT_EQ(registry.Read(kMachine, "Software\\Wow6432Node\\Demo\\Projects\\One", "b"),
            RegistryValue("32"));
  EXPECT_EQ(registry.Read(kMachine, "Software\\Wow6432Node\\Demo\\Projects", "b"),
            RegistryValue("32"));
  EXPECT_EQ(registry.Read(kMachine, "Software\\Demo\\Projects", "a"), RegistryValue("64"));
}

TEST_F(HostRegistryTest, RemovingAKeyRemovesItInBothViews) {
  PutKeys(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\P\\One]\r\n\"a\"=\"1\"\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\P\\One]\r\n\"a\"=\"1\"\r\n");
  HostRegistry registry(path);

  registry.RemoveKey(kMachine, "Software\\P\\One");

  EXPECT_FALSE(registry.Read(kMachine, "Software\\P\\One", "a"));
  EXPECT_THAT(registry.Subkeys(kMachine, "Software\\P"), IsEmpty());
}

TEST_F(HostRegistryTest, ClassesAreThoseOfTheirHiveThenOfTheUserThenOfTheMachine) {
  PutKeys(
      "[HKEY_LOCAL_MACHINE\\Software\\Classes\\.a]\r\n@=\"machine\"\r\n\"m\"=\"machine\"\r\n"
      "[HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Classes\\.w]\r\n@=\"machine32\"\r\n"
      "[HKEY_LOCAL_MACHINE\\Software\\Classes\\.w]\r\n@=\"machine\"\r\n"
      "[HKEY_CURRENT_USER\\Software\\Classes\\.a]\r\n@=\"user\"\r\n\"u\"=\"user\"\r\n"
      "[HKEY_CLASSES_ROOT\\.a]\r\n@=\"root\"\r\n"
      "[HKEY_CLASSES_ROOT\\CLSID\\{1}]\r\n@=\"64\"\r\n"
      "[HKEY_CLASSES_ROOT\\Wow6432Node\\CLSID\\{1}]\r\n@=\"32\"\r\n");
  const HostRegistry registry(path);

  EXPECT_EQ(registry.Read(kClasses, ".a", ""), RegistryValue("root"));
  EXPECT_EQ(registry.Read(kClasses, ".a", "u"), RegistryValue("user"));
  EXPECT_EQ(registry.Read(kClasses, ".a", "m"), RegistryValue("machine"));
  EXPECT_EQ(registry.Read(kClasses, ".w", ""), RegistryValue("machine32"));
  EXPECT_EQ(registry.Read(kClasses, "CLSID\\{1}", ""), RegistryValue("32"));
}

TEST_F(HostRegistryTest, AWrittenClassGoesWhereItsKeyIsElseToItsOwnHive) {
  PutKeys("[HKEY_CURRENT_USER\\Software\\Classes\\.a]\r\n@=\"user\"\r\n");
  HostRegistry registry(path);

  registry.Write(kClasses, ".a", "", "new");
  registry.Write(kClasses, ".b", "", "new");

  EXPECT_EQ(Bytes(), std::string(kHeader) +
                         "[HKEY_CURRENT_USER\\Software\\Classes\\.a]\r\n@=\"new\"\r\n\r\n"
                         "[HKEY_CLASSES_ROOT\\.b]\r\n@=\"new\"\r\n");
}

TEST_F(HostRegistryTest, AFileThatChangesIsReadAgain) {
  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"1\"\r\n");
  const HostRegistry registry(path);
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));

  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"2\"\r\n");  // same length, likely the same tick
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("2"));
}

TEST_F(HostRegistryTest, AJunkFileIsRefusedAndKept) {
  const std::string junk("MZ\x90\0\x03\0\0\0\x04\0\0\0\xFF\xFF", 14);
  Put(junk);

  try {
    const HostRegistry registry(path);
    ADD_FAILURE() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kInvalidCall);
    EXPECT_THAT(error.Description(), HasSubstr(path));
  }
  EXPECT_EQ(Bytes(), junk);
}

TEST_F(HostRegistryTest, AFileThatBecomesJunkStaysAsItWasToReadersAndIsNeverOverwritten) {
  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"1\"\r\n");
  HostRegistry registry(path);

  Put("not an export");

  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
  EXPECT_EQ(NumberThrownBy([&] { registry.Write(kUser, "k", "a", "2"); }),
            ErrorNumber::kInvalidCall);
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
  EXPECT_EQ(NumberThrownBy([&] { registry.RemoveKey(kUser, "k"); }), ErrorNumber::kInvalidCall);
  EXPECT_EQ(Bytes(), "not an export");

  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"3\"\r\n");
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("3"));
}

TEST_F(HostRegistryTest, AFileThatCannotBeReadForAMomentStaysAsItWasToReaders) {
  PutKeys("[HKEY_CURRENT_USER\\k\\sub]\r\n\"a\"=\"1\"\r\n");
  const HostRegistry registry(path);

  std::filesystem::remove(path);
  std::filesystem::create_directory(path);

  EXPECT_EQ(registry.Read(kUser, "k\\sub", "a"), RegistryValue("1"));
  EXPECT_THAT(registry.Subkeys(kUser, "k"), ElementsAre("sub"));
}

TEST_F(HostRegistryTest, AFileThatIsGoneStaysAsItWasToReadersAndIsNotMadeAnew) {
  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"1\"\r\n");
  HostRegistry registry(path);

  std::filesystem::remove(path);

  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
  EXPECT_EQ(NumberThrownBy([&] { registry.Write(kUser, "k", "b", "2"); }),
            ErrorNumber::kPathFileAccess);
  EXPECT_FALSE(std::filesystem::exists(path));

  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"3\"\r\n");
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("3"));
}

TEST_F(HostRegistryTest, AFolderInPlaceOfTheFileIsRefused) {
  std::filesystem::create_directory(path);

  EXPECT_EQ(NumberThrownBy([&] { const HostRegistry registry(path); }),
            ErrorNumber::kPathFileAccess);
}

TEST_F(HostRegistryTest, AReadOnlyFileIsReadAndNotReplaced) {
  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"1\"\r\n");
  const std::string before = Bytes();
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  HostRegistry registry(path);

  EXPECT_EQ(NumberThrownBy([&] { registry.Write(kUser, "k", "a", "2"); }),
            ErrorNumber::kPathFileAccess);

  EXPECT_EQ(Bytes(), before);
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
  EXPECT_THAT(Names(), ElementsAre("registry.reg", "registry.reg.lock"));
}

TEST_F(HostRegistryTest, ReplacingKeepsThePermissionsAndALinkToTheFile) {
  const std::string real = folder.Path() / "real.reg";
  { std::ofstream(real) << kHeader; }
  ASSERT_EQ(chmod(real.c_str(), 0640), 0);
  std::filesystem::create_symlink(real, path);
  HostRegistry registry(path);

  registry.Write(kUser, "k", "a", "1");

  EXPECT_TRUE(std::filesystem::is_symlink(path));
  struct stat status = {};
  ASSERT_EQ(stat(real.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_THAT(Bytes(), HasSubstr("\"a\"=\"1\""));
}

TEST_F(HostRegistryTest, WhatAKilledProcessLeftBehindDoesNotDisturb) {
  { std::ofstream(path + ".new") << "half a fi"; }
  { std::ofstream(path + ".lock") << ""; }
  HostRegistry registry(path);

  registry.Write(kUser, "k", "a", "1");

  EXPECT_EQ(HostRegistry(path).Read(kUser, "k", "a"), RegistryValue("1"));
  EXPECT_THAT(Names(), ElementsAre("registry.reg", "registry.reg.lock"));
}

TEST_F(HostRegistryTest, WritingWhatIsThereLeavesTheFileAlone) {
  PutKeys("[HKEY_CURRENT_USER\\k]\r\n\"a\"=\"1\"\r\n");
  struct stat before = {};
  ASSERT_EQ(stat(path.c_str(), &before), 0);
  HostRegistry registry(path);

  registry.Write(kUser, "k", "a", "1");

  struct stat after = {};
  ASSERT_EQ(stat(path.c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(HostRegistryTest, AWholeHiveIsNotRemoved) {
  HostRegistry registry(path);
  registry.Write(kUser, "k", "a", "1");

  EXPECT_EQ(NumberThrownBy([&] { registry.RemoveKey(kUser, ""); }), ErrorNumber::kInvalidCall);
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
}

TEST_F(HostRegistryTest, AWriteWaitsForTheLock) {
  const int lock = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  HostRegistry registry(path);
  bool was_written_while_locked = true;

  std::thread holder([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    was_written_while_locked = std::filesystem::exists(path);
    close(lock);
  });
  registry.Write(kUser, "k", "a", "1");
  holder.join();

  EXPECT_FALSE(was_written_while_locked);
  EXPECT_EQ(registry.Read(kUser, "k", "a"), RegistryValue("1"));
}

TEST_F(HostRegistryTest, TwoProcessesWritingAtOnceLoseNothing) {
  constexpr int kValues = 40;
  const auto write_all = [&](const std::string& key) {
    HostRegistry registry(path);
    for (int i = 0; i < kValues; ++i) {
      registry.Write(kUser, key, std::to_string(i), static_cast<std::uint32_t>(i));
    }
  };

  std::vector<pid_t> children;
  for (const char* key : {"one", "two"}) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      try {
        write_all(key);
      } catch (...) {
        _exit(1);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }

  const HostRegistry registry(path);
  for (const char* key : {"one", "two"}) {
    for (int i = 0; i < kValues; ++i) {
      EXPECT_EQ(registry.Read(kUser, key, std::to_string(i)),
                RegistryValue(static_cast<std::uint32_t>(i)));
    }
  }
}

}  // namespace
}  // namespace txs
