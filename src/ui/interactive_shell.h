// The windows that an interactive start needs: implemented by the forms, scripted in tests.
#pragma once

#include <string>

#include "document/application.h"

namespace txs {

class InteractiveShell {
 public:
  virtual ~InteractiveShell() = default;

  // The Open-Project dialog, modal: the chosen name, empty when the user cancelled.
  [[nodiscard]] virtual std::string ChooseProject(Application& application) = 0;

  // The main form on the project that was just opened; returns when it is closed. What loading the
  // form does to the state has been done (LoadMainFormState).
  virtual void RunMainForm(Application& application) = 0;
};

}  // namespace txs
