#include "environment/project_type.h"

#include <optional>

#include "environment/system_tools.h"

namespace txs {
namespace {

struct TypeName {
  long number;
  const char* name;
};

constexpr TypeName kTypeNames[] = {
    {kProjectTypeSingle, "Single"},
    {kProjectTypeServer, "Server"},
    {kProjectTypeClient, "Client"},
    {kProjectTypeTerminalServer, "Terminal Server"},
    {kProjectTypeTerminalClient, "Terminal Client"},
    {kProjectTypeGroup, "Group"},
};

// The name of a number that a `long` may be too narrow for.
std::string NameOf(std::int64_t number) {
  for (const TypeName& type : kTypeNames) {
    if (type.number == number) return type.name;
  }
  return {};
}

}  // namespace

long ProjectTypeNumber(std::string_view name) {
  for (const TypeName& type : kTypeNames) {
    if (name == type.name) return type.number;
  }
  return 0;
}

std::string ProjectTypeName(long number) { return NameOf(number); }

std::string ProjectTypeConvert(std::string_view text) {
  const std::optional<std::int64_t> number = ParseWholeNumber(text);
  return number ? NameOf(*number) : std::to_string(ProjectTypeNumber(text));
}

long ProjectTypeFromRegistry(std::string_view text) {
  const std::optional<std::int64_t> number = ParseWholeNumber(text);
  return ProjectTypeNumber(number ? NameOf(*number) : std::string(text));
}

}  // namespace txs
