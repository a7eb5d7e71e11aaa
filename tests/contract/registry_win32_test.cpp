// What only the registry of Windows has: its types, its 32-bit view, and its limits.

#include "environment/registry_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <optional>
#include <string>

#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "fakes/scratch_registry_win32.h"

namespace txs {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr Hive kUser = Hive::kCurrentUser;

template <typename Action>
ErrorNumber NumberThrownBy(const Action& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    EXPECT_THAT(error.Description(), HasSubstr("HKEY_CURRENT_USER"));
    return error.Number();
  }
  return ErrorNumber{};
}

class WindowsRegistryTest : public testing::Test {
 protected:
  // As another program would, with any type and any bytes.
  static void Put(const wchar_t* name, DWORD type, const void* bytes, DWORD size) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"k", &key), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(bytes), size),
              ERROR_SUCCESS);
    RegCloseKey(key);
  }
  static void PutText(const wchar_t* name, DWORD type, std::wstring_view text) {
    Put(name, type, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)));
  }

  ScratchRegistry scratch;
  WindowsRegistry registry;
};

TEST_F(WindowsRegistryTest, AnExpandableTextIsReadUnexpandedAndKeepsItsType) {
  PutText(L"v", REG_EXPAND_SZ, std::wstring_view(L"%SystemRoot%\\x\0", 15));

  EXPECT_EQ(registry.Read(kUser, "k", "v"), RegistryValue("%SystemRoot%\\x"));

  registry.Write(kUser, "k", "v", "%SystemRoot%\\x");
  DWORD type = 0;
  ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"k", L"v", RRF_RT_ANY | RRF_NOEXPAND, &type, nullptr,
                         nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(type, DWORD{REG_EXPAND_SZ});
}

TEST_F(WindowsRegistryTest, ATextThatIsEndedBadlyIsReadAsFarAsItGoes) {
  PutText(L"none", REG_SZ, L"abc");
  PutText(L"two", REG_SZ, std::wstring_view(L"abc\0\0", 5));
  PutText(L"more", REG_SZ, std::wstring_view(L"abc\0def\0", 8));
  Put(L"odd", REG_SZ, L"abc", 7);
  Put(L"empty", REG_SZ, nullptr, 0);

  for (const char* name : {"none", "two", "more", "odd"}) {
    EXPECT_EQ(registry.Read(kUser, "k", name), RegistryValue("abc")) << name;
  }
  EXPECT_EQ(registry.Read(kUser, "k", "empty"), RegistryValue(""));
}

TEST_F(WindowsRegistryTest, ALongTextIsReadWhole) {
  const std::string text(100'000, 'x');

  registry.Write(kUser, "k", "v", text);

  EXPECT_EQ(registry.Read(kUser, "k", "v"), RegistryValue(text));
}

TEST_F(WindowsRegistryTest, ValuesOfOtherTypesAreNotThere) {
  const std::uint64_t number = 5;
  Put(L"qword", REG_QWORD, &number, sizeof number);
  Put(L"binary", REG_BINARY, &number, sizeof number);
  Put(L"short", REG_DWORD, &number, 2);
  PutText(L"multi", REG_MULTI_SZ, std::wstring_view(L"a\0b\0\0", 5));

  for (const char* name : {"qword", "binary", "short", "multi"}) {
    EXPECT_FALSE(registry.Read(kUser, "k", name)) << name;
  }
}

TEST_F(WindowsRegistryTest, WhatTheRegistryCannotHoldIsRefused) {
  const std::string zero("a\0b", 3);
  const auto write = [&](std::string_view key, std::string_view name, const std::string& text) {
    return NumberThrownBy([&] { registry.Write(kUser, key, name, text); });
  };

  EXPECT_EQ(write("", "v", "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("a\\\\b", "v", "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("a\\", "v", "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write(std::string(256, 'k'), "v", "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write(zero, "v", "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("k", zero, "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("k", std::string(20'000, 'n'), "x"), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("k", "v", zero), ErrorNumber::kInvalidCall);
  EXPECT_EQ(write("k", "v", "\xFF"), ErrorNumber::kInvalidCall);
  EXPECT_THAT(registry.Subkeys(kUser, "k"), IsEmpty());
  EXPECT_FALSE(registry.Read(kUser, "k", "v"));
}

TEST_F(WindowsRegistryTest, AWholeHiveIsNotRemoved) {
  registry.Write(kUser, "k", "v", "1");

  EXPECT_EQ(NumberThrownBy([&] { registry.RemoveKey(kUser, ""); }), ErrorNumber::kInvalidCall);
  EXPECT_EQ(registry.Read(kUser, "k", "v"), RegistryValue("1"));
}

// A value below HKEY_LOCAL_MACHINE that every Windows has in the view of its programs.
std::optional<RegistryValue> ProgramFilesIn(REGSAM view) {
  wchar_t text[MAX_PATH] = {};
  DWORD size = sizeof text;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows\\CurrentVersion", 0,
                    KEY_QUERY_VALUE | view, &key) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  const LSTATUS error =
      RegGetValueW(key, nullptr, L"ProgramFilesDir", RRF_RT_REG_SZ, nullptr, text, &size);
  RegCloseKey(key);
  if (error != ERROR_SUCCESS) return std::nullopt;
  return ToUtf8(text);
}

// Only reads, and so may look at the real registry.
TEST(WindowsRegistry, TheViewIsThatOf32BitPrograms) {
  const WindowsRegistry registry;

  const auto seen = registry.Read(
      Hive::kLocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir");

  EXPECT_EQ(seen, ProgramFilesIn(KEY_WOW64_32KEY));
  BOOL is_wow64 = FALSE;
  const bool has_two_views =
      sizeof(void*) == 8 || (IsWow64Process(GetCurrentProcess(), &is_wow64) && is_wow64);
  EXPECT_EQ(seen != ProgramFilesIn(KEY_WOW64_64KEY), has_two_views);
}

}  // namespace
}  // namespace txs
