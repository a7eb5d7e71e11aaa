#include "scan/vb_project_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/project_type.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "scan/scan_captions.h"
#include "scan/type_libraries.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr long kMessageScanning = 908;
constexpr long kMessageTypeLibraryMissing = 914;
constexpr long kMessageInsertableObject = 916;
constexpr long kMessageProgramMissing = 1711;

constexpr char kServerProgram[] = "TXEManager.exe";
constexpr std::size_t kLongestLineShown = 512;

// Lines of a text file of Visual Basic, decoded one by one. They end in CR LF, LF or CR.
class TextLines {
 public:
  explicit TextLines(std::string bytes) : bytes_(std::move(bytes)) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (std::string_view(bytes_).substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      next_ = kByteOrderMark.size();
      is_utf8_ = IsUtf8(bytes_);
    }
  }

  [[nodiscard]] std::optional<std::string> Next() {
    if (next_ >= bytes_.size()) return std::nullopt;
    const std::size_t end = std::min(bytes_.find_first_of("\r\n", next_), bytes_.size());
    const std::string_view line = std::string_view(bytes_).substr(next_, end - next_);
    next_ = end + 1;
    if (end + 1 < bytes_.size() && bytes_[end] == '\r' && bytes_[end + 1] == '\n') ++next_;
    return is_utf8_ ? std::string(line) : AnsiToUtf8(line);
  }

 private:
  std::string bytes_;
  std::size_t next_ = 0;
  bool is_utf8_ = false;
};

struct KeyAndValue {
  std::string_view key;
  std::string_view value;
};

// Nothing is trimmed: "Type = Exe" has the key "Type ", which nobody asks for.
std::optional<KeyAndValue> SplitLine(std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return KeyAndValue{line.substr(0, equals), line.substr(equals + 1)};
}

// The pair of quotes around the value; quotes within stay.
std::string_view WithoutQuotes(std::string_view value) {
  const std::string_view trimmed = TrimBlanks(value);
  if (trimmed.size() < 2 || trimmed.front() != '"' || trimmed.back() != '"') return trimmed;
  return trimmed.substr(1, trimmed.size() - 2);
}

// The text up to the next `mark`, taken off the front of `rest` together with the mark; all of it
// when there is none.
std::string_view TakeUntil(std::string_view& rest, char mark) {
  const std::size_t end = std::min(rest.find(mark), rest.size());
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

std::string Hexadecimal(std::uint32_t number) {
  std::string text(8, '0');
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number, 16);
  text.resize(static_cast<std::size_t>(end - text.data()));
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

// A decimal number in hexadecimal; what already has hexadecimal letters stays as it is.
std::string ToHexadecimal(std::string_view text) {
  text = TrimBlanks(text);
  if (text.empty()) return "0";
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, 10);
  if (error == std::errc() && stopped == end) return Hexadecimal(number);
  const bool is_hexadecimal = std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  });
  if (error == std::errc::result_out_of_range) {
    throw RuntimeError(ErrorNumber::kOverflow, Words(Reason::kNumberTooLarge, {std::string(text)}));
  }
  if (!is_hexadecimal) {
    throw RuntimeError(ErrorNumber::kTypeMismatch, Words(Reason::kNoNumber, {std::string(text)}));
  }
  return std::string(text);
}

std::string VersionInHexadecimal(std::string_view version) {
  const std::string_view major_part = TakeUntil(version, '.');
  return ToHexadecimal(major_part) + "." + ToHexadecimal(version);
}

// "*\Aother.vbp": a component that is a project of its own, built in the same group.
bool IsProjectReference(std::string_view value) {
  return value.size() >= 3 && EqualNoCase(value.substr(0, 3), "*\\A");
}

std::string Shortened(std::string text) {
  if (text.size() <= kLongestLineShown) return text;
  std::size_t end = kLongestLineShown;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text + "...";
}

}  // namespace

bool VisualBasicProjectReader::ReadGroup(std::string_view file_name) {
  Application& application = session_.App();
  const std::string path = FullPathFrom(application.project.directory, file_name);
  session_.chain_root = {FileName(path)};
  std::vector<std::string> projects;
  bool succeeded = AtWorkBorder(application, kMessageScanning, path, [&] {
    TextLines lines(application.platform.files.ReadWhole(path));
    while (const std::optional<std::string> line = lines.Next()) {
      const std::optional<KeyAndValue> entry = SplitLine(*line);
      if (!entry) continue;
      if (!EqualNoCase(entry->key, "StartupProject") && !EqualNoCase(entry->key, "Project")) {
        continue;
      }
      // Blanks around a name are not part of it, and a group that ends in "Project=" names nothing.
      const std::string_view member = TrimBlanks(entry->value);
      if (member.empty()) continue;
      std::string project =
          IsAbsolutePath(member) ? std::string(member) : JoinPath(ParentFolder(file_name), member);
      if (members_.insert(FoldCase(FullPathFrom(application.project.directory, project))).second) {
        projects.push_back(std::move(project));
      }
    }
    return true;
  });

  const std::vector<std::string> group_chain = session_.chain_root;
  for (const std::string& project : projects) {
    if (session_.CancelledMeanwhile()) break;
    session_.chain_root = group_chain;
    const bool project_succeeded = ReadMember(project);
    succeeded = succeeded && project_succeeded;
  }
  session_.chain_root = group_chain;
  return succeeded;
}

bool VisualBasicProjectReader::ReadProject(std::string_view file_name) {
  session_.chain_root.clear();
  return ReadMember(file_name);
}

bool VisualBasicProjectReader::ReadMember(std::string_view file_name) {
  Application& application = session_.App();
  ScanView& view = session_.View();
  Project project;
  project.path = FullPathFrom(application.project.directory, file_name);
  project.directory = ParentFolder(project.path);
  session_.chain_root.push_back(FileName(project.path));

  view.StageStarted(ScanStage::kVisualBasic);
  view.StageCaption(ScanStage::kVisualBasic, kCaptionVisualBasic);
  // The lines clear the result as they go; an error on the way ends the project with false.
  const bool read = AtWorkBorder(application, kMessageScanning, project.path, [&] {
    if (session_.CancelledMeanwhile()) return true;
    AddPseudoFile(project, "VB Runtime");
    if (!session_.CancelledMeanwhile()) ReadLines(project);
    return true;
  });
  const bool succeeded = read && project.succeeded;
  view.StageEnded(ScanStage::kVisualBasic, succeeded);
  return succeeded;
}

void VisualBasicProjectReader::ReadLines(Project& project) {
  Application& application = session_.App();
  ScanView& view = session_.View();
  if (!application.platform.files.FileExists(project.path)) {
    session_.RecordMissing(FileName(project.path), session_.chain_root);
  }
  TextLines lines(application.platform.files.ReadWhole(project.path));
  while (const std::optional<std::string> line = lines.Next()) {
    view.ShowFile(Shortened(*line));
    ReadLine(project, *line);
    if (session_.CancelledMeanwhile()) return;
  }

  view.StageCaption(ScanStage::kVisualBasic, kCaptionExtraFunctions);
  if (application.document.steps.use_jet) AddPseudoFile(project, "Jet Support");
  if (application.document.steps.use_odbc) AddPseudoFile(project, "ODBC Direct Support");
  if (session_.CancelledMeanwhile()) return;
  AddProgram(project);
}

void VisualBasicProjectReader::ReadLine(Project& project, std::string_view line) {
  const std::optional<KeyAndValue> entry = SplitLine(line);
  if (!entry) {
    if (!line.empty() && line.front() == '[') project.in_section = true;
    return;
  }
  if (EqualNoCase(entry->key, "Reference")) {
    ReadReference(project, entry->value);
  } else if (EqualNoCase(entry->key, "Object")) {
    ReadObject(project, entry->value);
  } else if (!project.in_section) {
    // Add-ins keep sections of their own behind the project's keys, which may repeat these.
    if (EqualNoCase(entry->key, "Type")) project.type = entry->value;
    if (EqualNoCase(entry->key, "ExeName32")) project.program_name = WithoutQuotes(entry->value);
    if (EqualNoCase(entry->key, "Path32")) project.program_path = WithoutQuotes(entry->value);
  }
}

// *\G{guid}#version#locale#path#description. The path is where the library lay on the computer that
// wrote the line, so only the registry counts.
void VisualBasicProjectReader::ReadReference(Project& project, std::string_view value) {
  if (IsProjectReference(value)) {
    ReportProjectReference(project, value, kMessageTypeLibraryMissing);
    return;
  }
  std::string_view rest = value.substr(std::min<std::size_t>(3, value.size()));
  Library library;
  library.guid = TakeUntil(rest, '#');
  library.version = TakeUntil(rest, '#');
  library.locale = TakeUntil(rest, '#');
  const std::string_view path = TakeUntil(rest, '#');
  library.description = rest.empty() ? path : rest;
  AddLibrary(project, library);
}

// {guid}#version#locale; filename. Version and locale are decimal here, but hexadecimal in the
// registry.
void VisualBasicProjectReader::ReadObject(Project& project, std::string_view value) {
  if (value.find('#') == std::string_view::npos) {
    if (IsProjectReference(value)) {
      ReportProjectReference(project, value, kMessageInsertableObject);
      return;
    }
    if (!unresolved_.insert(FoldCase(value)).second) return;
    Application& application = session_.App();
    application.messages.ShowMessage(application.texts.Compose(
        kMessageInsertableObject, {std::string(value)}, kButtonsOk | kIconInformation));
    return;
  }
  Library library;
  library.guid = TakeUntil(value, '#');
  library.version = VersionInHexadecimal(TakeUntil(value, '#'));
  const std::string_view locale = TrimBlanks(TakeUntil(value, ';'));
  library.locale = ToHexadecimal(locale);
  library.locale_as_written = locale;
  library.description = TrimBlanks(value);
  AddLibrary(project, library);
}

void VisualBasicProjectReader::AddLibrary(Project& project, const Library& library) {
  const SystemTools& tools = session_.App().platform.tools;
  std::string path = TypeLibraryFile(tools, library.guid, library.version, library.locale);
  if (path.empty() && !library.locale_as_written.empty()) {
    // Some writers put the locale down in hexadecimal although the rest is decimal ("409").
    path = TypeLibraryFile(tools, library.guid, library.version, library.locale_as_written);
  }
  if (!path.empty()) {
    AddComponent(project, std::move(path));
    return;
  }
  std::string name = library.guid;
  if (!library.version.empty()) name += " " + library.version;
  if (!library.description.empty()) name += " (" + library.description + ")";
  ReportUnresolved(library.guid, name);
}

void VisualBasicProjectReader::ReportUnresolved(const std::string& guid, const std::string& name) {
  if (!unresolved_.insert(FoldCase(name)).second) return;
  Application& application = session_.App();
  // Two versions of one library are two names and one GUID, which is all that the box shows.
  if (unresolved_guids_.insert(FoldCase(guid)).second) {
    ShowWarning(application, kMessageTypeLibraryMissing, {guid});
  }
  std::vector<std::string> chain = session_.chain_root;
  chain.push_back(name);
  session_.RecordMissing(name, std::move(chain));
}

// Nothing is registered for a project. One of the same group brings its own program; any other is
// not scanned, so the user has to know.
void VisualBasicProjectReader::ReportProjectReference(const Project& project,
                                                      std::string_view value, long message_id) {
  const std::string name(value.substr(3));
  if (members_.contains(FoldCase(FullPathFrom(project.directory, name)))) return;
  if (!unresolved_.insert(FoldCase(value)).second) return;
  Application& application = session_.App();
  if (message_id == kMessageInsertableObject) {
    application.messages.ShowMessage(
        application.texts.Compose(message_id, {std::string(value)}, kButtonsOk | kIconInformation));
  } else {
    ShowWarning(application, message_id, {name});
  }
  std::vector<std::string> chain = session_.chain_root;
  chain.push_back(name);
  session_.RecordMissing(name, std::move(chain));
}

std::string VisualBasicProjectReader::CompletePath(std::string path) const {
  Application& application = session_.App();
  const std::string& directory = application.project.directory;
  if (path.find_first_of("\\/") == std::string::npos) {
    const SystemTools& tools = application.platform.tools;
    for (const std::string& folder :
         {directory, tools.Folder(SpecialFolder::kSystem), tools.Folder(SpecialFolder::kWindows)}) {
      if (folder.empty()) continue;
      std::string candidate = FullPathFrom(folder, path);
      if (application.platform.files.FileExists(candidate)) return candidate;
    }
    return path;
  }
  return FullPathFrom(directory, path);
}

void VisualBasicProjectReader::AddComponent(Project& project, std::string path) {
  path = CompletePath(std::move(path));
  if (session_.IsSystemFileName(path)) return;
  if (!resolver_.AddFromBothSources(path)) project.succeeded = false;
}

void VisualBasicProjectReader::AddPseudoFile(Project& project, std::string_view name) {
  if (!resolver_.AddFromBothSources(name)) project.succeeded = false;
}

void VisualBasicProjectReader::AddProgram(Project& project) {
  Application& application = session_.App();
  session_.View().StageCaption(ScanStage::kVisualBasic, kCaptionProgram);
  const std::string folder = FullPathFrom(project.directory, project.program_path);
  const std::string program = FullPathFrom(folder, project.program_name);
  const long studio_type = application.project.type;

  if (project.program_name.empty() || !application.platform.files.FileExists(program)) {
    ShowWarning(application, kMessageProgramMissing, {});
    if (!project.program_name.empty()) {
      std::vector<std::string> chain = session_.chain_root;
      chain.push_back(project.program_name);
      session_.RecordMissing(project.program_name, std::move(chain));
    }
    project.succeeded = false;
  } else if (EqualNoCase(project.type, "Exe") &&
             (studio_type == kProjectTypeSingle || studio_type == kProjectTypeClient)) {
    session_.SetProgramName(FileName(program));
    if (!resolver_.AddFile(program, Force::kNo, /*dependency_file=*/{})) project.succeeded = false;
  } else if (EqualNoCase(project.type, "OleDll")) {
    if (!resolver_.AddFile(program, Force::kNo, /*dependency_file=*/{})) project.succeeded = false;
  }
  if (studio_type == kProjectTypeServer) session_.SetProgramName(kServerProgram);
}

}  // namespace txs
