#include "text/captions.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "environment/code_page.h"
#include "environment/system_tools.h"

namespace txs {
namespace {

std::string CaptionOf(const std::string& tag, const TextService& texts) {
  const std::optional<std::int64_t> id = ParseWholeNumber(tag);
  // Ids have 32 bits on every platform, however wide `long` is there.
  if (!id || !std::in_range<std::int32_t>(*id)) return {};
  return texts.GetText(static_cast<std::int32_t>(*id));
}

// One statement of the original kind: when it fails, the next one runs.
template <typename Statement>
void SkipFailure(const Statement& statement) {
  try {
    statement();
  } catch (...) {
    // The control keeps the caption of its design. A toolkit may throw anything.
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
