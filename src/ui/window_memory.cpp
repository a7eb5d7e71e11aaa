#include "ui/window_memory.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <variant>

#include "environment/installation.h"
#include "environment/system_tools.h"

namespace txs {
namespace {

// "800,600,0,120,80": width, height, 1 when maximized, then the columns. One value, so that the
// registry is written once per window and never holds half of a change.
constexpr char kPlacement[] = "Placement";

constexpr std::int64_t kLargestSize = 32767;

std::string KeyOf(std::string_view form) {
  return std::string(kWizardKey) + "\\Windows\\" + std::string(form);
}

std::string ToText(const RememberedWindow& window) {
  std::string text = std::to_string(window.width) + "," + std::to_string(window.height) + "," +
                     (window.maximized ? "1" : "0");
  for (const int column : window.columns) text += "," + std::to_string(column);
  return text;
}

std::optional<int> ParseSize(std::string_view text) {
  const std::optional<std::int64_t> size = ParseWholeNumber(text);
  if (!size || *size < 1 || *size > kLargestSize) return std::nullopt;
  return static_cast<int>(*size);
}

// Takes the text up to the next comma off `text`; nothing when it is used up.
std::optional<std::string_view> TakeField(std::optional<std::string_view>& text) {
  if (!text) return std::nullopt;
  const std::size_t comma = text->find(',');
  const std::string_view field = text->substr(0, comma);
  if (comma == std::string_view::npos) {
    text.reset();
  } else {
    text->remove_prefix(comma + 1);
  }
  return field;
}

std::optional<RememberedWindow> FromText(std::string_view placement) {
  std::optional<std::string_view> rest = placement;
  const std::optional<int> width = ParseSize(TakeField(rest).value_or(""));
  const std::optional<int> height = ParseSize(TakeField(rest).value_or(""));
  const std::optional<std::string_view> maximized = TakeField(rest);
  if (!width || !height || (maximized != "0" && maximized != "1")) return std::nullopt;

  RememberedWindow window{*width, *height, maximized == "1", {}};
  while (const std::optional<std::string_view> field = TakeField(rest)) {
    const std::optional<int> column = ParseSize(*field);
    if (!column) return std::nullopt;
    window.columns.push_back(*column);
  }
  return window;
}

}  // namespace

std::optional<RememberedWindow> RecallWindow(const Registry& registry, std::string_view form) {
  try {
    const std::optional<RegistryValue> value =
        registry.Read(Hive::kCurrentUser, KeyOf(form), kPlacement);
    if (!value || !std::holds_alternative<std::string>(*value)) return std::nullopt;
    return FromText(std::get<std::string>(*value));
  } catch (const std::exception&) {
    // A window of its default size is no reason to fail.
    return std::nullopt;
  }
}

void RememberWindow(Registry& registry, std::string_view form, const RememberedWindow& window) {
  try {
    if (RecallWindow(registry, form) == window) return;
    registry.Write(Hive::kCurrentUser, KeyOf(form), kPlacement, ToText(window));
  } catch (const std::exception&) {
    // The next session opens the window in its default size.
  }
}

}  // namespace txs
