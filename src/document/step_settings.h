// What the controls of the five steps hold: the model of the main form. An unattended run works on
// it without a form; the form binds to it both ways.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace txs {

// A setting that exists once per language of the setup.
template <typename T>
struct Bilingual {
  T german;
  T english;

  bool operator==(const Bilingual&) const = default;
};

// One row of the user-directory list: "<UserDir3>" and its directory on the target computer.
struct UserDirectory {
  long number = 0;  // 1 upwards; gaps arise when rows are deleted
  std::string directory;

  bool operator==(const UserDirectory&) const = default;
};

// Which frames of step 3 apply, by the project's form designer.
enum class FormDesigner {
  kOther,
  kVisualBasic5,
  kVisualBasic6,
  kDelphi4,
  kDelphi5,
};

struct StepSettings {
  // Step 1
  Bilingual<std::array<std::string, 3>> info;  // txtInfo 11 to 13, 21 to 23
  Bilingual<std::string> background_picture;   // txtBackgroundPicture 1, 2
  Bilingual<std::string> startmenu_folder;     // txtStartmenuFolder 1, 2
  Bilingual<std::string> startmenu_link;       // txtStartmenuLink 1, 2
  // Step 2
  std::string tavix_directory;                  // txtTavixDirectory, <TavixMainDir>
  std::string project_directory;                // txtProjectDirectory, <ProjectDir>
  std::vector<UserDirectory> user_directories;  // lvwUserDirectories, in list order
  // Step 3
  bool use_jet = false;   // chkVB5dbUseJet
  bool use_odbc = false;  // chkVB5dbUseODBC
  FormDesigner designer = FormDesigner::kOther;
  // Step 5
  long disk_size_index = 0;              // optDiskSize: 0 diskette, 1 "All"
  std::string setup_directory;           // txtSetupDirectory, in path-variable form
  bool minimal_mdac = false;             // chkMinimalMDAC
  bool service_pack = false;             // chkServicePack
  std::string file_count_label;          // digits only; "" until first computed
  std::string total_bytes_label;         // digits only; "" until first computed
  std::string disks_needed_label;        // digits only; "" until first computed
  bool disks_needed_is_estimate = true;  // the mark "(approx.)" is shown

  bool operator==(const StepSettings&) const = default;
};

}  // namespace txs
