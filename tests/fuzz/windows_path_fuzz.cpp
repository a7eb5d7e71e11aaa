// Arithmetic of paths, wildcards, path variables, and the names of a numbered series.
//
// Input: a path; a second one, which is also the wildcard pattern; then up to eight path variables,
// each "name=value".

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "document/path_variables.h"
#include "document/trailing_number.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/windows_path.h"
#include "fuzz/fuzz_support.h"
#include "tool/setup_script.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostVariables = 8;
// What resolving one variable may cost: its text grows by 1 MiB at most, in strings that double.
constexpr std::size_t kMostGrowth = std::size_t{4} << 20;

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool HasSeparator(std::string_view text) { return std::ranges::any_of(text, IsSeparator); }

void CheckComponents(std::string_view path) {
  const std::string name = FileName(path);
  const std::string parent = ParentFolder(path);
  Require(!HasSeparator(name), "a file name holds no separator");
  Require(path.ends_with(name), "a path ends in its file name");
  Require(path.starts_with(parent), "a path begins with its directory");
  Require(parent.empty() || !IsSeparator(parent.back()), "a directory ends in no separator");
  Require(FileName(name) == name || name.find(':') != std::string::npos,
          "a file name is its own file name");

  const std::string base = BaseName(path);
  const std::string extension = Extension(path);
  const bool has_dot = name.find('.') != std::string::npos;
  Require((has_dot ? base + "." + extension : base) == name,
          "base name and extension are the name");
  Require(extension.find('.') == std::string::npos, "an extension holds no dot");

  if (IsPlainFileName(path)) {
    Require(name == path && parent.empty(), "a plain file name has no directory");
    Require(!IsAbsolutePath(path) && FullPath(path) == path, "a plain file name goes nowhere");
  }
}

void CheckTidying(std::string_view path, std::string_view other) {
  const std::string tidy = NormalizeDirectory(path);
  Require(NormalizeDirectory(tidy) == tidy, "a tidy directory stays as it is");
  Require(tidy.size() <= path.size(), "tidying adds nothing");
  Require(tidy.find('/') == std::string::npos, "a tidy directory has backslashes");

  const std::string full = FullPath(path);
  Require(FullPath(full) == full, "a full path is its own full path");
  Require(full.find('/') == std::string::npos, "a full path has backslashes");
  if (IsAbsolutePath(full)) {
    for (std::string_view rest = full; !rest.empty();) {
      const std::string_view part = TakeUntil(&rest, '\\');
      const bool is_share = full.starts_with("\\\\");
      Require(is_share || part != "..", "an absolute path does not go up");
    }
  }
  const std::string from = FullPathFrom(path, other);
  Require(FullPath(from) == from, "a path taken from a directory is a full path");
}

// By the definition, one row of the table of all prefixes after the other.
bool MatchesByTable(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  std::vector<bool> row(name.size() + 1);
  row[0] = true;
  for (const char mask : pattern) {
    std::vector<bool> next(name.size() + 1);
    next[0] = mask == '*' && row[0];
    for (std::size_t at = 1; at <= name.size(); ++at) {
      const bool one = mask == '?' || name[at - 1] == mask;
      next[at] = mask == '*' ? row[at] || next[at - 1] : row[at - 1] && one;
    }
    row = std::move(next);
  }
  return row.back();
}

void CheckWildcard(std::string_view name, std::string_view pattern) {
  constexpr std::size_t kMost = 300;
  const bool matches = MatchesWildcard(name, pattern);
  if (name.size() > kMost || pattern.size() > kMost) return;
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  // "?" is a character there and a byte here.
  if (!std::ranges::all_of(name, is_ascii)) return;
  Require(matches == MatchesByTable(FoldCase(name), FoldCase(pattern)),
          "a name matches exactly when the definition says so");
}

void CheckVariables(std::string_view path, const std::vector<std::string_view>& parts) {
  PathVariableList variables;
  for (std::size_t i = 2; i < parts.size(); ++i) {
    std::string_view value = parts[i];
    const std::string_view name = TakeUntil(&value, '=');
    // Names stand in angle brackets, as the studio and the settings file make them.
    SetPathVariable(variables, "<" + std::string(name) + ">", value);
  }
  std::string resolved;
  if (const auto error = ErrorFrom([&] { resolved = FromVariableForm(variables, path); })) {
    Require(*error == ErrorNumber::kOutOfMemory, "only too long a text is refused");
  } else if (path.find('<') == std::string_view::npos) {
    Require(resolved == path, "a text without variables stays as it is");
  }
  const std::string whole = ToVariableForm(variables, path, VariableForm::kWholePath);
  Require(whole.ends_with("\\" + FileName(path)), "the file name is kept in variable form");
  static_cast<void>(ToVariableForm(variables, path, VariableForm::kDirectoryOnly));
}

void CheckSeries(std::string_view text) {
  const std::string next = IncrementTrailingNumber(text);
  const bool has_number = !text.empty() && text.back() >= '0' && text.back() <= '9';
  Require((next != text) == has_number, "only a number is counted up");
  Require(next.size() - text.size() <= 1, "counting up adds one digit at most");
}

void FuzzWindowsPath(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, 2 + kMostVariables);
  const std::string_view path = parts[0];
  const std::string_view other = parts.size() > 1 ? parts[1] : parts[0];
  const Allocations allocations;
  CheckComponents(path);
  CheckTidying(path, other);
  CheckWildcard(path.substr(0, 4096), other.substr(0, 4096));
  CheckVariables(path, parts);
  CheckSeries(path);
  // A text may grow to some length by what its variables stand for, whatever that of the input is.
  allocations.RequireAtMost(input.size(), 100, "paths take memory as their length",
                            /*always=*/kMostVariables * kMostGrowth);
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzWindowsPath(txs::fuzz::AsText(data, size));
  return 0;
}
