// `LoadCaptions`: a form and its controls get their texts by the numbers in their tags.
#pragma once

#include <string>
#include <vector>

#include "text/text_service.h"

namespace txs {

// A column header of a list view or a tab of a tab strip.
class CaptionItem {
 public:
  virtual ~CaptionItem() = default;
  [[nodiscard]] virtual std::string Tag() const = 0;
  virtual void SetText(const std::string& text) = 0;
};

class CaptionControl {
 public:
  virtual ~CaptionControl() = default;
  [[nodiscard]] virtual std::string Tag() const = 0;
  // "ListView", "TabStrip", "CommandButton", ...; compared without regard to case.
  [[nodiscard]] virtual std::string TypeName() const = 0;
  // Throws for a control that has no caption; it is then passed over.
  virtual void SetCaption(const std::string& text) = 0;
  [[nodiscard]] virtual std::vector<CaptionItem*> Items() = 0;
};

class CaptionForm {
 public:
  virtual ~CaptionForm() = default;
  [[nodiscard]] virtual std::string Tag() const = 0;
  virtual void SetCaption(const std::string& text) = 0;
  [[nodiscard]] virtual std::vector<CaptionControl*> Controls() = 0;
};

// Sets the caption of the form, of every control with a tag, and of the tagged column headers and
// tabs of list views and tab strips; other controls with items are captioned by their own forms. A
// tag that is no number gives an empty caption. Never throws: a control that cannot take its
// caption keeps the one of its design, and the following ones are still captioned.
void LoadCaptions(CaptionForm& form, const TextService& texts);

}  // namespace txs
