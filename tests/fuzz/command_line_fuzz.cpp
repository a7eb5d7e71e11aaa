// The command line of the wizard.
//
// Input: the arguments, one a line.

#include <string>
#include <string_view>
#include <vector>

#include "environment/windows_path.h"
#include "fuzz/fuzz_support.h"
#include "startup/command_line.h"

namespace txs::fuzz {
namespace {

std::string Joined(std::string_view input) {
  std::vector<std::string> arguments = {"TXSetupWizard"};
  while (!input.empty()) arguments.emplace_back(TakeUntil(&input, '\n').substr(0, 65536));
  std::vector<const char*> pointers;
  pointers.reserve(arguments.size());
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  return JoinArguments(static_cast<int>(pointers.size()), pointers.data());
}

void FuzzCommandLine(std::string_view input) {
  const Allocations allocations;
  const std::string line = Joined(input);
  const CommandLine command = ParseCommandLine(line);
  allocations.RequireAtMost(input.size(), 200, "a command line takes memory as its length");

  const std::size_t begin = line.find_first_not_of(' ');
  using Kind = CommandLine::Kind;
  Require((command.kind == Kind::kEmpty) == (begin == std::string::npos),
          "only an empty command line is empty");
  const bool names_project = command.kind == Kind::kProject || command.kind == Kind::kUnattended;
  if (!names_project) {
    Require(command.project_file.empty() && command.project_name.empty() &&
                command.project_directory.empty(),
            "what names no project leaves nothing behind");
    if (command.kind == Kind::kRefused) {
      Require(line[begin] == '-' || line[begin] == '/', "only a switch is refused");
    }
    return;
  }
  const std::string switch_text = line.substr(begin, 3);
  const bool is_switch =
      switch_text == "/c=" || switch_text == "/C=" || switch_text == "-c=" || switch_text == "-C=";
  Require((command.kind == Kind::kUnattended) == is_switch, "/c= and nothing else is unattended");

  Require(command.project_name.find_first_of("\\/") == std::string::npos,
          "a project's name is no path");
  const std::string& directory = command.project_directory;
  Require(directory.empty() || line.find(directory) != std::string::npos,
          "the directory is the one that was given");
  if (directory.empty()) {
    Require(command.project_file == command.project_name, "a bare name stays bare");
    return;
  }
  Require(command.project_file == directory + "\\" + command.project_name + ".txs",
          "the project file lies in its directory");
  // The file that was found out can be given in turn, in quotes and, where it begins with none of
  // its own, without.
  std::vector<std::string> texts = {"/c=\"" + command.project_file + '"'};
  if (!command.project_file.starts_with('"')) texts.push_back("/c=" + command.project_file);
  for (const std::string& text : texts) {
    const CommandLine again = ParseCommandLine(text);
    Require(again.kind == Kind::kUnattended && again.project_name == command.project_name &&
                again.project_directory == directory && again.project_file == command.project_file,
            "a project file as the argument names the same project");
  }
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzCommandLine(txs::fuzz::AsText(data, size));
  return 0;
}
