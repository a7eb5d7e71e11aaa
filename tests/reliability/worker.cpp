// What the tests on the real disk kill: a process that does nothing but save, or write the
// registry.
//
//   reliability_worker save PROJECT [ROUNDS]    saves the settings of a registered project, in turn
//                                               with the texts "A" and "B" and lists of other
//                                               length
//   reliability_worker registry [ROUNDS]        writes values into the registry, in turn likewise
//
// Without ROUNDS until it is killed. Says "done" on standard output after every round. Exit code 0
// after the last, 1 when something could not be written.
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "document/settings_file.h"
#include "environment/installation.h"
#include "environment/platform.h"
#include "environment/runtime_error.h"
#include "startup/application_start.h"
#include "startup/console_message_boxes.h"
#include "startup/message_routing.h"

namespace {

constexpr std::size_t kRows = 2000;

void Save(txs::Application& application, bool is_a) {
  txs::SetupDocument& document = application.document;
  document.steps.info.german[0] = is_a ? "A" : "B";
  document.files.Clear();
  for (std::size_t i = 0; i < (is_a ? kRows : kRows / 2); ++i) {
    document.files.Append("<ProjectDir>\\" + std::to_string(i) + ".dat", "<ProjectDir>", "0");
  }
  if (!txs::SaveSettings(application)) std::exit(1);
}

void WriteRegistry(txs::Registry& registry, bool is_a) {
  registry.Write(txs::Hive::kCurrentUser, txs::kWizardKey, "Text",
                 std::string(is_a ? 20'000 : 10, is_a ? 'A' : 'B'));
}

int Work(int argc, char** argv) {
  const std::string task = argc > 1 ? argv[1] : "";
  const bool saves = task == "save" && argc > 2;
  if (!saves && task != "registry") return 2;
  const int rounds_at = saves ? 3 : 2;
  const long rounds = argc > rounds_at ? std::atol(argv[rounds_at]) : -1;

  txs::ConsoleMessageBoxes boxes(std::cerr, "reliability_worker");
  const std::unique_ptr<txs::OwnedPlatform> platform = txs::MakeHostPlatform(boxes);
  txs::RoutedMessages messages(platform->Get());
  const std::unique_ptr<txs::Application> application = txs::StartApplication(
      platform->Get(), messages,
      [](const txs::Message& message) { std::cerr << message.prompt << '\n'; });
  if (application == nullptr) return 1;
  if (saves) {
    txs::SelectProject(*application, argv[2], /*directory=*/{});
    if (!txs::LoadSelectedProject(*application)) return 1;
  }
  for (long round = 0; rounds < 0 || round < rounds; ++round) {
    const bool is_a = round % 2 == 0;
    if (saves) {
      Save(*application, is_a);
    } else {
      WriteRegistry(platform->Get().registry, is_a);
    }
    std::cout << "done" << std::endl;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Work(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
