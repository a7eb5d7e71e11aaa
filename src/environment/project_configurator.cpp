#include "environment/project_configurator.h"

namespace txs {
namespace {

class BuiltInConfigurator : public ProjectConfigurator {
 public:
  explicit BuiltInConfigurator(SystemTools& tools) : tools_(tools) {}

  std::string OpenProject(std::string_view project_file) override {
    return tools_.ReadText("Global", "Version", /*default_value=*/"", project_file);
  }

 private:
  SystemTools& tools_;
};

}  // namespace

std::unique_ptr<ProjectConfigurator> MakeBuiltInConfigurator(SystemTools& tools) {
  return std::make_unique<BuiltInConfigurator>(tools);
}

}  // namespace txs
