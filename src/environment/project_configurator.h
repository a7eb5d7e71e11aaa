// `ProjectConfigurator`: the studio's component for studio projects.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "environment/system_tools.h"

namespace txs {

class ProjectConfigurator {
 public:
  virtual ~ProjectConfigurator() = default;

  // Opens the studio project file (full path of the .txs) and answers the value that the settings
  // reader keeps in the setup document. A missing project file yields an empty value; throws
  // RuntimeError when the file cannot be read.
  [[nodiscard]] virtual std::string OpenProject(std::string_view project_file) = 0;
};

// The reader of the project file that serves where the studio registers no component: answers
// section "Global", key "Version".
[[nodiscard]] std::unique_ptr<ProjectConfigurator> MakeBuiltInConfigurator(SystemTools& tools);

}  // namespace txs
