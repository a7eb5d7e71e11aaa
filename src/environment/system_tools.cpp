#include "environment/system_tools.h"

#include <charconv>

#include "environment/code_page.h"
#include "environment/version_info.h"

namespace txs {

std::string SystemTools::RegistryText(Hive hive, std::string_view key, std::string_view name,
                                      std::string_view default_value) const {
  const std::optional<RegistryValue> value = registry_.Read(hive, key, name);
  if (!value) return std::string(default_value);
  if (const auto* number = std::get_if<std::uint32_t>(&*value)) return std::to_string(*number);
  return std::get<std::string>(*value);
}

std::int64_t SystemTools::RegistryNumber(Hive hive, std::string_view key, std::string_view name,
                                         std::int64_t default_value) const {
  const std::optional<RegistryValue> value = registry_.Read(hive, key, name);
  if (!value) return default_value;
  if (const auto* number = std::get_if<std::uint32_t>(&*value)) return *number;
  return ParseWholeNumber(std::get<std::string>(*value)).value_or(default_value);
}

void SystemTools::WriteRegistry(Hive hive, std::string_view key, std::string_view name,
                                const RegistryValue& value) {
  registry_.Write(hive, key, name, value);
}

std::vector<std::string> SystemTools::RegistrySubkeys(Hive hive, std::string_view key) const {
  return registry_.Subkeys(hive, key);
}

void SystemTools::RemoveRegistryKey(Hive hive, std::string_view key) {
  registry_.RemoveKey(hive, key);
}

std::string SystemTools::ReadText(std::string_view section, std::string_view key,
                                  std::string_view default_value, std::string_view path) {
  return profiles_.Open(path).Value(section, key).value_or(std::string(default_value));
}

std::int64_t SystemTools::ReadInteger(std::string_view section, std::string_view key,
                                      std::int64_t default_value, std::string_view path,
                                      std::int64_t minimum, std::int64_t maximum) {
  const std::optional<std::string> text = profiles_.Open(path).Value(section, key);
  if (!text) return default_value;
  const std::optional<std::int64_t> number = ParseWholeNumber(*text);
  return number && *number >= minimum && *number <= maximum ? *number : default_value;
}

std::vector<ProfileEntry> SystemTools::ReadSection(std::string_view section,
                                                   std::string_view path) {
  return profiles_.Open(path).Section(section);
}

std::vector<std::string> SystemTools::ReadNumberedList(std::string_view section, int key_digits,
                                                       std::string_view path) {
  const ProfileDocument& document = profiles_.Open(path);
  std::vector<std::string> values;
  for (;;) {
    std::optional<std::string> value =
        document.Value(section, NumberedKey(values.size() + 1, key_digits));
    if (!value || value->empty()) return values;
    values.push_back(*std::move(value));
  }
}

void SystemTools::WriteText(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view path) {
  profiles_.Change(path, [&](ProfileDocument& document) { document.Set(section, key, value); });
}

void SystemTools::RemoveSection(std::string_view section, std::string_view path) {
  profiles_.Change(path, [&](ProfileDocument& document) { document.RemoveSection(section); });
}

std::string SystemTools::FileVersionText(std::string_view path) const {
  return FileVersion(files_, path);
}

std::string NumberedKey(std::size_t number, int digits) {
  std::string key = std::to_string(number);
  const auto width = static_cast<std::size_t>(digits);
  if (key.size() < width) key.insert(0, width - key.size(), '0');
  return key;
}

std::optional<std::int64_t> ParseWholeNumber(std::string_view text) {
  text = TrimBlanks(text);
  // from_chars knows "-" but not "+".
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

}  // namespace txs
