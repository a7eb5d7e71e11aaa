#include "document/settings_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "document/path_variables.h"
#include "document/project_lock.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr char kSetup[] = "setup";
constexpr char kProgram[] = "program";
constexpr char kPath[] = "path";
constexpr char kFunction[] = "function";
constexpr char kDestination[] = "destination";
constexpr char kIni[] = "ini";
constexpr char kHiddenIni[] = "HiddenIni";
constexpr char kFile[] = "file";
constexpr char kHiddenFile[] = "HiddenFile";

constexpr int kListKeyDigits = 2;

constexpr char kGermanStartmenuFolder[] = "Visualisierung";
constexpr char kEnglishStartmenuFolder[] = "Visualization";

constexpr long kMessageWriting = 911;
constexpr long kMessageCannotEdit = 901;
constexpr long kMessageGap = 1936;
constexpr long kMessageNotRead = 1931;
constexpr long kMessageChangedByAnother = 1933;

constexpr char kUserDirPrefix[] = "<UserDir";

// Text keys that are read and written alike. Their values in the defaults are those that the reader
// gives when the key is absent.
struct TextSetting {
  const char* section;
  const char* key;
  std::string& value;
};

std::array<TextSetting, 12> SetupAndProgramSettings(StepSettings& steps) {
  return {{
      {kSetup, "text1", steps.info.german[0]},
      {kSetup, "text2", steps.info.german[1]},
      {kSetup, "text3", steps.info.german[2]},
      {kSetup, "text21", steps.info.english[0]},
      {kSetup, "text22", steps.info.english[1]},
      {kSetup, "text23", steps.info.english[2]},
      {kSetup, "background", steps.background_picture.german},
      {kSetup, "background2", steps.background_picture.english},
      {kProgram, "group", steps.startmenu_folder.german},
      {kProgram, "group2", steps.startmenu_folder.english},
      {kProgram, "icon", steps.startmenu_link.german},
      {kProgram, "icon2", steps.startmenu_link.english},
  }};
}

std::string DefaultSetupDirectory(const Application& application) {
  return ToVariableForm(application.document.path_variables,
                        application.project.directory + "\\Setup", VariableForm::kWholePath);
}

StepSettings DefaultSteps(const Application& application) {
  const std::string& project = application.project.name;
  StepSettings steps;
  steps.startmenu_folder = {kGermanStartmenuFolder, kEnglishStartmenuFolder};
  steps.startmenu_link = {project, project};
  steps.tavix_directory = "C:\\TavixStudio";
  steps.project_directory = "C:\\" + project;
  steps.setup_directory = DefaultSetupDirectory(application);
  return steps;
}

// --- Reading

void ReadTextSetting(const ProfileDocument& settings, const char* section, const char* key,
                     std::string& value) {
  if (std::optional<std::string> text = settings.Value(section, key)) value = *std::move(text);
}

// 1, or 0 for everything else: absent, 0, not a number, out of range.
bool ReadFlag(const ProfileDocument& settings, const char* section, const char* key) {
  const std::optional<std::string> text = settings.Value(section, key);
  return text && ParseWholeNumber(*text) == 1;
}

// The number that a key is: decimal digits only, and no more than 32 bits hold.
std::optional<long> KeyNumber(std::string_view key) {
  std::int32_t number = 0;
  const char* const end = key.data() + key.size();
  if (key.empty() || key.front() == '-') return std::nullopt;
  const auto [stopped, error] = std::from_chars(key.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

// Calls `take` with the value of the keys "01", "02", ... up to the first absent or empty one.
template <typename Take>
void ForEachNumbered(const ProfileDocument& settings, const char* section, Take take) {
  for (std::size_t number = 1;; ++number) {
    std::optional<std::string> value = settings.Value(section, NumberedKey(number, kListKeyDigits));
    if (!value || value->empty()) return;
    take(*std::move(value));
  }
}

// What AddUnique for every value would give, without comparing each with all before it.
std::vector<std::string> ReadUniqueNames(const ProfileDocument& settings, const char* section) {
  std::vector<std::string> names;
  std::unordered_set<std::string> known;
  ForEachNumbered(settings, section, [&](std::string value) {
    if (known.insert(FoldCase(value)).second) names.push_back(std::move(value));
  });
  return names;
}

// The fields of a file-list entry: source up to the first comma, destination up to the next, and
// the rest, which may hold commas. Kept on purpose: positions are counted as if a missing first
// comma stood before the text, so an entry without any comma has its whole text in source and
// destination.
void AppendRowFrom(std::string value, FileList& list) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::size_t first = value.find(',');
  const std::size_t destination = first == kNone ? 0 : first + 1;
  std::size_t second = first == kNone ? kNone : value.find(',', destination);
  if (second == kNone) {
    second = value.size();
    value += ',';
  }
  const std::string_view text = value;
  list.Append(std::string(TrimBlanks(text.substr(0, first == kNone ? second : first))),
              std::string(text.substr(destination, second - destination)),
              std::string(TrimBlanks(text.substr(second + 1))));
}

// How many entries of a numbered list are not read because a number before them is missing.
std::size_t EntriesBehindAGap(const ProfileDocument& settings, const char* section) {
  std::int32_t read = 0;
  ForEachNumbered(settings, section, [&](const std::string& /*value*/) { ++read; });
  std::size_t cut_off = 0;
  for (const ProfileEntry& entry : settings.Section(section)) {
    const std::optional<long> number = KeyNumber(entry.name);
    if (number && *number > read && !entry.value.empty()) ++cut_off;
  }
  return cut_off;
}

FileList ReadFileList(const ProfileDocument& settings, const char* section) {
  FileList list;
  ForEachNumbered(settings, section,
                  [&](std::string value) { AppendRowFrom(std::move(value), list); });
  return list;
}

bool LooksNumeric(std::string_view key) {
  return key.find_first_of("0123456789") != std::string_view::npos &&
         key.find_first_not_of("0123456789+-.,") == std::string_view::npos;
}

struct UserDirectoryEntries {
  std::vector<UserDirectory> read;
  std::vector<ProfileEntry> passed_over;  // numbered as well, but not in a way that is understood
};

UserDirectoryEntries ReadUserDirectories(const ProfileDocument& settings) {
  UserDirectoryEntries entries;
  std::unordered_set<long> known;
  for (ProfileEntry& entry : settings.Section(kPath)) {
    const std::optional<long> number = KeyNumber(entry.name);
    // "1" and "01" name the same <UserDir1>: the first has it.
    if (number && known.insert(*number).second) {
      entries.read.push_back({*number, std::move(entry.value)});
    } else if (LooksNumeric(entry.name)) {
      entries.passed_over.push_back(std::move(entry));
    }
  }
  return entries;
}

FormDesigner ReadDesigner(Application& application) {
  struct Designer {
    const char* name;
    FormDesigner designer;
  };
  static constexpr Designer kDesigners[] = {
      {"Visual Basic 5.0", FormDesigner::kVisualBasic5},
      {"Visual Basic 6.0", FormDesigner::kVisualBasic6},
      {"Delphi 4.0", FormDesigner::kDelphi4},
      {"Delphi 5.0", FormDesigner::kDelphi5},
  };
  const std::string name =
      application.platform.profiles.Open(application.project.StudioProjectFile())
          .Value("Global", "Designer")
          .value_or("");
  for (const Designer& known : kDesigners) {
    if (EqualNoCase(name, known.name)) return known.designer;
  }
  return FormDesigner::kOther;
}

// What the settings file holds, before it goes into the document as a whole.
struct Settings {
  StepSettings steps;
  std::string program_name;
  std::vector<std::string> ini_files;
  std::vector<std::string> hidden_ini_files;
  FileList files;
  FileList hidden_files;
  std::string configurator_value;
};

void Take(Settings settings, SetupDocument& document) {
  document.steps = std::move(settings.steps);
  document.program_name = std::move(settings.program_name);
  document.ini_files = std::move(settings.ini_files);
  document.hidden_ini_files = std::move(settings.hidden_ini_files);
  document.files = std::move(settings.files);
  document.hidden_files = std::move(settings.hidden_files);
  document.configurator_value = std::move(settings.configurator_value);
  document.changed = false;
}

// --- Writing

bool HasLineBreak(std::string_view text) {
  return text.find_first_of("\r\n") != std::string_view::npos;
}

bool HasOuterBlanks(std::string_view text) { return TrimBlanks(text).size() != text.size(); }

// A row that reading would give back otherwise than it was is refused, rather than changed in
// silence. A destination may begin or end in blanks, and a registration may hold commas.
void CheckRow(const FileRow& row, std::size_t number) {
  const auto refuse = [number](Reason reason, const std::string& field) {
    throw RuntimeError(ErrorNumber::kInvalidCall, Words(reason, {std::to_string(number), field}));
  };
  for (const std::string* field : {&row.source, &row.destination}) {
    if (field->find(',') != std::string::npos) refuse(Reason::kCommaInRow, *field);
  }
  for (const std::string* field : {&row.source, &row.destination, &row.registration}) {
    if (HasLineBreak(*field)) refuse(Reason::kLineBreakInRow, *field);
  }
  for (const std::string* field : {&row.source, &row.registration}) {
    if (HasOuterBlanks(*field)) refuse(Reason::kBlanksInRow, *field);
  }
}

std::vector<ProfileEntry> FileEntries(const FileList& list) {
  std::vector<ProfileEntry> entries;
  entries.reserve(list.RowCount());
  for (const FileRow& row : list.Rows()) {
    const std::size_t number = entries.size() + 1;
    CheckRow(row, number);
    entries.push_back({NumberedKey(number, kListKeyDigits),
                       row.source + "," + row.destination + "," + row.registration});
  }
  return entries;
}

std::vector<ProfileEntry> IniEntries(const std::vector<std::string>& names) {
  std::vector<ProfileEntry> entries;
  entries.reserve(names.size());
  for (const std::string& name : names) {
    const std::size_t number = entries.size() + 1;
    if (name.empty()) {
      throw RuntimeError(ErrorNumber::kInvalidCall,
                         Words(Reason::kEmptyIniName, {std::to_string(number)}));
    }
    entries.push_back({NumberedKey(number, kListKeyDigits), name});
  }
  return entries;
}

std::vector<ProfileEntry> PathEntries(const StepSettings& steps,
                                      std::vector<ProfileEntry> passed_over) {
  std::vector<ProfileEntry> entries = {{"tavix", steps.tavix_directory},
                                       {"project", steps.project_directory}};
  entries.reserve(entries.size() + steps.user_directories.size());
  for (const UserDirectory& directory : steps.user_directories) {
    entries.push_back({std::to_string(directory.number), directory.directory});
  }
  std::unordered_set<std::string> rows;
  for (const ProfileEntry& entry : entries) rows.insert(entry.name);
  std::unordered_set<std::string> names = rows;
  for (const ProfileEntry& entry : passed_over) names.insert(entry.name);
  for (ProfileEntry& entry : passed_over) {
    // Behind "01", which is written as "1", "1" itself needs another name.
    const bool is_taken = rows.contains(entry.name);
    while (is_taken && !names.insert(entry.name).second) entry.name.insert(0, "0");
    entries.push_back(std::move(entry));
  }
  return entries;
}

// A list that is empty and was never in the file adds no bare header to it.
void ReplaceList(ProfileDocument& settings, const char* section,
                 const std::vector<ProfileEntry>& entries) {
  if (entries.empty() && settings.Section(section).empty()) return;
  settings.ReplaceSection(section, entries);
}

const char* FlagText(bool flag) { return flag ? "1" : "0"; }

// FNV-1a over texts and their lengths.
class Digest {
 public:
  void Add(std::string_view text) {
    for (std::size_t length = text.size(); length > 0; length >>= 8) AddByte(length & 0xFF);
    AddByte(0);
    for (const char c : text) AddByte(static_cast<unsigned char>(c));
  }
  void Add(const ProfileEntry& entry) {
    Add(entry.name);
    Add(entry.value);
  }
  [[nodiscard]] std::uint64_t Value() const { return value_; }

 private:
  void AddByte(std::uint64_t byte) { value_ = (value_ ^ byte) * 0x100000001B3; }

  std::uint64_t value_ = 0xCBF29CE484222325;
};

// Of everything that a save replaces. The rest, which others maintain, may change meanwhile.
std::uint64_t DigestOf(const ProfileDocument& settings) {
  Digest digest;
  const auto add = [&](const char* section, const char* key) {
    const std::optional<std::string> value = settings.Value(section, key);
    digest.Add(value ? "=" + *value : "");
  };
  StepSettings any;
  for (const TextSetting& text : SetupAndProgramSettings(any)) add(text.section, text.key);
  add(kProgram, "name");
  for (const char* const key : {"VB5dbUseJet", "VB5dbUseODBC"}) add(kFunction, key);
  for (const char* const key : {"size", "path", "MDAC"}) add(kDestination, key);
  for (const char* const section : {kPath, kIni, kFile}) {
    digest.Add(section);
    for (const ProfileEntry& entry : settings.Section(section)) digest.Add(entry);
  }
  return digest.Value();
}

// Why a save would write where no settings belong, or replace what the user has never seen.
enum class Obstacle {
  kNone,
  kNoDirectory,       // "\Demo.swz" of whatever drive is current would be written
  kNotRead,           // the defaults that were shown instead would take its place
  kChangedByAnother,  // the changes would be undone
};

Obstacle ObstacleToSaving(const SetupDocument& document, const ProfileDocument& settings) {
  switch (document.settings_source) {
    case SettingsSource::kFile:
      if (settings.Bytes().empty() || DigestOf(settings) == document.settings_digest) break;
      return Obstacle::kChangedByAnother;
    case SettingsSource::kNoFile:
      if (settings.Bytes().empty()) break;
      return Obstacle::kNotRead;
    case SettingsSource::kUnread:
      return Obstacle::kNotRead;
    case SettingsSource::kCleared:
      break;
  }
  return Obstacle::kNone;
}

void WriteInto(ProfileDocument& settings, SetupDocument& document) {
  StepSettings& steps = document.steps;
  // The user has never seen them, so they stay, unless everything is to go.
  std::vector<ProfileEntry> passed_over;
  if (document.settings_source != SettingsSource::kCleared) {
    passed_over = ReadUserDirectories(settings).passed_over;
  }
  const std::vector<ProfileEntry> path = PathEntries(steps, std::move(passed_over));
  const std::vector<ProfileEntry> ini_files = IniEntries(document.ini_files);
  const std::vector<ProfileEntry> files = FileEntries(document.files);

  for (const TextSetting& text : SetupAndProgramSettings(steps)) {
    settings.Set(text.section, text.key, text.value);
  }
  settings.Set(kProgram, "name", document.program_name);
  settings.ReplaceSection(kPath, path);
  settings.Set(kFunction, "VB5dbUseJet", FlagText(steps.use_jet));
  settings.Set(kFunction, "VB5dbUseODBC", FlagText(steps.use_odbc));
  settings.Set(kDestination, "size", FlagText(steps.disk_size_index == 1));
  settings.Set(kDestination, "path", steps.setup_directory);
  ReplaceList(settings, kIni, ini_files);
  ReplaceList(settings, kFile, files);
  settings.Set(kDestination, "MDAC", FlagText(steps.minimal_mdac));
}

// Nothing is written when there is an obstacle.
Obstacle TryToWrite(Application& application) {
  SetupDocument& document = application.document;
  if (application.project.directory.empty()) return Obstacle::kNoDirectory;
  // Not even looked at: what could not be read may still be unreadable.
  if (document.settings_source == SettingsSource::kUnread) return Obstacle::kNotRead;
  Obstacle obstacle = Obstacle::kNone;
  std::uint64_t digest = 0;
  // Everything in one change: the file on disk is never a mixture of two states.
  application.platform.profiles.Change(application.project.SettingsFile(),
                                       [&](ProfileDocument& settings) {
                                         obstacle = ObstacleToSaving(document, settings);
                                         if (obstacle != Obstacle::kNone) return;
                                         WriteInto(settings, document);
                                         digest = DigestOf(settings);
                                       });
  if (obstacle != Obstacle::kNone) return obstacle;
  document.settings_source = SettingsSource::kFile;
  document.settings_digest = digest;
  document.changed = false;
  return Obstacle::kNone;
}

bool IsUserDirectoryName(std::string_view name) {
  const std::string_view prefix = kUserDirPrefix;
  if (name.size() <= prefix.size() + 1 || name.back() != '>') return false;
  if (!EqualNoCase(name.substr(0, prefix.size()), prefix)) return false;
  const std::string_view digits = name.substr(prefix.size(), name.size() - prefix.size() - 1);
  return digits.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

void ReadSettings(Application& application) {
  Settings defaults;
  defaults.steps = DefaultSteps(application);
  Settings read = defaults;
  Take(std::move(defaults), application.document);
  application.document.settings_source = SettingsSource::kUnread;
  // "\Demo.swz" of whatever drive is current would be read.
  if (application.project.directory.empty()) return;

  const std::string studio_project_file = application.project.StudioProjectFile();
  if (application.configurator != nullptr) {
    read.configurator_value = application.configurator->OpenProject(studio_project_file);
  }
  read.steps.designer = ReadDesigner(application);

  const ProfileDocument& settings =
      application.platform.profiles.Open(application.project.SettingsFile());
  StepSettings& steps = read.steps;
  for (const TextSetting& text : SetupAndProgramSettings(steps)) {
    ReadTextSetting(settings, text.section, text.key, text.value);
  }
  ReadTextSetting(settings, kProgram, "name", read.program_name);
  ReadTextSetting(settings, kPath, "tavix", steps.tavix_directory);
  ReadTextSetting(settings, kPath, "project", steps.project_directory);
  steps.user_directories = ReadUserDirectories(settings).read;
  read.ini_files = ReadUniqueNames(settings, kIni);
  read.hidden_ini_files = ReadUniqueNames(settings, kHiddenIni);
  read.files = ReadFileList(settings, kFile);
  read.hidden_files = ReadFileList(settings, kHiddenFile);
  steps.use_jet = ReadFlag(settings, kFunction, "VB5dbUseJet");
  steps.use_odbc = ReadFlag(settings, kFunction, "VB5dbUseODBC");
  // There are two sizes; the index of any other counts as that of the first.
  steps.disk_size_index = ReadFlag(settings, kDestination, "Size") ? 1 : 0;
  ReadTextSetting(settings, kDestination, "Path", steps.setup_directory);
  steps.minimal_mdac = ReadFlag(settings, kDestination, "MDAC");
  steps.service_pack = ReadFlag(settings, kDestination, "ServicePack");
  const bool has_file = !settings.Bytes().empty();
  const std::uint64_t digest = DigestOf(settings);
  SetupDocument& document = application.document;
  Take(std::move(read), document);
  document.settings_source = has_file ? SettingsSource::kFile : SettingsSource::kNoFile;
  document.settings_digest = digest;
  for (const char* section : {kFile, kHiddenFile, kIni, kHiddenIni}) {
    const std::size_t cut_off = EntriesBehindAGap(settings, section);
    if (cut_off == 0) continue;
    ShowWarning(application, kMessageGap,
                {application.project.SettingsFile(), section, std::to_string(cut_off)});
  }
}

void WriteSettings(Application& application) {
  const std::string file = application.project.SettingsFile();
  switch (TryToWrite(application)) {
    case Obstacle::kNone:
      return;
    case Obstacle::kNoDirectory:
      throw RuntimeError(ErrorNumber::kPathNotFound,
                         application.project.name + ": " + Words(Reason::kNoProjectDirectory));
    case Obstacle::kNotRead:
      throw RuntimeError(ErrorNumber::kAlreadyExists,
                         file + ": " + Words(Reason::kSettingsNotRead));
    case Obstacle::kChangedByAnother:
      throw RuntimeError(ErrorNumber::kAlreadyExists,
                         file + ": " + Words(Reason::kSettingsChanged));
  }
}

bool SaveSettings(Application& application) {
  const std::string file = application.project.SettingsFile();
  return AtWorkBorder(application, kMessageWriting, file, [&] {
    const std::unique_ptr<HeldLock> lock = LockProject(application);
    if (lock == nullptr) return false;
    switch (TryToWrite(application)) {
      case Obstacle::kNone:
        return true;
      case Obstacle::kNoDirectory:
        ShowWarning(application, kMessageCannotEdit, {application.project.name});
        break;
      case Obstacle::kNotRead:
        ShowWarning(application, kMessageNotRead, {file});
        break;
      case Obstacle::kChangedByAnother:
        ShowWarning(application, kMessageChangedByAnother, {file});
        break;
    }
    return false;
  });
}

void ClearSettings(Application& application) {
  // May fail, and then nothing is cleared.
  StepSettings defaults = DefaultSteps(application);
  SetupDocument& document = application.document;
  document.program_name.clear();
  document.ini_files.clear();
  document.hidden_ini_files.clear();
  document.files.Clear();
  document.hidden_files.Clear();

  // What step 3 chose, the service-pack and MDAC boxes and the project's form designer stay.
  StepSettings& steps = document.steps;
  steps.info = std::move(defaults.info);
  steps.background_picture = std::move(defaults.background_picture);
  steps.startmenu_folder = std::move(defaults.startmenu_folder);
  steps.startmenu_link = std::move(defaults.startmenu_link);
  steps.tavix_directory = std::move(defaults.tavix_directory);
  steps.project_directory = std::move(defaults.project_directory);
  steps.user_directories.clear();
  steps.disk_size_index = defaults.disk_size_index;
  steps.setup_directory = std::move(defaults.setup_directory);
  steps.file_count_label.clear();
  steps.total_bytes_label.clear();
  steps.disks_needed_label.clear();
  steps.disks_needed_is_estimate = true;
  document.settings_source = SettingsSource::kCleared;
  document.changed = false;
}

void ExtendPathVariables(Application& application) {
  PathVariableList& variables = application.document.path_variables;
  const auto is_extension = [](const PathVariable& variable) {
    return EqualNoCase(variable.name, kTempDirName) || IsUserDirectoryName(variable.name);
  };
  variables.erase(std::remove_if(variables.begin(), variables.end(), is_extension),
                  variables.end());
  variables.push_back({kTempDirName, application.project.TemporaryDirectory()});

  std::vector<UserDirectory> directories = application.document.steps.user_directories;
  std::stable_sort(directories.begin(), directories.end(),
                   [](const UserDirectory& left, const UserDirectory& right) {
                     return left.number < right.number;
                   });
  for (const UserDirectory& directory : directories) {
    // Every path begins with an empty value.
    if (directory.directory.empty()) continue;
    variables.push_back({kUserDirPrefix + std::to_string(directory.number) + ">",
                         AsVariableValue(directory.directory)});
  }
}

}  // namespace txs
