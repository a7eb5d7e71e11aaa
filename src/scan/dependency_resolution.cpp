#include "scan/dependency_resolution.h"

#include <algorithm>
#include <utility>

#include "document/mdac.h"
#include "document/path_variables.h"
#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr long kMessageAddingFile = 907;
constexpr long kMessageMdacHint = 917;

constexpr char kJetServicePack[] = "Jet40Sp3_Comp.exe";

// "VB Runtime", "Tavix4 Client": names that exist only as sections of dependency files.
bool IsPseudoFile(std::string_view path) {
  return path.find_first_of("\\/:.") == std::string_view::npos;
}

bool IsNamed(std::string_view path, std::string_view name) {
  return EqualNoCase(FileName(path), name);
}

}  // namespace

struct DependencyResolver::Installer {
  const char* file_name;    // in the setup kit
  const char* search_name;  // as the user is asked for it
  const char* script_line;
};

const DependencyResolver::Installer DependencyResolver::kMdac = {kFullMdacInstaller, "Mdac_typ.exe",
                                                                 kFullMdacEntry};
const DependencyResolver::Installer DependencyResolver::kJet = {
    kJetServicePack, kJetServicePack,
    "ExecFile(<TempDir>\\Jet40Sp3_Comp.exe|0|/q)"
    "@DeleteFile(<TempDir>\\Jet40Sp3_Comp.exe)"
    "@SetVar(Reboot|1)"};

bool DependencyResolver::AddFile(std::string_view path, Force force,
                                 std::string_view dependency_file) {
  std::string subject(path);
  frames_.clear();
  const bool added = AtWorkBorder(session_.App(), kMessageAddingFile, subject, [&] {
    return Enter(subject, force, session_.Dependencies().Open(dependency_file)) &&
           FollowAll(subject);
  });
  if (!added) LeaveUnfinished(subject);
  return added;
}

bool DependencyResolver::AddFromBothSources(std::string_view path) {
  const bool usual = AddFile(path, Force::kNo, /*dependency_file=*/{});
  const bool product = AddFile(path, Force::kNo, session_.App().ProductDependencyFile());
  return usual && product;
}

bool DependencyResolver::FollowAll(std::string& subject) {
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (frame.next == frame.uses.size()) {
      for (const std::string& line : frame.script_lines) session_.AddScriptLine(line);
      frames_.pop_back();
      continue;
    }
    subject = frame.uses[frame.next];
    const DependencyFile* const source = frame.product_is_next ? Product() : frame.source;
    if (!frame.product_is_next && frame.source != Product()) {
      frame.product_is_next = true;
    } else {
      frame.product_is_next = false;
      ++frame.next;
    }
    if (!Enter(subject, Force::kNo, source)) return false;  // `frame` may have moved
  }
  return true;
}

void DependencyResolver::LeaveUnfinished(const std::string& subject) {
  for (const Frame& frame : frames_) {
    if (!frame.kept) session_.LeaveUnfinished(frame.name);
  }
  // Without a row, what leads to it finds it anew.
  if (session_.ListedByThisScan(subject)) session_.LeaveUnfinished(subject);
}

bool DependencyResolver::Enter(const std::string& path, Force force, const DependencyFile* source) {
  session_.View().ShowFile(path);
  if (session_.CancelledMeanwhile()) return false;

  if (force == Force::kNo && session_.App().use_runtime_setup &&
      IsNamed(path, kFullMdacInstaller)) {
    // It is not packaged then, so nobody needs to say where it is.
    const bool below_kept_row = !frames_.empty() && frames_.back().kept;
    return below_kept_row || AddMdacAndJet(Force::kNo);
  }
  const bool is_pseudo = IsPseudoFile(path);
  const bool is_system = !is_pseudo && session_.IsSystemFileName(path);
  ScanSession::Located located;
  if (is_pseudo || is_system) {
    // A system file is on every target computer and never listed: nobody needs to say where it is.
    located.whereabouts = ScanSession::Whereabouts::kCovered;
    located.path = path;
  } else {
    const std::string folder = frames_.empty() ? std::string() : frames_.back().folder;
    located = session_.Locate(path, folder, [&] { return ChainTo(FileName(FullPath(path))); });
    if (session_.View().IsCancelPressed()) return false;
    if (located.whereabouts == ScanSession::Whereabouts::kDropped) return true;
  }
  return Visit(located, is_system, force, source);
}

bool DependencyResolver::Visit(const ScanSession::Located& located, bool is_system, Force force,
                               const DependencyFile* source) {
  const bool is_found = located.whereabouts == ScanSession::Whereabouts::kFound;
  const std::optional<ScanSession::Listed> listed = session_.FindListed(located.path);
  const bool below_kept_row = !frames_.empty() && frames_.back().kept;
  const bool kept = force == Force::kNo && !session_.IsUnfinished(located.path) &&
                    (listed ? !listed->by_this_scan : below_kept_row && !located.by_user);

  const std::string key = FoldCase(located.path);
  SourcesRead done;
  if (const auto read = read_.find(key); read != read_.end()) done = read->second;
  if (const auto seen = looked_through_.find(key); kept && seen != looked_through_.end()) {
    done.usual = done.usual || seen->second.usual;
    done.product = done.product || seen->second.product;
  }
  if (force == Force::kNo && done.usual && done.product) return true;

  std::optional<Section> section = FindSection(located.path, source);
  if ((force == Force::kYes || !listed) && IsReplacedByMdac(located.path, section)) {
    mdac_needed_by_ = FileName(located.path);
    if (!kept) return AddMdacAndJet(Force::kYes);
    AskForMissingInstallers();
    return true;
  }
  const bool is_product = section && section->source == Product();
  SourcesRead& seen = (kept ? looked_through_ : read_)[key];
  // Where the product has nothing to say it has been asked all the same: a file that many name must
  // not be looked up for each of them.
  if (is_product || source == Product()) seen.product = true;
  if (section && !is_product) seen.usual = true;

  if (is_system) return true;
  const bool is_deleted = kept && !listed && is_found && !session_.IsCovered(located);
  if (is_deleted) return true;

  const RegistrationKind kind = section ? section->entries.registration : RegistrationKind::kNone;
  if (is_found) TakeRow(located, force, kind);
  if (!section) return true;

  if (force == Force::kNo && (is_product ? done.product : done.usual)) return true;
  Follow(located.path, *std::move(section),
         located.whereabouts != ScanSession::Whereabouts::kIgnored, kept);
  return true;
}

const DependencyFile* DependencyResolver::Product() {
  return session_.Dependencies().Open(session_.App().ProductDependencyFile());
}

// A dependency file that does not know the file leaves the question to the next: among files called
// ".dep" there are some that have nothing to do with dependencies.
std::optional<DependencyResolver::Section> DependencyResolver::FindSection(
    const std::string& path, const DependencyFile* first) {
  const std::string name = FileName(path);
  const auto look_in = [&](const DependencyFile* file) -> std::optional<Section> {
    if (file == nullptr) return std::nullopt;
    std::optional<DependencyEntries> entries = file->Find(name);
    if (!entries) return std::nullopt;
    return Section{file, *std::move(entries)};
  };
  DependencyFiles& files = session_.Dependencies();
  if (std::optional<Section> found = look_in(first)) return found;
  if (IsAbsolutePath(path)) {
    if (std::optional<Section> found = look_in(files.OpenOwn(path))) return found;
  }
  return look_in(files.Open(session_.VisualBasic().dependency_file));
}

// The product dependency file has a say too, even where the component's own source is read first:
// a component that data access brings along must not be listed on its own before that is noticed.
bool DependencyResolver::IsReplacedByMdac(const std::string& path,
                                          const std::optional<Section>& section) {
  if (section && EqualNoCase(section->entries.replace, kFullMdacInstaller)) return true;
  if (Product() == nullptr || (section && section->source == Product())) return false;
  const std::optional<DependencyEntries> entries = Product()->Find(FileName(path));
  return entries && EqualNoCase(entries->replace, kFullMdacInstaller);
}

void DependencyResolver::TakeRow(const ScanSession::Located& located, Force force,
                                 RegistrationKind kind) {
  const std::optional<ScanSession::Listed> listed = session_.FindListed(located.path);
  if (listed && force == Force::kNo) {
    if (!listed->by_this_scan) return;
    // The row is from this Scan. Its first source may have known nothing of its registration.
    std::string& registration = session_.App().document.files.Row(listed->row).registration;
    if (registration == "0") registration = std::to_string(static_cast<int>(kind));
    return;
  }
  if (force == Force::kNo && session_.IsCovered(located)) return;
  session_.AppendRow(located.path, located.stamp.length_bytes, kind, /*destination=*/{});
}

void DependencyResolver::Follow(const std::string& path, Section section, bool with_script_lines,
                                bool kept) {
  DependencyEntries& entries = section.entries;
  if (!with_script_lines) entries.script_lines.clear();
  if (entries.uses.empty()) {
    for (const std::string& line : entries.script_lines) session_.AddScriptLine(line);
    return;
  }
  Frame frame;
  frame.name = FileName(path);
  frame.folder = IsAbsolutePath(path) ? ParentFolder(path) : std::string();
  frame.source = section.source;
  frame.uses = std::move(entries.uses);
  frame.script_lines = std::move(entries.script_lines);
  frame.kept = kept;
  frames_.push_back(std::move(frame));
}

std::vector<std::string> DependencyResolver::ChainTo(std::string_view name) const {
  // A chain of a hundred thousand links would not be read by anybody.
  constexpr std::size_t kShownAtEachEnd = 32;
  std::vector<std::string> chain = session_.chain_root;
  const std::size_t count = frames_.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (count > 2 * kShownAtEachEnd && i == kShownAtEachEnd) {
      chain.emplace_back("...");
      i = count - kShownAtEachEnd;
    }
    chain.push_back(frames_[i].name);
  }
  chain.emplace_back(name);
  return chain;
}

bool DependencyResolver::AddMdacAndJet(Force force) {
  Application& application = session_.App();
  const std::string subject = kFullMdacInstaller;
  return AtWorkBorder(application, kMessageAddingFile, subject, [&] {
    if (mdac_done_) return true;
    const std::vector<std::string>& lines = application.document.extra_todo_lines;
    if (force == Force::kNo &&
        (ListsInstaller(kFullMdacInstaller) ||
         std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
           return EqualNoCase(line, kMdac.script_line);
         }))) {
      return true;
    }
    mdac_done_ = true;
    const auto show_hint = [&] {
      Message message = application.texts.Compose(kMessageMdacHint, {},
                                                  kButtonsOk | kIconInformation | kButtonHelp);
      message.help_file = application.installation.HelpFile();
      application.messages.ShowMessage(message);
    };
    if (application.use_runtime_setup) {
      if (!application.hide_mdac_hint) show_hint();
      return true;
    }
    if (!MinimalMdacIsListed()) AddInstaller(kMdac);
    show_hint();
    AddInstaller(kJet);
    return true;
  });
}

void DependencyResolver::AskForMissingInstallers() {
  if (installers_asked_for_ || mdac_done_ || session_.App().use_runtime_setup) return;
  installers_asked_for_ = true;
  const auto ask_for = [&](const Installer& installer) {
    const std::string path =
        JoinPath(session_.App().installation.SetupKitDirectory(), installer.file_name);
    if (!session_.App().platform.files.FileExists(path)) AddInstaller(installer);
  };
  if (!MinimalMdacIsListed()) ask_for(kMdac);
  ask_for(kJet);
}

// With the option for it, an earlier Create has put the minimal installer in the place of the full
// one, which must not come back beside it.
bool DependencyResolver::MinimalMdacIsListed() const {
  return session_.App().document.steps.minimal_mdac && ListsInstaller(kMinimalMdacInstaller);
}

bool DependencyResolver::ListsInstaller(std::string_view file_name) const {
  const std::string in_kit =
      FullPath(JoinPath(session_.App().installation.SetupKitDirectory(), file_name));
  return session_.FindListed(in_kit) || FindInstallerRow(file_name);
}

std::optional<ScanSession::Located> DependencyResolver::FindInstallerRow(
    std::string_view file_name) const {
  std::optional<ScanSession::Located> found = session_.FindListedByName(file_name);
  const std::optional<ScanSession::Listed> listed =
      found ? session_.FindListed(found->path) : std::nullopt;
  if (!listed) return std::nullopt;
  const FileRow& row = session_.App().document.files.Row(listed->row);
  if (!EqualNoCase(row.destination, kTempDirName)) return std::nullopt;
  return found;
}

void DependencyResolver::AddInstaller(const Installer& installer) {
  const std::string path =
      FullPath(JoinPath(session_.App().installation.SetupKitDirectory(), installer.file_name));
  ScanSession::Located located;
  located.whereabouts = ScanSession::Whereabouts::kFound;
  located.path = path;
  if (const std::optional<FileStamp> stamp = session_.App().platform.files.Stamp(path)) {
    located.stamp = *stamp;
  } else if (const auto row = FindInstallerRow(installer.file_name)) {
    located = *row;
  } else {
    located = session_.AskFor(installer.search_name, [&] {
      std::vector<std::string> chain = ChainTo(installer.search_name);
      if (!mdac_needed_by_.empty()) chain.insert(chain.end() - 1, mdac_needed_by_);
      return chain;
    });
    // Without the file its line would fail on every target computer.
    if (located.whereabouts != ScanSession::Whereabouts::kFound) {
      if (!mdac_needed_by_.empty()) session_.LeaveUnfinished(mdac_needed_by_);
      return;
    }
  }
  if (!session_.FindListed(located.path)) {
    session_.AppendRow(located.path, located.stamp.length_bytes, RegistrationKind::kNone,
                       kTempDirName);
  }
  session_.AddScriptLine(installer.script_line);
}

void DependencyResolver::AddInstallerLinesOfKeptRows() {
  // With the predefined runtime setup, too, which brings neither row nor line: such a row was
  // packed on purpose before, it is still in the package, and nobody would run it.
  const SetupDocument& document = session_.App().document;
  for (std::size_t row = 1; row <= session_.KeptRows(); ++row) {
    const FileRow& kept = document.files.Row(row);
    if (!EqualNoCase(kept.destination, kTempDirName)) continue;
    const bool is_minimal =
        document.steps.minimal_mdac &&
        IsNamed(kept.source, kMinimalMdacInstaller);  // Create shortens the line
    if (is_minimal || IsNamed(kept.source, kFullMdacInstaller)) {
      session_.AddScriptLine(kMdac.script_line);
    }
    if (IsNamed(kept.source, kJetServicePack)) session_.AddScriptLine(kJet.script_line);
  }
}

bool DependencyResolver::FollowKeptRows() {
  bool succeeded = true;
  session_.chain_root.clear();
  for (std::size_t row = 1; row <= session_.KeptRows(); ++row) {
    ScanSession::Located located;
    located.whereabouts = ScanSession::Whereabouts::kFound;
    located.path = session_.FullPathOfRow(row);
    const std::string key = FoldCase(located.path);
    if (read_.contains(key) || looked_through_.contains(key)) continue;
    if (session_.CancelledMeanwhile()) return false;
    std::string subject = located.path;
    frames_.clear();
    const bool followed = AtWorkBorder(session_.App(), kMessageAddingFile, subject, [&] {
      return Visit(located, /*is_system=*/false, Force::kNo, /*source=*/nullptr) &&
             FollowAll(subject) && Visit(located, /*is_system=*/false, Force::kNo, Product()) &&
             FollowAll(subject);
    });
    if (followed) continue;
    LeaveUnfinished(subject);
    succeeded = false;
  }
  return succeeded;
}

}  // namespace txs
