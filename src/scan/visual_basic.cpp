#include "scan/visual_basic.h"

#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr char kDesigner5[] = "Visual Basic 5.0";
constexpr char kDesigner6[] = "Visual Basic 6.0";

VisualBasicInstallation Installation(const SystemTools& tools, std::string_view key,
                                     std::string_view value, std::string_view dependency_file) {
  const std::string directory =
      NormalizeDirectory(tools.RegistryText(Hive::kLocalMachine, key, value, /*default_value=*/{}));
  if (directory.empty()) return {};
  return {directory, FullPath(JoinPath(directory, dependency_file))};
}

}  // namespace

bool IsVisualBasic(std::string_view designer) {
  return EqualNoCase(designer, kDesigner5) || EqualNoCase(designer, kDesigner6);
}

std::optional<VisualBasicInstallation> FindVisualBasic(const SystemTools& tools,
                                                       std::string_view designer) {
  if (EqualNoCase(designer, kDesigner5)) {
    return Installation(tools, "Software\\Microsoft\\Visual Basic\\5.0", "InstallDir",
                        "SETUPKIT\\KITFIL32\\VB5DEP.INI");
  }
  if (EqualNoCase(designer, kDesigner6)) {
    return Installation(tools,
                        "Software\\Microsoft\\VisualStudio\\6.0\\Setup\\Microsoft Visual Basic",
                        "ProductDir", "Wizards\\PDWizard\\Vb6dep.ini");
  }
  return std::nullopt;
}

}  // namespace txs
