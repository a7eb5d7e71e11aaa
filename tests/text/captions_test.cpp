#include "text/captions.h"

#include <gtest/gtest.h>

#include <deque>
#include <stdexcept>

namespace txs {
namespace {

struct FakeItem : CaptionItem {
  FakeItem(std::string tag_text, std::string design)
      : tag(std::move(tag_text)), text(std::move(design)) {}
  std::string tag;
  std::string text;
  bool takes_text = true;

  [[nodiscard]] std::string Tag() const override { return tag; }
  void SetText(const std::string& new_text) override {
    if (!takes_text) throw std::runtime_error("refused");
    text = new_text;
  }
};

struct FakeControl : CaptionControl {
  FakeControl(std::string type_name, std::string tag_text)
      : type(std::move(type_name)), tag(std::move(tag_text)) {}
  std::string type;
  std::string tag;
  std::string caption = "design";
  bool has_caption = true;
  std::deque<FakeItem> items;

  [[nodiscard]] std::string Tag() const override { return tag; }
  [[nodiscard]] std::string TypeName() const override { return type; }
  void SetCaption(const std::string& text) override {
    if (!has_caption) throw std::runtime_error("no such property");
    caption = text;
  }
  [[nodiscard]] std::vector<CaptionItem*> Items() override {
    std::vector<CaptionItem*> all;
    for (FakeItem& item : items) all.push_back(&item);
    return all;
  }
};

struct FakeForm : CaptionForm {
  std::string tag;
  std::string caption = "design";
  std::deque<FakeControl> controls;
  bool takes_caption = true;

  [[nodiscard]] std::string Tag() const override { return tag; }
  void SetCaption(const std::string& text) override {
    if (!takes_caption) throw std::runtime_error("refused");
    caption = text;
  }
  [[nodiscard]] std::vector<CaptionControl*> Controls() override {
    std::vector<CaptionControl*> all;
    for (FakeControl& control : controls) all.push_back(&control);
    return all;
  }
};

const TextService kEnglish(1033);

TEST(LoadCaptions, FormAndControlsTakeTheTextsOfTheirTags) {
  FakeForm form;
  form.tag = "800";
  form.controls.emplace_back("CommandButton", "11");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.caption, "TavixStudio - Setup Wizard: Options");
  EXPECT_EQ(form.controls[0].caption, "Cancel");
}

TEST(LoadCaptions, WithoutATagTheDesignStays) {
  FakeForm form;
  form.controls.emplace_back("CommandButton", "");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.caption, "design");
  EXPECT_EQ(form.controls[0].caption, "design");
}

TEST(LoadCaptions, ATagThatIsNoNumberGivesAnEmptyCaptionAndTheNextControlIsStillCaptioned) {
  FakeForm form;
  form.controls.emplace_back("Label", "eleven");
  form.controls.emplace_back("Label", "11");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].caption, "");
  EXPECT_EQ(form.controls[1].caption, "Cancel");
}

TEST(LoadCaptions, AFormWhoseTagIsNoNumberHasAnEmptyCaption) {
  FakeForm form;
  form.tag = "x";

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.caption, "");
}

TEST(LoadCaptions, ATagWhoseNumberHasNoTextShowsTheNumber) {
  FakeForm form;
  form.controls.emplace_back("Label", "5000");
  form.controls.emplace_back("Label", "-5");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].caption, "5000@");
  EXPECT_EQ(form.controls[1].caption, "-5@");
}

TEST(LoadCaptions, ATagThatIsTooLargeForANumberGivesAnEmptyCaption) {
  FakeForm form;
  form.controls.emplace_back("Label", "2147483648");
  form.controls.emplace_back("Label", "99999999999999999999");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].caption, "");
  EXPECT_EQ(form.controls[1].caption, "");
}

TEST(LoadCaptions, AControlWithoutCaptionIsPassedOver) {
  FakeForm form;
  form.controls.emplace_back("TextBox", "11");
  form.controls[0].has_caption = false;
  form.controls.emplace_back("Label", "11");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].caption, "design");
  EXPECT_EQ(form.controls[1].caption, "Cancel");
}

TEST(LoadCaptions, ColumnHeadersAndTabsWithATagAreCaptioned) {
  FakeForm form;
  form.controls.emplace_back("listview", "");
  form.controls[0].items.emplace_back("610", "a");
  form.controls[0].items.emplace_back("", "kept");
  form.controls.emplace_back("TABSTRIP", "");
  form.controls[1].has_caption = false;
  form.controls[1].items.emplace_back("1107", "b");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].items[0].text, "Name");
  EXPECT_EQ(form.controls[0].items[1].text, "kept");
  EXPECT_EQ(form.controls[1].items[0].text, "Ger&man");
}

TEST(LoadCaptions, AnItemThatTakesNoTextKeepsItsDesignAndTheNextOneIsStillCaptioned) {
  FakeForm form;
  form.controls.emplace_back("ListView", "");
  form.controls[0].items.emplace_back("610", "design");
  form.controls[0].items[0].takes_text = false;
  form.controls[0].items.emplace_back("611", "design");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].items[0].text, "design");
  EXPECT_EQ(form.controls[0].items[1].text, "Directory");
}

TEST(LoadCaptions, AFormThatTakesNoCaptionHasItsControlsCaptioned) {
  FakeForm form;
  form.tag = "800";
  form.takes_caption = false;
  form.controls.emplace_back("Label", "11");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.caption, "design");
  EXPECT_EQ(form.controls[0].caption, "Cancel");
}

// Toolkits throw what they like, not only what derives from std::exception.
TEST(LoadCaptions, WhateverAControlThrowsStopsNothing) {
  struct Throwing : FakeControl {
    using FakeControl::FakeControl;
    void SetCaption(const std::string& /*text*/) override { throw 42; }
  };
  struct Form : FakeForm {
    Throwing first{"Label", "11"};
    [[nodiscard]] std::vector<CaptionControl*> Controls() override {
      return {&first, &controls[0]};
    }
  };
  Form form;
  form.controls.emplace_back("Label", "11");

  EXPECT_NO_THROW(LoadCaptions(form, kEnglish));

  EXPECT_EQ(form.first.caption, "design");
  EXPECT_EQ(form.controls[0].caption, "Cancel");
}

TEST(LoadCaptions, OtherControlsWithItemsAreLeftToTheirForms) {
  FakeForm form;
  form.controls.emplace_back("SSTab", "");
  form.controls[0].items.emplace_back("610", "kept");

  LoadCaptions(form, kEnglish);

  EXPECT_EQ(form.controls[0].items[0].text, "kept");
}

}  // namespace
}  // namespace txs
