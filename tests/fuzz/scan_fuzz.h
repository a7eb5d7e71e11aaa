// What the targets that run a whole Scan share: the computer it runs on, and what every Scan keeps.
#pragma once

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "environment/code_page.h"
#include "fuzz/fuzz_support.h"
#include "scan/scan_world.h"

namespace txs::fuzz {

// The project "Demo" with a few components that may be named, registered and found.
class ScanFuzzWorld : public ScanWorld {
 public:
  ScanFuzzWorld() {
    for (const char* name : {"a.dll", "b.dll", "c.ocx", "d.exe"}) AddSystemFile(name);
    RegisterLibrary(kGuid1, "1.0", "C:\\Windows\\System32\\a.dll");
    RegisterLibrary(kGuid2, "2.1", "C:\\Windows\\System32\\c.ocx");
    files.AddFile("C:\\Demo\\e.dll", "e");
  }

  // Runs the Scan and requires what holds for every one. `input_bytes` is how much it had to read.
  ScanResult RunChecked(std::size_t input_bytes) {
    const std::size_t files_before = files.AllFiles().size();
    files.diary.clear();
    const Allocations allocations;

    const ScanResult result = Run();

    allocations.RequireAtMost(input_bytes + 64, 20000, "a Scan takes work as what it reads");
    Require(files.diary.size() <= 2000 + input_bytes * 8, "a Scan asks the disk as it reads");
    static const std::set<std::string> kReading = {"FileExists",     "FolderExists", "Stamp",
                                                   "OpenForReading", "Read",         "Seek",
                                                   "List",           "Drives",       "FinalPath"};
    for (const auto& [operation, path] : files.diary) {
      Require(kReading.contains(operation), "a Scan writes nothing");
    }
    Require(files.AllFiles().size() == files_before, "a Scan leaves the files as they are");
    CheckRows();
    CheckMissing(result);
    CheckNextProcess(result);
    return result;
  }

 private:
  // The settings file keeps the rows and nothing else; the next Scan has nothing to add to them.
  void CheckNextProcess(const ScanResult& result) {
    if (!result.succeeded) return;
    const SetupDocument document = application.document;
    const std::vector<Message> shown = messages.shown;
    const std::vector<MemoryFileSystem::DiaryEntry> diary = files.diary;
    application.document.extra_todo_lines.clear();
    application.document.unfinished_files.clear();

    Require(Run().succeeded, "what can be scanned can be scanned again");
    Require(application.document.files.Rows() == document.files.Rows(),
            "a second Scan adds no row");

    application.document = document;
    messages.shown = shown;
    files.diary = diary;
  }

  void CheckRows() const {
    std::set<std::string> sources;
    for (const FileRow& row : application.document.files.Rows()) {
      Require(sources.insert(FoldCase(row.source)).second, "a Scan lists a file once");
      Require(row.length_bytes.has_value(), "a Scan lists only files that are there");
      Require(!row.destination.empty(), "a listed file has a destination");
      Require(
          row.registration.size() == 1 && row.registration[0] >= '0' && row.registration[0] <= '5',
          "a listed file has a kind of registration");
    }
    std::set<std::string> lines;
    for (const std::string& line : application.document.extra_todo_lines) {
      Require(!line.empty() && lines.insert(FoldCase(line)).second, "a Scan notes a line once");
    }
  }

  static void CheckMissing(const ScanResult& result) {
    std::set<std::string> names;
    for (const MissingItem& item : result.missing) {
      Require(names.insert(FoldCase(item.name)).second, "a Scan misses a thing once");
      Require(!item.chain.empty() && EqualNoCase(item.chain.back(), item.name),
              "the chain of what is missing leads to it");
      Require(item.chain.size() <= 80, "a chain is no longer than can be read");
    }
  }
};

// What a Scan came to, to be compared with that of another.
inline std::vector<std::string> OutcomeOf(const ScanFuzzWorld& world, const ScanResult& result) {
  std::vector<std::string> outcome = {result.succeeded ? "succeeded" : "failed",
                                      world.application.document.program_name};
  for (const FileRow& row : world.application.document.files.Rows()) {
    outcome.push_back(row.source + "," + row.destination + "," + row.registration);
  }
  for (const std::string& line : world.ToDo()) outcome.push_back("line " + line);
  for (const MissingItem& item : result.missing) outcome.push_back(ChainText(item.chain));
  for (const Message& message : world.messages.shown) {
    outcome.push_back(std::to_string(message.id) + " " + message.prompt);
  }
  return outcome;
}

}  // namespace txs::fuzz
