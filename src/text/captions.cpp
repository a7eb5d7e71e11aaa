#include "text/captions.h"

#include <exception>
#include <limits>
#include <optional>

#include "environment/code_page.h"
#include "environment/system_tools.h"

namespace txs {
namespace {

std::string CaptionOf(const std::string& tag, const TextService& texts) {
  const std::optional<std::int64_t> id = ParseWholeNumber(tag);
  if (!id || *id < 0 || *id > std::numeric_limits<int>::max()) return {};
  return texts.GetText(static_cast<long>(*id));
}

// One statement of the original kind: when it fails, the next one runs.
template <typename Statement>
void SkipFailure(const Statement& statement) {
  try {
    statement();
  } catch (const std::exception&) {
    // The control keeps the caption of its design.
  }
}

void LoadItemCaptions(CaptionControl& control, const TextService& texts) {
  for (CaptionItem* item : control.Items()) {
    SkipFailure([&] {
      if (!item->Tag().empty()) item->SetText(CaptionOf(item->Tag(), texts));
    });
  }
}

}  // namespace

void LoadCaptions(CaptionForm& form, const TextService& texts) {
  SkipFailure([&] {
    if (!form.Tag().empty()) form.SetCaption(CaptionOf(form.Tag(), texts));
  });
  SkipFailure([&] {
    for (CaptionControl* control : form.Controls()) {
      SkipFailure([&] {
        if (!control->Tag().empty()) control->SetCaption(CaptionOf(control->Tag(), texts));
      });
      SkipFailure([&] {
        const std::string type = control->TypeName();
        if (EqualNoCase(type, "ListView") || EqualNoCase(type, "TabStrip")) {
          LoadItemCaptions(*control, texts);
        }
      });
    }
  });
}

}  // namespace txs
