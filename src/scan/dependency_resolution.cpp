#include "scan/dependency_resolution.h"

#include <algorithm>
#include <utility>

#include "document/work_border.h"
#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr long kMessageAddingFile = 907;
constexpr long kMessageMdacHint = 917;

constexpr char kMdacInstaller[] = "mdac_typ.exe";
constexpr char kMinimalMdacInstaller[] = "Mdac_min.exe";
constexpr char kJetServicePack[] = "Jet40Sp3_Comp.exe";
constexpr char kTemporaryDirectory[] = "<TempDir>";
constexpr char kMdacLine[] =
    "ExecFile(<TempDir>\\mdac_typ.exe|0|/q:a|/c:\"setup.exe /qt\")"
    "@DeleteFile(<TempDir>\\mdac_typ.exe)"
    "@SetVar(Reboot|1)";
constexpr char kJetLine[] =
    "ExecFile(<TempDir>\\Jet40Sp3_Comp.exe|0|/q)"
    "@DeleteFile(<TempDir>\\Jet40Sp3_Comp.exe)"
    "@SetVar(Reboot|1)";

// "VB Runtime", "Tavix4 Client": names that exist only as sections of dependency files.
bool IsPseudoFile(std::string_view path) {
  return path.find_first_of("\\/:.") == std::string_view::npos;
}

bool IsNamed(std::string_view path, std::string_view name) {
  return EqualNoCase(FileName(path), name);
}

}  // namespace

bool DependencyResolver::AddFile(std::string_view path, Force force,
                                 std::string_view dependency_file) {
  std::string subject(path);
  return AtWorkBorder(session_.App(), kMessageAddingFile, subject,
                      [&] { return Run(subject, force, dependency_file); });
}

bool DependencyResolver::AddFromBothSources(std::string_view path) {
  const bool usual = AddFile(path, Force::kNo, /*dependency_file=*/{});
  const bool product = AddFile(path, Force::kNo, session_.App().ProductDependencyFile());
  return usual && product;
}

bool DependencyResolver::Run(std::string& subject, Force force, std::string_view dependency_file) {
  frames_.clear();
  if (!Enter(subject, force, session_.Dependencies().Open(dependency_file))) return false;
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

bool DependencyResolver::Enter(const std::string& path, Force force, const DependencyFile* source) {
  session_.View().ShowFile(path);
  if (session_.CancelledMeanwhile()) return false;

  const bool is_pseudo = IsPseudoFile(path);
  const bool is_system = !is_pseudo && session_.IsSystemFileName(path);
  ScanSession::Located located;
  if (is_pseudo || is_system) {
    // A system file is on every target computer and never listed: nobody needs to say where it is.
    located.path = path;
  } else {
    const std::string folder = frames_.empty() ? std::string() : frames_.back().folder;
    located = session_.Locate(path, folder, [&] { return ChainTo(FileName(FullPath(path))); });
    if (session_.View().IsCancelPressed()) return false;
    if (located.whereabouts == ScanSession::Whereabouts::kDropped) return true;
  }

  const std::optional<ScanSession::Listed> listed = session_.FindListed(located.path);
  if (force == Force::kNo && listed && !listed->by_this_scan) return true;
  if (IsNamed(path, kMdacInstaller) && force == Force::kNo && session_.App().use_runtime_setup) {
    return AddMdacAndJet(Force::kNo);
  }

  if (const auto read = read_.find(FoldCase(located.path));
      force == Force::kNo && read != read_.end() && read->second.usual && read->second.product) {
    return true;
  }
  std::optional<Section> section = FindSection(located.path, source);
  if ((force == Force::kYes || !listed) && IsReplacedByMdac(located.path, section)) {
    mdac_needed_by_ = FileName(located.path);
    return AddMdacAndJet(Force::kYes);
  }
  if (is_system) return true;

  const RegistrationKind kind = section ? section->entries.registration : RegistrationKind::kNone;
  if (located.whereabouts == ScanSession::Whereabouts::kFound) TakeRow(located, force, kind);
  if (!section) return true;

  SourcesRead& read = read_[FoldCase(located.path)];
  bool& this_source = section->source == Product() ? read.product : read.usual;
  if (this_source && force == Force::kNo) return true;
  this_source = true;
  Follow(located.path, *std::move(section),
         is_pseudo || located.whereabouts != ScanSession::Whereabouts::kIgnored);
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
  if (section && EqualNoCase(section->entries.replace, kMdacInstaller)) return true;
  if (Product() == nullptr || (section && section->source == Product())) return false;
  const std::optional<DependencyEntries> entries = Product()->Find(FileName(path));
  return entries && EqualNoCase(entries->replace, kMdacInstaller);
}

void DependencyResolver::TakeRow(const ScanSession::Located& located, Force force,
                                 RegistrationKind kind) {
  Application& application = session_.App();
  const std::optional<ScanSession::Listed> listed = session_.FindListed(located.path);
  if (listed && force == Force::kNo) {
    // The row is from this Scan. Its first source may have known nothing of its registration.
    std::string& registration = application.document.files.Row(listed->row).registration;
    if (registration == "0") registration = std::to_string(static_cast<int>(kind));
    return;
  }
  if (application.use_runtime_setup) {
    const LocalTime changed = application.platform.clock.ToLocal(located.stamp.last_write);
    if (session_.Setups().Covers(located.path, changed)) return;
  }
  session_.AppendRow(located.path, located.stamp.length_bytes, kind, /*destination=*/{});
}

void DependencyResolver::Follow(const std::string& path, Section section, bool with_script_lines) {
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
  const std::string subject = kMdacInstaller;
  return AtWorkBorder(application, kMessageAddingFile, subject, [&] {
    if (mdac_done_) return true;
    const std::vector<std::string>& lines = application.document.extra_todo_lines;
    if (force == Force::kNo &&
        (ListsInstaller(kMdacInstaller) ||
         std::any_of(lines.begin(), lines.end(),
                     [](const std::string& line) { return EqualNoCase(line, kMdacLine); }))) {
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
    // With the option for it, an earlier Create has put the minimal installer in the place of the
    // full one, which must not come back beside it.
    const bool minimal_is_listed =
        application.document.steps.minimal_mdac && ListsInstaller(kMinimalMdacInstaller);
    if (!minimal_is_listed) AddInstaller(kMdacInstaller, "Mdac_typ.exe", kMdacLine);
    show_hint();
    AddInstaller(kJetServicePack, kJetServicePack, kJetLine);
    return true;
  });
}

bool DependencyResolver::ListsInstaller(std::string_view file_name) const {
  return session_
      .FindListed(FullPath(JoinPath(session_.App().installation.SetupKitDirectory(), file_name)))
      .has_value();
}

void DependencyResolver::AddInstaller(std::string_view file_name, std::string_view search_name,
                                      const std::string& script_line) {
  const std::string path =
      FullPath(JoinPath(session_.App().installation.SetupKitDirectory(), file_name));
  ScanSession::Located located{ScanSession::Whereabouts::kFound, path, {}};
  if (const std::optional<FileStamp> stamp = session_.App().platform.files.Stamp(path)) {
    located.stamp = *stamp;
  } else {
    located = session_.AskFor(search_name, [&] {
      std::vector<std::string> chain = ChainTo(search_name);
      if (!mdac_needed_by_.empty()) chain.insert(chain.end() - 1, mdac_needed_by_);
      return chain;
    });
    // Without the file its line would fail on every target computer.
    if (located.whereabouts != ScanSession::Whereabouts::kFound) return;
  }
  if (!session_.FindListed(located.path)) {
    session_.AppendRow(located.path, located.stamp.length_bytes, RegistrationKind::kNone,
                       kTemporaryDirectory);
  }
  session_.AddScriptLine(script_line);
}

bool DependencyResolver::AddScriptLinesOfKeptRows() {
  Application& application = session_.App();
  std::string subject;
  return AtWorkBorder(application, kMessageAddingFile, subject, [&] {
    const auto add_lines_of = [&](const DependencyFile* file) {
      if (file == nullptr) return false;
      const std::optional<DependencyEntries> entries = file->Find(FileName(subject));
      if (!entries) return false;
      for (const std::string& line : entries->script_lines) session_.AddScriptLine(line);
      return true;
    };
    for (std::size_t row = 1; row <= session_.KeptRows(); ++row) {
      subject = session_.FullPathOfRow(row);
      if (IsAbsolutePath(subject) && !add_lines_of(session_.Dependencies().OpenOwn(subject))) {
        add_lines_of(session_.Dependencies().Open(session_.VisualBasic().dependency_file));
      }
      add_lines_of(Product());
      if (!EqualNoCase(application.document.files.Row(row).destination, kTemporaryDirectory)) {
        continue;
      }
      const bool minimal = application.document.steps.minimal_mdac &&
                           IsNamed(subject, kMinimalMdacInstaller);  // Create shortens the line
      if (minimal || IsNamed(subject, kMdacInstaller)) session_.AddScriptLine(kMdacLine);
      if (IsNamed(subject, kJetServicePack)) session_.AddScriptLine(kJetLine);
    }
    return true;
  });
}

}  // namespace txs
