#include "tool/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <nlohmann/json.hpp>

#include "create/create_run.h"
#include "document/settings_file.h"
#include "environment/installation.h"
#include "environment/project_type.h"
#include "environment/windows_path.h"
#include "projects/project_registry.h"
#include "scan/scan_run.h"
#include "startup/application_start.h"
#include "text/text_service.h"
#include "tool/project_argument.h"
#include "tool/tool_messages.h"
#include "tool/verify_installation.h"

namespace txs {
namespace {

// Members in the order in which they were set.
using Json = nlohmann::ordered_json;

constexpr long kMessageCannotEdit = 901;

struct Options {
  std::string subject;  // PROJECT or DIRECTORY
  bool json = false;
  bool scan = false;  // create: scan first
  bool save = false;  // scan: write the settings file
};

void PrintJson(ToolContext& context, const Json& json) {
  constexpr int kIndent = 2;
  // A name on the host may be no UTF-8 at all.
  context.out << json.dump(kIndent, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace)
              << '\n';
}

Json ToJson(const std::vector<Message>& messages) {
  Json list = Json::array();
  for (const Message& message : messages) {
    list.push_back({{"id", message.id}, {"text", message.prompt}});
  }
  return list;
}

// What a command prints that came to no result.
void PrintFailureJson(ToolContext& context, Json messages) {
  PrintJson(context, {{"result", false}, {"messages", std::move(messages)}});
}

// For one line of a terminal or log: names on the host may hold line breaks and worse.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
  return text;
}

// "1 disk", "3 disks"
std::string Counted(std::uint64_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Summary(std::uint64_t disks, std::uint64_t files, std::uint64_t bytes) {
  return Counted(disks, "disk") + ", " + Counted(files, "file") + ", " + Counted(bytes, "byte") +
         " in archives";
}

// --- projects

std::string ShownType(const RegisteredProject& project) {
  const std::string name = ProjectTypeName(project.type);
  return name.empty() ? project.type_text : name;
}

std::size_t Characters(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

void PrintTable(std::ostream& out, const std::vector<std::array<std::string, 4>>& rows) {
  std::array<std::size_t, 4> widths = {};
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], Characters(row[i]));
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size()) line.append(widths[i] - Characters(row[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

int ListProjects(ToolContext& context, const Options& options) {
  Platform& platform = context.platform();
  const EnvironmentCheck check = CheckEnvironment(platform.tools, platform.files);
  if (check.fault) {
    // Without the studio an empty list would only look like the truth.
    ProgressLine line(context.err, context.err_is_terminal);
    ToolMessages messages(context.err, line);
    messages.ShowMessage(TextService(check.settings.language_id)
                             .ComposeForStart(check.fault->message_id, {check.fault->parameter}));
    if (options.json) PrintFailureJson(context, ToJson(messages.Shown()));
    return kToolFailed;
  }
  const std::vector<RegisteredProject> projects = ListRegisteredProjects(platform);
  if (options.json) {
    Json list = Json::array();
    for (const RegisteredProject& project : projects) {
      list.push_back({{"name", project.name},
                      {"type", ShownType(project)},
                      {"directory", project.directory},
                      {"exists", project.exists}});
    }
    PrintJson(context, {{"projects", list}});
    return kToolDone;
  }
  std::vector<std::array<std::string, 4>> rows;
  rows.reserve(projects.size());
  for (const RegisteredProject& project : projects) {
    rows.push_back({OneLine(project.name), OneLine(ShownType(project)), OneLine(project.directory),
                    project.exists ? "" : "project file missing"});
  }
  PrintTable(context.out, rows);
  return kToolDone;
}

// --- scan, create and plan

// A project loaded from its settings, and what was said on the way.
struct LoadedProject {
  LoadedProject(ToolContext& context, const std::string& argument)
      : line(context.err, context.err_is_terminal), messages(context.err, line) {
    Platform& platform = context.platform();
    application = StartApplication(platform, messages, [this](const Message& message) {
      static_cast<void>(messages.ShowMessage(message));
    });
    if (application == nullptr) return;
    application->unattended = true;
    const ProjectArgument project = ReadProjectArgument(platform, argument, context.windows_path);
    SelectProject(*application, project.name, project.directory);
    if (IsThere(platform)) {
      usable = LoadSelectedProject(*application);
    } else {
      // A mistyped name deserves a better word than that its program was never built. A path that
      // ends in a separator names no project at all.
      messages.ShowMessage(application->texts.Compose(
          kMessageCannotEdit, {project.name.empty() ? argument : project.name}));
    }
  }

  [[nodiscard]] bool IsThere(const Platform& platform) const {
    const CurrentProject& project = application->project;
    const std::string group_file = project.directory + "\\" + project.name + ".vbg";
    return !project.name.empty() && !project.directory.empty() &&
           (platform.files.FileExists(project.SettingsFile()) ||
            platform.files.FileExists(project.StudioProjectFile()) ||
            platform.files.FileExists(group_file));
  }

  ProgressLine line;
  ToolMessages messages;
  std::unique_ptr<Application> application;
  bool usable = false;  // else a message was shown
};

Json ToJson(const std::vector<MissingItem>& missing) {
  Json list = Json::array();
  for (const MissingItem& item : missing) {
    list.push_back({{"name", item.name}, {"chain", item.chain}});
  }
  return list;
}

// Nobody is there to look for a missing file: it is left out and reported.
ScanResult RunQuietScan(LoadedProject& project) {
  ScanLineView view(project.line, project.application->texts);
  IgnoreMissingFiles nobody;
  return RunScan(*project.application, view, nobody);
}

void PrintMissing(std::ostream& stream, const std::vector<MissingItem>& missing) {
  for (const MissingItem& item : missing) {
    stream << "missing: " << OneLine(ChainText(item.chain)) << '\n';
  }
}

void PrintScan(std::ostream& out, const SetupDocument& document, const ScanResult& result) {
  std::vector<std::array<std::string, 4>> rows;
  for (const FileRow& row : document.files.Rows()) {
    rows.push_back({OneLine(row.source), OneLine(row.destination), OneLine(row.registration), ""});
  }
  PrintTable(out, rows);
  for (const std::string& line : document.extra_todo_lines) {
    out << "to do: " << OneLine(line) << '\n';
  }
  PrintMissing(out, result.missing);
  out << Counted(rows.size(), "file") << ", "
      << Counted(document.extra_todo_lines.size(), "to-do line") << ", " << result.missing.size()
      << " missing\n";
}

Json ScanToJson(const SetupDocument& document, const ScanResult& result,
                const std::vector<Message>& messages) {
  Json rows = Json::array();
  for (const FileRow& row : document.files.Rows()) {
    rows.push_back(
        {{"source", row.source}, {"destination", row.destination}, {"register", row.registration}});
  }
  return {{"result", result.succeeded},        {"program", document.program_name},
          {"rows", std::move(rows)},           {"todo", document.extra_todo_lines},
          {"missing", ToJson(result.missing)}, {"messages", ToJson(messages)}};
}

int Scan(ToolContext& context, const Options& options) {
  LoadedProject project(context, options.subject);
  ScanResult result;
  if (project.usable) {
    result = RunQuietScan(project);
    // What a failed scan found is no basis for the next one.
    if (options.save && result.succeeded && !SaveSettings(*project.application)) {
      result.succeeded = false;
    }
  }
  const SetupDocument nothing;
  const SetupDocument& document = project.usable ? project.application->document : nothing;
  if (options.json) {
    PrintJson(context, ScanToJson(document, result, project.messages.Shown()));
  } else if (project.usable) {
    PrintScan(context.out, document, result);
  }
  if (!result.succeeded) return kToolFailed;
  return result.missing.empty() ? kToolDone : kToolSomethingMissing;
}

int Create(ToolContext& context, const Options& options) {
  LoadedProject project(context, options.subject);
  ScanResult scanned;
  bool ready = project.usable;
  if (ready && options.scan) {
    scanned = RunQuietScan(project);
    PrintMissing(context.err, scanned.missing);
    ready = scanned.succeeded;
  }
  CreateResult result;
  if (ready) {
    ProgressLineView view(project.line, project.application->texts);
    result = RunCreate(*project.application, view);
  }
  if (options.json) {
    Json json = {{"result", result.succeeded},
                 {"output", result.output_directory},
                 {"disks", result.disks},
                 {"files", result.files},
                 {"bytes", result.archive_bytes}};
    if (options.scan) json["missing"] = ToJson(scanned.missing);
    json["messages"] = ToJson(project.messages.Shown());
    PrintJson(context, json);
  } else if (result.succeeded) {
    context.out << OneLine(result.output_directory) << ": "
                << Summary(result.disks, result.files, result.archive_bytes) << '\n';
  }
  if (!result.succeeded) return kToolFailed;
  // A build server must not ship what a developer at the window would have been told of.
  return scanned.missing.empty() ? kToolDone : kToolSomethingMissing;
}

void PrintPlan(std::ostream& out, const CreatePlan& plan) {
  for (const CreatePlan::File& file : plan.files) {
    out << OneLine(file.archive) << ": " << Counted(file.archive_bytes, "byte");
    for (std::size_t i = 0; i < file.disks.size(); ++i) {
      out << (i == 0 ? " on disk " : ", ") << file.disks[i];
    }
    out << '\n';
  }
  if (plan.fits) {
    out << Summary(plan.disks, plan.files.size(), plan.archive_bytes) << '\n';
  } else {
    out << "does not fit: the setup kit alone needs more than one disk\n";
  }
}

int PlanDisks(ToolContext& context, const Options& options) {
  LoadedProject project(context, options.subject);
  std::optional<CreatePlan> plan;
  if (project.usable) {
    ProgressLineView view(project.line, project.application->texts);
    plan = PlanCreate(*project.application, view);
  }
  if (!plan) {
    if (options.json) PrintFailureJson(context, ToJson(project.messages.Shown()));
    return kToolFailed;
  }
  if (options.json) {
    Json files = Json::array();
    for (const CreatePlan::File& file : plan->files) {
      files.push_back(
          {{"archive", file.archive}, {"bytes", file.archive_bytes}, {"disks", file.disks}});
    }
    PrintJson(context, {{"disks", plan->disks}, {"files", files}});
  } else {
    PrintPlan(context.out, *plan);
  }
  return plan->fits ? kToolDone : kToolDoesNotFit;
}

// --- verify

int Verify(ToolContext& context, const Options& options) {
  const FileReader& files = context.platform().files;
  std::string directory = options.subject;
  if (!IsAbsolutePath(directory) || !files.FolderExists(directory)) {
    directory = context.windows_path(directory).value_or(directory);
  }
  const VerifyResult result = VerifyInstallation(files, directory);
  if (options.json) {
    Json damages = Json::array();
    for (const Damage& damage : result.damages) {
      damages.push_back({{"where", damage.where}, {"what", damage.what}});
    }
    PrintJson(context, {{"sound", result.Sound()},
                        {"disks", result.disks},
                        {"files", result.files},
                        {"bytes", result.bytes},
                        {"damages", damages}});
  } else if (result.Sound()) {
    context.out << "sound: " << Summary(result.disks, result.files, result.bytes) << '\n';
  } else {
    for (const Damage& damage : result.damages) {
      context.out << OneLine(damage.where + ": " + damage.what) << '\n';
    }
  }
  return result.Sound() ? kToolDone : kToolDamaged;
}

// --- command line

int Parse(const std::vector<std::string>& arguments, ToolContext& context) {
  CLI::App app("Builds and checks installations of studio projects without a window.",
               "TXSetupTool");
  app.set_version_flag("--version", "TXSetupTool " + context.version);
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  app.footer(
      "PROJECT is a registered name or [ProjectPath\\]ProjectName[.txs|.swz].\n"
      "Results go to standard output, messages to standard error.\n"
      "On Linux the folder that TAVIX_ROOT names stands for the studio's computer.\n"
      "Exit codes: 0 done, 1 failed, 2 wrong usage, 3 something is missing (scan,\n"
      "create --scan: the installation was built without it), 4 does not fit (plan), 5 damaged\n"
      "(verify).");

  using Command = int (*)(ToolContext&, const Options&);
  Options options;
  std::vector<std::pair<CLI::App*, Command>> commands;
  const auto add = [&](const char* name, const char* description, const char* subject,
                       const char* subject_description, Command command) {
    CLI::App* const sub = app.add_subcommand(name, description);
    if (subject != nullptr)
      sub->add_option(subject, options.subject, subject_description)
          ->required()
          ->check(CLI::Validator(
              [](const std::string& text) { return text.empty() ? "It is empty" : ""; }, ""));
    sub->add_flag("--json", options.json, "Print the result as one JSON object");
    commands.emplace_back(sub, command);
    return sub;
  };
  constexpr const char* kProjectHelp = "Registered name or [ProjectPath\\]ProjectName[.txs|.swz]";
  add("projects", "List the registered projects", nullptr, nullptr, ListProjects);
  add("scan", "Find the files that a project needs", "PROJECT", kProjectHelp, Scan)
      ->add_flag("--save", options.save, "Write the settings file afterwards");
  add("create", "Create the installation of a project", "PROJECT", kProjectHelp, Create)
      ->add_flag("--scan", options.scan, "Find the files that the project needs first");
  add("plan", "Show which file goes on which disk, and write no installation", "PROJECT",
      kProjectHelp, PlanDisks);
  add("verify", "Read a finished installation back and check it", "DIRECTORY",
      "Directory that holds DISK1, as the host or as Windows writes it", Verify);

  // The parser would only say that a command is missing.
  const bool is_unknown =
      !arguments.empty() && !arguments[0].starts_with('-') &&
      std::none_of(commands.begin(), commands.end(), [&arguments](const auto& known) {
        return known.first->get_name() == arguments[0];
      });
  if (is_unknown) {
    context.err << "Unknown command '" << OneLine(arguments[0])
                << "'\nRun with --help for more information.\n";
    return kToolWrongUsage;
  }
  try {
    // The parser takes the arguments from the back.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error, context.out, context.err) == 0 ? kToolDone : kToolWrongUsage;
  }
  for (const auto& [sub, command] : commands) {
    if (sub->parsed()) return command(context, options);
  }
  return kToolWrongUsage;
}

}  // namespace

int RunTool(const std::vector<std::string>& arguments, ToolContext& context) {
  int code = kToolFailed;
  const auto fail = [&](const std::string& reason) {
    context.err << "TXSetupTool: " << reason << '\n';
    // No message of the string table, so it has no number.
    if (std::ranges::find(arguments, "--json") == arguments.end()) return;
    PrintFailureJson(context, Json::array({{{"id", 0}, {"text", reason}}}));
    context.out.flush();
  };
  try {
    code = Parse(arguments, context);
    context.out.flush();
    if (!context.out) {
      context.err << "TXSetupTool: the result cannot be written\n";
      if (code == kToolDone) code = kToolFailed;
    }
  } catch (const RuntimeError& error) {
    fail(error.Description() + " (" + std::to_string(static_cast<int>(error.Number())) + ")");
  } catch (const std::exception& error) {
    fail(error.what());
  }
  context.err.flush();
  return code;
}

}  // namespace txs
