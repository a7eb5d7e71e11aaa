#include "scan/type_libraries.h"

#include <gtest/gtest.h>

#include "scan/scan_world.h"

namespace txs {
namespace {

class TypeLibraries : public testing::Test {
 protected:
  std::string File(const std::string& version, const std::string& locale = "0") {
    return TypeLibraryFile(world.platform.tools, kGuid1, version, locale);
  }

  ScanWorld world;
};

TEST_F(TypeLibraries, AnswerTheRegisteredFile) {
  world.RegisterLibrary(kGuid1, "2.0", "C:\\Lib\\a.tlb");

  EXPECT_EQ(File("2.0"), "C:\\Lib\\a.tlb");
}

TEST_F(TypeLibraries, AnswerNothingForWhatIsNotRegistered) {
  EXPECT_EQ(File("2.0"), "");
  EXPECT_EQ(TypeLibraryFile(world.platform.tools, "", "2.0", "0"), "");
}

TEST_F(TypeLibraries, FallBackToTheFirstRegisteredVersionThatFits) {
  world.RegisterLibrary(kGuid1, "1.0", "C:\\old.tlb");
  world.RegisterLibrary(kGuid1, "2.9", "C:\\low.tlb");
  world.RegisterLibrary(kGuid1, "2.C", "C:\\first.tlb");
  world.RegisterLibrary(kGuid1, "2.B", "C:\\second.tlb");

  EXPECT_EQ(File("2.A"), "C:\\first.tlb");
}

TEST_F(TypeLibraries, DoNotFallBackToAnotherMajorVersion) {
  world.RegisterLibrary(kGuid1, "3.0", "C:\\new.tlb");

  EXPECT_EQ(File("2.0"), "");
}

TEST_F(TypeLibraries, AreLookedUpInTheLocaleAsked) {
  world.RegisterLibrary(kGuid1, "2.0", "C:\\english.tlb", "409");

  EXPECT_EQ(File("2.0", "409"), "C:\\english.tlb");
  EXPECT_EQ(File("2.0", "0"), "");
}

TEST(TypeLibraryVersion, ComparesHexadecimalNumbers) {
  EXPECT_TRUE(TypeLibraryVersionFits("1.9", "1.a"));
  EXPECT_TRUE(TypeLibraryVersionFits("a.1", "A.1"));
  EXPECT_TRUE(TypeLibraryVersionFits("1.A", "1.10"));
  EXPECT_FALSE(TypeLibraryVersionFits("1.10", "1.A"));
  EXPECT_FALSE(TypeLibraryVersionFits("1.0", "11.0"));
}

TEST(TypeLibraryVersion, FitsNothingThatIsNoVersion) {
  for (const char* text : {"", "x", "1.x", ".", "1.2.3", "999999999999.0", "-1.0"}) {
    EXPECT_FALSE(TypeLibraryVersionFits(text, text)) << text;
  }
}

struct RegisteredPath {
  const char* registered;
  const char* file;
};
class RegisteredPaths : public testing::TestWithParam<RegisteredPath> {};

TEST_P(RegisteredPaths, YieldTheFile) {
  ScanWorld world;

  EXPECT_EQ(FileOfRegisteredPath(world.platform.tools, GetParam().registered), GetParam().file);
}

INSTANTIATE_TEST_SUITE_P(
    TypeLibraries, RegisteredPaths,
    testing::Values(
        RegisteredPath{"C:\\Windows\\System32\\vbscript.dll\\3",
                       "C:\\Windows\\System32\\vbscript.dll"},
        RegisteredPath{"%SystemRoot%\\System32\\stdole2.tlb", "C:\\Windows\\System32\\stdole2.tlb"},
        RegisteredPath{"%COMMONPROGRAMFILES%\\x.dll", "C:\\Program Files\\Common Files\\x.dll"},
        RegisteredPath{"%SystemDrive%\\x.dll", "C:\\x.dll"},
        RegisteredPath{"\"C:\\Program Files\\x.dll\"", "C:\\Program Files\\x.dll"},
        RegisteredPath{" \"%windir%\\x.dll\\1\" ", "C:\\Windows\\x.dll"},
        RegisteredPath{"%Nobody%\\%windir%\\x.dll", "%Nobody%\\C:\\Windows\\x.dll"},
        RegisteredPath{"C:\\100%\\x.dll", "C:\\100%\\x.dll"},
        RegisteredPath{"C:\\Files\\3", "C:\\Files\\3"}, RegisteredPath{"bare.tlb", "bare.tlb"},
        RegisteredPath{"", ""}, RegisteredPath{"\"", ""}));

}  // namespace
}  // namespace txs
