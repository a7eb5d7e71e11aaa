// The studio's own `ProjectConfigurator`, a COM component.
#pragma once

#include <memory>
#include <string_view>

#include "environment/file_system.h"
#include "environment/project_configurator.h"

namespace txs {

// Creates the component of this class ("Tavix.ProjectConfigurator" or "{...}"); null when it cannot
// be created. It is called late-bound: its method OpenProject takes the path of the project file
// and answers the value. `files` must outlive the result, which belongs to the thread that made it.
[[nodiscard]] std::unique_ptr<ProjectConfigurator> MakeComConfigurator(std::string_view class_name,
                                                                       const FileReader& files);

}  // namespace txs
