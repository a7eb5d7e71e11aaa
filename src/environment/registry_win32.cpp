#include "environment/registry_win32.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr REGSAM kView = KEY_WOW64_32KEY;
constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

HKEY RootOf(Hive hive) {
  switch (hive) {
    case Hive::kClassesRoot:
      return HKEY_CLASSES_ROOT;
    case Hive::kCurrentUser:
      return HKEY_CURRENT_USER;
    default:
      return HKEY_LOCAL_MACHINE;
  }
}

std::string Shown(Hive hive, std::string_view key) {
  const char* const root = hive == Hive::kClassesRoot   ? "HKEY_CLASSES_ROOT"
                           : hive == Hive::kCurrentUser ? "HKEY_CURRENT_USER"
                                                        : "HKEY_LOCAL_MACHINE";
  return std::string(root) + "\\" + std::string(key);
}

// An open key; closed by its destructor.
class Key {
 public:
  Key() = default;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  // 0 or the error.
  [[nodiscard]] LSTATUS Open(Hive hive, std::string_view key, REGSAM access) {
    return RegOpenKeyExW(RootOf(hive), ToWide(key).c_str(), 0, access | kView, &key_);
  }
  [[nodiscard]] LSTATUS Create(Hive hive, std::string_view key, DWORD* disposition) {
    return RegCreateKeyExW(RootOf(hive), ToWide(key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_SET_VALUE | kView, nullptr, &key_, disposition);
  }
  [[nodiscard]] HKEY Get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

[[noreturn]] void ThrowUnwritable(const std::string& what, std::string_view text) {
  ThrowAbout(ErrorNumber::kInvalidCall, what,
             Words(Reason::kNotForTheRegistry, {std::string(text)}));
}

bool IsHoldable(std::string_view text) {
  return IsUtf8(text) && text.find('\0') == std::string_view::npos;
}

void RequireKey(Hive hive, std::string_view key) {
  bool is_holdable = IsHoldable(key);
  for (std::size_t start = 0; is_holdable && start <= key.size();) {
    const std::size_t end = std::min(key.find('\\', start), key.size());
    const std::size_t length = ToWide(key.substr(start, end - start)).size();
    is_holdable = length >= 1 && length <= kLongestKeyName;
    start = end + 1;
  }
  if (!is_holdable) ThrowUnwritable(Shown(hive, ""), key);
}

}  // namespace

std::optional<RegistryValue> WindowsRegistry::Read(Hive hive, std::string_view key,
                                                   std::string_view name) const {
  Key opened;
  if (opened.Open(hive, key, KEY_QUERY_VALUE) != ERROR_SUCCESS) return std::nullopt;
  const std::wstring wide_name = ToWide(name);
  std::string bytes(256, '\0');
  for (;;) {
    DWORD type = REG_NONE;
    auto size = static_cast<DWORD>(bytes.size());
    const LSTATUS error = RegQueryValueExW(opened.Get(), wide_name.c_str(), nullptr, &type,
                                           reinterpret_cast<BYTE*>(bytes.data()), &size);
    if (error == ERROR_MORE_DATA) {  // another process may make it longer meanwhile
      bytes.resize(std::max<std::size_t>(size, bytes.size() * 2));
      continue;
    }
    if (error != ERROR_SUCCESS) return std::nullopt;
    bytes.resize(size);
    if (type == REG_DWORD) {
      std::uint32_t number = 0;
      if (bytes.size() != sizeof number) return std::nullopt;
      std::memcpy(&number, bytes.data(), sizeof number);
      return number;
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) return std::nullopt;
    // Whoever wrote it may have left out the zero at its end, or written more behind it.
    std::string text = Utf16ToUtf8(std::string_view(bytes).substr(0, bytes.size() / 2 * 2));
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
  }
}

std::vector<std::string> WindowsRegistry::Subkeys(Hive hive, std::string_view key) const {
  std::vector<std::string> names;
  Key opened;
  if (opened.Open(hive, key, KEY_ENUMERATE_SUB_KEYS) != ERROR_SUCCESS) return names;
  for (DWORD i = 0;; ++i) {
    std::array<wchar_t, kLongestKeyName + 1> name = {};
    auto length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(opened.Get(), i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return names;
    }
    names.push_back(ToUtf8({name.data(), length}));
  }
}

void WindowsRegistry::Write(Hive hive, std::string_view key, std::string_view name,
                            const RegistryValue& value) {
  RequireKey(hive, key);
  const std::wstring wide_name = ToWide(name);
  if (!IsHoldable(name) || wide_name.size() > kLongestValueName) {
    ThrowUnwritable(Shown(hive, key), name);
  }
  const auto* const text = std::get_if<std::string>(&value);
  if (text != nullptr && !IsHoldable(*text)) ThrowUnwritable(Shown(hive, key), *text);
  // What is there already keeps its type: REG_EXPAND_SZ stays.
  if (Read(hive, key, name) == value) return;

  Key created;
  DWORD disposition = 0;
  LSTATUS error = created.Create(hive, key, &disposition);
  if (error != ERROR_SUCCESS) ThrowWindowsError(static_cast<DWORD>(error), Shown(hive, key));
  if (text != nullptr) {
    const std::wstring wide = ToWide(*text);
    error = RegSetValueExW(created.Get(), wide_name.c_str(), 0, REG_SZ,
                           reinterpret_cast<const BYTE*>(wide.c_str()),
                           static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t)));
  } else {
    const DWORD number = std::get<std::uint32_t>(value);
    error = RegSetValueExW(created.Get(), wide_name.c_str(), 0, REG_DWORD,
                           reinterpret_cast<const BYTE*>(&number), sizeof number);
  }
  if (error == ERROR_SUCCESS) return;
  if (disposition == REG_CREATED_NEW_KEY) {
    RegDeleteKeyExW(RootOf(hive), ToWide(key).c_str(), kView, 0);
  }
  ThrowWindowsError(static_cast<DWORD>(error), Shown(hive, key));
}

void WindowsRegistry::RemoveKey(Hive hive, std::string_view key) {
  RequireKey(hive, key);
  LSTATUS error = ERROR_SUCCESS;
  {
    Key opened;
    // RegDeleteTreeW knows no view: it deletes what is in a key that was opened in the right one.
    error =
        opened.Open(hive, key, DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE);
    if (error == ERROR_SUCCESS) error = RegDeleteTreeW(opened.Get(), nullptr);
  }
  if (error == ERROR_SUCCESS) {
    error = RegDeleteKeyExW(RootOf(hive), ToWide(key).c_str(), kView, 0);
  }
  if (error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
    return;
  }
  ThrowWindowsError(static_cast<DWORD>(error), Shown(hive, key));
}

}  // namespace txs
