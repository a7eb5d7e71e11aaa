#include "ui/form_captions.h"

#include <utility>

#include "ui/wx_text.h"

namespace txs {

class FormCaptions::Tagged : public CaptionControl {
 public:
  Tagged(long id, std::function<void(const wxString&)> show) : id_(id), show_(std::move(show)) {}

  [[nodiscard]] std::string Tag() const override { return std::to_string(id_); }
  [[nodiscard]] std::string TypeName() const override { return "Control"; }
  void SetCaption(const std::string& text) override { show_(ToWxLines(text)); }
  [[nodiscard]] std::vector<CaptionItem*> Items() override { return {}; }

 private:
  long id_;
  std::function<void(const wxString&)> show_;
};

FormCaptions::FormCaptions(wxTopLevelWindow& form, long id) : form_(form), id_(id) {}

FormCaptions::~FormCaptions() = default;

void FormCaptions::Add(wxControl& control, long id) {
  Add(id, [&control](const wxString& text) { control.SetLabel(text); });
}

void FormCaptions::Add(long id, std::function<void(const wxString& text)> show) {
  controls_.push_back(std::make_unique<Tagged>(id, std::move(show)));
}

std::string FormCaptions::Tag() const { return std::to_string(id_); }

void FormCaptions::SetCaption(const std::string& text) { form_.SetTitle(ToWx(text)); }

std::vector<CaptionControl*> FormCaptions::Controls() {
  std::vector<CaptionControl*> controls;
  for (const std::unique_ptr<Tagged>& control : controls_) controls.push_back(control.get());
  return controls;
}

}  // namespace txs
