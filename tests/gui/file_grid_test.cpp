#include "ui/file_grid.h"

#include <gmock/gmock.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/dnd.h>
#include <wx/frame.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include <numeric>

#include "gui/gui_support.h"
#include "ui/label_for.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kHardText[] =
    "<ProjectDir>\\Bilder & \"Größe\"\\<b>Übersicht</b>\\%s &amp; 'Straße'\\ÄÖÜ äöü ß.dll";

struct Edit {
  std::size_t row;
  FileColumn column;
  std::string text;

  bool operator==(const Edit&) const = default;
};

void PrintTo(const Edit& edit, std::ostream* out) {
  *out << "row " << edit.row << " column " << static_cast<int>(edit.column) << ": " << edit.text;
}

// A window with the grid and, below it, a text box that can take the focus.
class FileGridTest : public testing::Test {
 protected:
  void TearDown() override {
    if (frame_ != nullptr) frame_->Destroy();
    LetEventsRun();
  }

  void Show() {
    frame_ = new wxFrame(nullptr, wxID_ANY, "grid", wxPoint(100, 100), wxSize(1040, 420));
    auto* const panel = new wxPanel(frame_);
    grid_ = new FileGrid(panel, files_, MakeEvents());
    grid_->SetName("grdFiles");
    grid_->SetColumnCaptions(
        {"Quelldatei", "Zielverzeichnis", "Länge", "Diskette", "Name (kompr.)", "Registrieren"});
    other_ = new wxTextCtrl(panel, wxID_ANY);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(grid_, wxSizerFlags(1).Expand().Border());
    sizer->Add(other_, wxSizerFlags().Expand().Border());
    panel->SetSizer(sizer);
    ShowAndActivate(*frame_);
    grid_->SetFocus();
    ASSERT_TRUE(WaitFor([&] { return grid_->HasFocus(); }));
  }

  // What the main form does.
  FileGrid::Events MakeEvents() {
    FileGrid::Events events;
    events.edited = [this](std::size_t row, FileColumn column, const std::string& text) {
      edits_.push_back({row, column, text});
      files_.SetCell(row, column, text);
      if (refreshes_after_edit_) grid_->RefreshRows();
    };
    events.selection_changed = [this] { ++selection_changes_; };
    events.delete_pressed = [this] { ++deletes_pressed_; };
    events.files_dropped = [this](const std::vector<std::string>& paths) { dropped_ = paths; };
    return events;
  }

  void AddRows(std::size_t count) {
    for (std::size_t i = 1; i <= count; ++i) {
      files_.Append("<ProjectDir>\\Datei" + std::to_string(i) + ".dll", "<WinSysDir>", "1");
    }
  }

  void Delete(const std::vector<std::size_t>& rows) {
    files_.DeleteRows(rows);
    grid_->RefreshRows();
  }

  const wxDataViewVirtualListModel& Model() const {
    return dynamic_cast<const wxDataViewVirtualListModel&>(*grid_->GetModel());
  }

  wxDataViewItem Item(std::size_t row) const {
    return Model().GetItem(static_cast<unsigned int>(row - 1));
  }

  std::size_t CurrentRow() const {
    const wxDataViewItem item = grid_->GetCurrentItem();
    return item.IsOk() ? Model().GetRow(item) + std::size_t{1} : 0;
  }

  std::size_t TopRow() const {
    const wxDataViewItem item = grid_->GetTopItem();
    return item.IsOk() ? Model().GetRow(item) + std::size_t{1} : 0;
  }

  bool IsVisible(std::size_t row) const {
    const std::size_t rows = static_cast<std::size_t>(grid_->GetCountPerPage());
    return row >= TopRow() && row < TopRow() + rows;
  }

  wxDataViewColumn* Column(FileColumn column) const {
    return grid_->GetColumn(static_cast<unsigned int>(column) - 1);
  }

  std::string ShownText(std::size_t row, FileColumn column) const {
    wxVariant value;
    Model().GetValue(value, Item(row), static_cast<unsigned int>(column) - 1);
    return FromWx(value.GetString());
  }

  wxDataViewItemAttr Style(std::size_t row) const {
    wxDataViewItemAttr style;
    Model().GetAttr(Item(row), 0, style);
    return style;
  }

  wxPoint CellOnScreen(std::size_t row, FileColumn column) {
    wxRect cell;
    EXPECT_TRUE(WaitFor([&] {
      cell = grid_->GetItemRect(Item(row), Column(column));
      return cell.GetHeight() > 0;
    }));
    return grid_->ClientToScreen(wxPoint(cell.x + 20, cell.y + cell.height / 2));
  }

  void ClickCell(std::size_t row, FileColumn column = FileColumn::kSource, int modifier = 0) {
    wxUIActionSimulator simulator;
    if (modifier != 0) simulator.KeyDown(modifier);
    ClickAt(CellOnScreen(row, column));
    if (modifier != 0) simulator.KeyUp(modifier);
    LetEventsRun();
  }

  void OpenEditor(std::size_t row, FileColumn column) {
    grid_->StartEdit(row, column);
    ASSERT_TRUE(WaitFor([&] { return grid_->IsEditing(); }));
  }

  bool EditorCloses() {
    return WaitFor([&] { return !grid_->IsEditing(); });
  }

  // Text that no key of the test's keyboard types.
  void Paste(const std::string& text) {
    ASSERT_TRUE(wxTheClipboard->Open());
    wxTheClipboard->SetData(new wxTextDataObject(ToWx(text)));
    wxTheClipboard->Close();
    PressKey('V', wxMOD_CONTROL);
  }

  FileList files_;
  wxFrame* frame_ = nullptr;
  FileGrid* grid_ = nullptr;
  wxTextCtrl* other_ = nullptr;
  std::vector<Edit> edits_;
  std::vector<std::string> dropped_;
  int selection_changes_ = 0;
  int deletes_pressed_ = 0;
  bool refreshes_after_edit_ = false;
};

// --- What it shows

TEST_F(FileGridTest, AnEmptyListTakesTheFocusAndEveryKey) {
  Show();

  for (const int key : {WXK_F2, WXK_RETURN, WXK_DOWN, WXK_END, WXK_DELETE}) PressKey(key);
  PressKey('A', wxMOD_CONTROL);
  Click(*grid_);
  grid_->RefreshRows();
  grid_->ResetRows();
  grid_->SelectRows({1});
  grid_->ShowFirstMark();
  TakePicture(*frame_, "grid_empty");

  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
  EXPECT_FALSE(grid_->IsEditing());
  EXPECT_EQ(deletes_pressed_, 1);
}

TEST_F(FileGridTest, ACellShowsTheTextOfTheListAsItStands) {
  AddRows(3);
  files_.Row(2).source = kHardText;
  files_.Row(2).length_bytes = 12345678901;
  files_.Row(2).disk = "|2|3";
  files_.Row(2).compressed_name = "Größe.dl_";
  Show();

  EXPECT_EQ(ShownText(2, FileColumn::kSource), kHardText);
  EXPECT_EQ(ShownText(2, FileColumn::kDestination), "<WinSysDir>");
  EXPECT_EQ(ShownText(2, FileColumn::kLength), "12345678901");
  EXPECT_EQ(ShownText(2, FileColumn::kDisk), "|2|3");
  EXPECT_EQ(ShownText(2, FileColumn::kCompressed), "Größe.dl_");
  EXPECT_EQ(ShownText(2, FileColumn::kRegister), "1");
  EXPECT_EQ(ShownText(3, FileColumn::kLength), "");
}

TEST_F(FileGridTest, ARowThatIsGoneIsEmptyUntilTheRowsAreRefreshed) {
  AddRows(3);
  Show();

  files_.DeleteRows({2, 3});

  EXPECT_EQ(ShownText(3, FileColumn::kSource), "");
  EXPECT_FALSE(Style(3).GetBold());
}

TEST_F(FileGridTest, AMarkedRowIsBoldAndColouredUntilItIsEdited) {
  AddRows(12);
  files_.Row(2).source = kHardText;
  files_.Row(2).marked = true;
  files_.Row(4).marked = true;
  files_.Row(5).length_bytes = 20480;
  Show();
  TakePicture(*frame_, "grid_marked");
  grid_->SelectRows({3, 4});
  TakePicture(*frame_, "grid_marked_selected");

  EXPECT_TRUE(Style(2).GetBold());
  EXPECT_TRUE(Style(2).HasColour());
  EXPECT_TRUE(Style(2).HasBackgroundColour());
  EXPECT_FALSE(Style(3).GetBold());
  OpenEditor(4, FileColumn::kDestination);
  TakePicture(*frame_, "grid_marked_editing");
  TypeText("c");
  PressKey(WXK_RETURN);
  ASSERT_TRUE(EditorCloses());

  EXPECT_FALSE(Style(4).GetBold());
  EXPECT_FALSE(Style(4).HasBackgroundColour());
  EXPECT_TRUE(Style(2).GetBold());
}

TEST_F(FileGridTest, ShowFirstMarkScrollsToItAndSelectsNothing) {
  AddRows(500);
  files_.Row(400).marked = true;
  files_.Row(450).marked = true;
  Show();

  grid_->ShowFirstMark();

  EXPECT_EQ(CurrentRow(), 400U);
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
  EXPECT_TRUE(WaitFor([&] { return IsVisible(400); })) << "from " << TopRow();
}

TEST_F(FileGridTest, TheCurrentRowAfterADeletionIsVisible) {
  AddRows(500);
  Show();
  grid_->SelectRows({3, 480});

  Delete(grid_->SelectedRows());

  EXPECT_EQ(CurrentRow(), 479U);
  EXPECT_TRUE(WaitFor([&] { return IsVisible(479); })) << "from " << TopRow();
}

// --- Columns

TEST_F(FileGridTest, TheSourceIsTheWidestColumn) {
  Show();

  const std::vector<int> widths = grid_->ColumnWidths();

  ASSERT_THAT(widths, SizeIs(6));
  EXPECT_EQ(std::max_element(widths.begin(), widths.end()), widths.begin());
  EXPECT_THAT(widths, Each(Gt(0)));
  EXPECT_EQ(Column(FileColumn::kLength)->GetAlignment(), wxALIGN_RIGHT);
}

TEST_F(FileGridTest, ColumnWidthsComeBackAsTheyWereSet) {
  Show();

  grid_->SetColumnWidths({210, 120, 80, 70, 90, 60});

  EXPECT_THAT(grid_->ColumnWidths(), ElementsAre(210, 120, 80, 70, 90, 60));
}

TEST_F(FileGridTest, WidthsOfAnotherNumberOfColumnsArePassedOver) {
  Show();
  const std::vector<int> before = grid_->ColumnWidths();

  grid_->SetColumnWidths({});
  grid_->SetColumnWidths({10, 20, 30});

  EXPECT_EQ(grid_->ColumnWidths(), before);
}

TEST_F(FileGridTest, AColumnOfNoWidthStaysReachable) {
  Show();

  grid_->SetColumnWidths({0, -5, 80, 70, 90, 60});

  EXPECT_THAT(grid_->ColumnWidths(), Each(Gt(10)));
}

TEST_F(FileGridTest, TheMouseMakesAColumnWider) {
  AddRows(3);
  Show();
  const int before = grid_->ColumnWidths().front();
  const wxRect cell = grid_->GetItemRect(Item(1), Column(FileColumn::kSource));
  // The divider stands behind the cell's padding.
  const wxPoint edge =
      grid_->ClientToScreen(wxPoint(cell.x + cell.width + 3, cell.y - cell.height / 2));

  wxUIActionSimulator simulator;
  simulator.MouseMove(edge);
  LetEventsRun();
  simulator.MouseDown();
  LetEventsRun();
  simulator.MouseMove(edge + wxPoint(25, 0));
  LetEventsRun();
  simulator.MouseMove(edge + wxPoint(50, 0));
  LetEventsRun();
  simulator.MouseUp();

  EXPECT_TRUE(WaitFor([&] { return grid_->ColumnWidths().front() > before + 30; }))
      << before << " -> " << grid_->ColumnWidths().front();
}

TEST_F(FileGridTest, AClickOnAHeaderChangesNothing) {
  AddRows(3);
  Show();
  grid_->SelectRows({2});
  const wxRect cell = grid_->GetItemRect(Item(1), Column(FileColumn::kSource));

  ClickAt(grid_->ClientToScreen(wxPoint(cell.x + 40, cell.y - cell.height / 2)));

  EXPECT_EQ(grid_->GetSortingColumn(), nullptr);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U));
}

TEST_F(FileGridTest, ATextThatIsCutOffStandsInATooltip) {
  AddRows(3);
  files_.Row(2).source = std::string(kHardText) + std::string(200, 'x');
  Show();
  wxUIActionSimulator simulator;

  simulator.MouseMove(CellOnScreen(2, FileColumn::kSource));
  simulator.MouseMove(CellOnScreen(2, FileColumn::kSource) + wxPoint(3, 0));

  EXPECT_TRUE(WaitFor([] { return !ShownTooltip().empty(); }));
  EXPECT_EQ(ShownTooltip(), files_.Row(2).source);
  TakePicture(*frame_, "grid_tooltip");
  simulator.MouseMove(CellOnScreen(3, FileColumn::kSource));
  EXPECT_TRUE(WaitFor([] { return ShownTooltip().empty(); }));
}

// --- Selection

TEST_F(FileGridTest, AClickSelectsCtrlAddsShiftExtends) {
  AddRows(10);
  Show();

  ClickCell(7);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(7U));
  EXPECT_EQ(selection_changes_, 1);
  ClickCell(3, FileColumn::kDestination, WXK_CONTROL);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(3U, 7U));
  ClickCell(5, FileColumn::kLength, WXK_SHIFT);

  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(3U, 4U, 5U));
  TakePicture(*frame_, "grid_selected");
}

TEST_F(FileGridTest, TheKeyboardSelectsToo) {
  AddRows(10);
  Show();
  ClickCell(2);

  PressKey(WXK_DOWN);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(3U));
  PressKey(WXK_DOWN, wxMOD_SHIFT);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(3U, 4U));
  PressKey('A', wxMOD_CONTROL);

  EXPECT_THAT(grid_->SelectedRows(), SizeIs(10));
}

TEST_F(FileGridTest, SelectRowsPassesOverNumbersOfNoRow) {
  AddRows(4);
  Show();

  grid_->SelectRows({4, 0, 2, 5});

  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U, 4U));
  EXPECT_EQ(selection_changes_, 1);
  grid_->SelectRows({});
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
}

TEST_F(FileGridTest, AClickOnTheCurrentRowOpensNoEditor) {
  AddRows(5);
  Show();
  ClickCell(2, FileColumn::kSource);

  ClickCell(2, FileColumn::kDestination);
  ClickCell(2, FileColumn::kRegister);

  EXPECT_FALSE(grid_->IsEditing());
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U));
}

// --- Changes of the list

TEST_F(FileGridTest, AppendedRowsAppearAndTheSelectionStays) {
  AddRows(3);
  Show();
  grid_->SelectRows({1, 3});

  AddRows(2);
  grid_->RefreshRows();

  EXPECT_EQ(Model().GetCount(), 5U);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(1U, 3U));
  ClickCell(5);
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(5U));
}

TEST_F(FileGridTest, DeletedRowsLeaveTheSelectionAndTheNextRowBecomesCurrent) {
  AddRows(8);
  Show();
  grid_->SelectRows({3, 5});
  selection_changes_ = 0;

  Delete(grid_->SelectedRows());

  EXPECT_EQ(Model().GetCount(), 6U);
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
  EXPECT_EQ(selection_changes_, 1);
  EXPECT_EQ(files_.Row(CurrentRow()).source, "<ProjectDir>\\Datei6.dll");
}

TEST_F(FileGridTest, TheLastRowBecomesCurrentWhenNoneFollowsTheDeletedOnes) {
  AddRows(5);
  Show();
  grid_->SelectRows({4, 5});

  Delete(grid_->SelectedRows());

  EXPECT_EQ(CurrentRow(), 3U);
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
}

TEST_F(FileGridTest, RowsThatAreStillThereStaySelectedUnderTheirNewNumbers) {
  AddRows(8);
  Show();
  grid_->SelectRows({2, 4, 7});
  selection_changes_ = 0;

  Delete({1, 4, 5});

  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(1U, 4U));
  EXPECT_EQ(files_.Row(4).source, "<ProjectDir>\\Datei7.dll");
  EXPECT_EQ(selection_changes_, 1);
}

TEST_F(FileGridTest, OfTwoEqualRowsTheSelectedOneIsTheDeletedOne) {
  AddRows(2);
  files_.Append("a.dll", "", "");
  files_.Append("a.dll", "", "");
  Show();
  grid_->SelectRows({3});

  Delete({3});

  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
}

TEST_F(FileGridTest, ARowIsKnownAgainAfterItsEdit) {
  AddRows(5);
  Show();
  OpenEditor(2, FileColumn::kSource);
  TypeText("new");
  PressKey(WXK_RETURN);
  ASSERT_TRUE(EditorCloses());
  grid_->SelectRows({2, 5});

  Delete({1, 3});

  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(1U, 3U));
}

TEST_F(FileGridTest, AListThatChangedBeyondRecognitionIsShownWithoutSelection) {
  AddRows(6);
  Show();
  grid_->SelectRows({1, 6});

  files_.Clear();
  files_.Append("x.dll", "", "");
  files_.Append("y.dll", "", "");
  grid_->RefreshRows();

  EXPECT_EQ(Model().GetCount(), 2U);
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
}

TEST_F(FileGridTest, AllRowsCanBeDeletedAndOthersAdded) {
  AddRows(6);
  Show();
  PressKey('A', wxMOD_CONTROL);

  Delete(grid_->SelectedRows());
  EXPECT_EQ(Model().GetCount(), 0U);
  AddRows(2);
  grid_->RefreshRows();
  ClickCell(2);

  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U));
}

TEST_F(FileGridTest, RowsCanBeDeletedOneByOneFromLastToFirst) {
  AddRows(6);
  Show();

  for (std::size_t row = 6; row >= 1; --row) {
    grid_->SelectRows({row});
    Delete(grid_->SelectedRows());
    EXPECT_EQ(Model().GetCount(), row - 1);
    EXPECT_EQ(CurrentRow(), row - 1);
  }
}

TEST_F(FileGridTest, AnotherDocumentDropsSelectionAndEdit) {
  AddRows(300);
  Show();
  grid_->SelectRows({250});
  OpenEditor(250, FileColumn::kSource);
  TypeText("lost");

  files_.Clear();
  AddRows(40);
  grid_->ResetRows();

  EXPECT_FALSE(grid_->IsEditing());
  EXPECT_THAT(edits_, IsEmpty());
  EXPECT_THAT(grid_->SelectedRows(), IsEmpty());
  EXPECT_EQ(Model().GetCount(), 40U);
  EXPECT_TRUE(WaitFor([&] { return TopRow() == 1; }));
}

TEST_F(FileGridTest, ADeletionDropsAnOpenEdit) {
  AddRows(5);
  Show();
  OpenEditor(3, FileColumn::kSource);
  TypeText("lost");

  Delete({3});

  EXPECT_TRUE(EditorCloses());
  EXPECT_EQ(Model().GetCount(), 4U);
}

// --- Editing

TEST_F(FileGridTest, F2EditsTheCellThatWasClicked) {
  AddRows(3);
  Show();
  ClickCell(2, FileColumn::kDestination);

  PressKey(WXK_F2);
  ASSERT_TRUE(WaitFor([&] { return grid_->IsEditing(); }));
  TakePicture(*frame_, "grid_editing");
  TypeText("abc");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{2, FileColumn::kDestination, "abc"}));
  EXPECT_EQ(files_.Row(2).destination, "abc");
}

TEST_F(FileGridTest, EnterEditsTheCurrentCellOfTheKeyboard) {
  AddRows(3);
  Show();
  // The first one selects the first row.
  PressKey(WXK_DOWN);
  PressKey(WXK_DOWN);
  ASSERT_TRUE(WaitFor([&] { return CurrentRow() == 2; }));
  PressKey(WXK_RIGHT);

  PressKey(WXK_RETURN);
  ASSERT_TRUE(WaitFor([&] { return grid_->IsEditing(); }));
  TypeText("abc");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{2, FileColumn::kDestination, "abc"}));
}

TEST_F(FileGridTest, ADoubleClickEditsTheCellUnderThePointer) {
  AddRows(3);
  Show();

  DoubleClickAt(CellOnScreen(3, FileColumn::kRegister));
  ASSERT_TRUE(WaitFor([&] { return grid_->IsEditing(); }));
  TypeText("5");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{3, FileColumn::kRegister, "5"}));
}

TEST_F(FileGridTest, EscapeKeepsTheOldText) {
  AddRows(3);
  Show();
  OpenEditor(2, FileColumn::kSource);
  TypeText("abc");

  PressKey(WXK_ESCAPE);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, IsEmpty());
  EXPECT_TRUE(grid_->HasFocus());
}

TEST_F(FileGridTest, TheSameTextIsNoEdit) {
  AddRows(3);
  files_.Row(2).marked = true;
  Show();
  OpenEditor(2, FileColumn::kSource);

  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, IsEmpty());
  EXPECT_TRUE(files_.Row(2).marked);
}

TEST_F(FileGridTest, LeavingTheCellTakesItsText) {
  AddRows(3);
  Show();

  OpenEditor(2, FileColumn::kDestination);
  TypeText("left");
  Click(*other_);
  EXPECT_TRUE(EditorCloses());
  EXPECT_TRUE(WaitFor([&] { return other_->HasFocus(); }));
  OpenEditor(1, FileColumn::kDestination);
  TypeText("other row");
  ClickCell(3);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{2, FileColumn::kDestination, "left"},
                                  Edit{1, FileColumn::kDestination, "other row"}));
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(3U));
}

TEST_F(FileGridTest, AnOpenEditCanBeTakenByTheProgram) {
  AddRows(3);
  Show();
  grid_->TakeEdit();
  OpenEditor(2, FileColumn::kSource);
  TypeText("saved");

  grid_->TakeEdit();

  EXPECT_FALSE(grid_->IsEditing());
  EXPECT_THAT(edits_, ElementsAre(Edit{2, FileColumn::kSource, "saved"}));
  grid_->TakeEdit();
  EXPECT_THAT(edits_, SizeIs(1));
}

TEST_F(FileGridTest, TheEditorHoldsAndTakesEveryCharacter) {
  AddRows(3);
  files_.Row(1).source = kHardText;
  Show();
  OpenEditor(1, FileColumn::kSource);
  PressKey(WXK_END);
  TypeText("x");
  PressKey(WXK_RETURN);
  ASSERT_TRUE(EditorCloses());
  OpenEditor(2, FileColumn::kSource);
  Paste(kHardText);

  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{1, FileColumn::kSource, std::string(kHardText) + "x"},
                                  Edit{2, FileColumn::kSource, kHardText}));
}

TEST_F(FileGridTest, AVeryLongPathIsEditedWhole) {
  AddRows(1);
  std::string path = "<ProjectDir>";
  for (int i = 0; i < 200; ++i) path += "\\Verzeichnis_mit_Länge_" + std::to_string(i);
  files_.Row(1).source = path;
  Show();
  OpenEditor(1, FileColumn::kSource);

  PressKey(WXK_END);
  TypeText("x");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_EQ(files_.Row(1).source, path + "x");
}

TEST_F(FileGridTest, ComputedColumnsAreNotEdited) {
  AddRows(3);
  files_.Row(2).length_bytes = 5;
  Show();

  for (const FileColumn column :
       {FileColumn::kLength, FileColumn::kDisk, FileColumn::kCompressed}) {
    DoubleClickAt(CellOnScreen(2, column));
    PressKey(WXK_F2);
    PressKey(WXK_RETURN);
    EXPECT_FALSE(grid_->IsEditing());
  }

  EXPECT_THAT(edits_, IsEmpty());
}

TEST_F(FileGridTest, StartEditOfNoRowDoesNothing) {
  AddRows(3);
  Show();

  grid_->StartEdit(0, FileColumn::kSource);
  grid_->StartEdit(4, FileColumn::kSource);

  EXPECT_FALSE(grid_->IsEditing());
}

TEST_F(FileGridTest, TheRegistrationTakesWhatIsTyped) {
  AddRows(1);
  Show();

  OpenEditor(1, FileColumn::kRegister);
  PressKey(WXK_DELETE);
  PressKey(WXK_RETURN);
  EXPECT_TRUE(EditorCloses());
  OpenEditor(1, FileColumn::kRegister);
  TypeText("12");
  PressKey(WXK_RETURN);
  EXPECT_TRUE(EditorCloses());

  EXPECT_THAT(edits_, ElementsAre(Edit{1, FileColumn::kRegister, ""},
                                  Edit{1, FileColumn::kRegister, "12"}));
}

TEST_F(FileGridTest, TheDeleteKeyIsForTheRowsOnlyOutsideOfAnEdit) {
  AddRows(3);
  Show();
  ClickCell(2);

  PressKey(WXK_DELETE);
  EXPECT_EQ(deletes_pressed_, 1);
  OpenEditor(2, FileColumn::kSource);
  PressKey(WXK_END);
  PressKey(WXK_DELETE);
  PressKey(WXK_F2);
  EXPECT_TRUE(grid_->IsEditing());
  PressKey(WXK_HOME);
  PressKey(WXK_DELETE);
  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_EQ(deletes_pressed_, 1);
  EXPECT_EQ(files_.Row(2).source, "ProjectDir>\\Datei2.dll");
}

TEST_F(FileGridTest, LettersTypedIntoTheListOpenNothing) {
  AddRows(3);
  Show();
  ClickCell(2);

  TypeText("abc");
  PressKey('F', wxMOD_CONTROL);
  TypeText("abc");

  EXPECT_TRUE(grid_->HasFocus());
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U));
  EXPECT_FALSE(grid_->IsEditing());
}

TEST_F(FileGridTest, TheRowsMayBeRefreshedWhileAnEditIsTaken) {
  AddRows(3);
  Show();
  refreshes_after_edit_ = true;
  ClickCell(2);
  OpenEditor(2, FileColumn::kSource);
  TypeText("abc");

  PressKey(WXK_RETURN);

  EXPECT_TRUE(EditorCloses());
  EXPECT_EQ(ShownText(2, FileColumn::kSource), "abc");
  EXPECT_THAT(grid_->SelectedRows(), ElementsAre(2U));
}

TEST_F(FileGridTest, TheWindowMayCloseDuringAnEdit) {
  AddRows(3);
  Show();
  OpenEditor(2, FileColumn::kSource);
  TypeText("abc");

  frame_->Destroy();
  frame_ = nullptr;
  LetEventsRun();

  EXPECT_EQ(files_.RowCount(), 3U);
}

// Undefined behaviour once: the toolkit's destructor announced the end of an edit, with or without
// one, to a list of which only the toolkit's part was left.
TEST_F(FileGridTest, AListThatGoesHearsNothingMore) {
  AddRows(3);
  Show();
  int ended = 0;
  grid_->Bind(wxEVT_DATAVIEW_ITEM_EDITING_DONE, [&ended](wxDataViewEvent& event) {
    ++ended;
    event.Skip();
  });

  frame_->Destroy();
  frame_ = nullptr;
  LetEventsRun();

  EXPECT_EQ(ended, 0);
}

// --- Files dropped onto it

// A window whose every press of the mouse drags two files.
class FileSource : public wxFrame {
 public:
  // `pressed` is called when the drag is about to begin.
  explicit FileSource(const std::function<void()>& pressed)
      : wxFrame(nullptr, wxID_ANY, "source", wxPoint(1200, 100), wxSize(200, 200)) {
    auto* const panel = new wxPanel(this);
    panel->Bind(wxEVT_LEFT_DOWN, [this, panel, pressed](wxMouseEvent&) {
      // As a file manager sends them.
      const std::string uris =
          "file:///tmp/Gr%C3%B6%C3%9Fe%20%26%20Ma%C3%9F.dll\r\nfile:///tmp/b.ocx\r\n";
      wxCustomDataObject files{wxDataFormat(wxDF_FILENAME)};
      files.SetData(uris.size(), uris.data());
      wxDropSource source(files, panel);
      pressed();
      source.DoDragDrop();
      done = true;
    });
  }

  bool done = false;
};

TEST_F(FileGridTest, FilesDroppedOntoTheListAreReportedByTheirHostPaths) {
  constexpr int kPauseMilliseconds = 20;
  constexpr int kSteps = 10;
  AddRows(3);
  Show();
  const wxPoint to = CellOnScreen(2, FileColumn::kSource);
  wxPoint from;
  wxUIActionSimulator simulator;
  // The drag has a loop of its own, in which only a timer comes to the word.
  wxTimer hand;
  int step = 0;
  hand.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    ++step;
    if (step <= kSteps) {
      simulator.MouseMove(from + (to - from) * step / kSteps);
    } else {
      simulator.MouseUp();
    }
    hand.StartOnce(kPauseMilliseconds);
  });
  auto* const source = new FileSource([&] { hand.StartOnce(kPauseMilliseconds); });
  ShowAndActivate(*source);
  const wxRect place = source->GetScreenRect();
  from = place.GetPosition() + place.GetSize() / 2;
  simulator.MouseMove(from);
  ASSERT_TRUE(WaitFor([&] { return wxGetMousePosition() == from; }));

  simulator.MouseDown();

  EXPECT_TRUE(WaitFor([&] { return source->done && !dropped_.empty(); }));
  hand.Stop();
  EXPECT_THAT(dropped_, ElementsAre("/tmp/Größe & Maß.dll", "/tmp/b.ocx"));
  source->Destroy();
}

// --- Others

TEST_F(FileGridTest, AScreenReaderAnnouncesTheListByItsName) {
  AddRows(3);
  Show();

  SetAccessibleName(*grid_, "Dateiliste");

  EXPECT_EQ(NameOfFocus(*frame_), "Dateiliste");
}

TEST_F(FileGridTest, AHundredThousandRowsAreAddedSelectedDeletedAndEdited) {
  constexpr std::size_t kRows = 100'000;
  Show();

  AddRows(kRows);
  grid_->RefreshRows();
  ASSERT_EQ(Model().GetCount(), kRows);
  PressKey('A', wxMOD_CONTROL);
  std::vector<std::size_t> all(kRows);
  std::iota(all.begin(), all.end(), std::size_t{1});
  EXPECT_EQ(grid_->SelectedRows(), all);
  // Every second row goes, all others stay selected.
  std::vector<std::size_t> odd;
  for (std::size_t row = 1; row <= kRows; row += 2) odd.push_back(row);
  Delete(odd);

  EXPECT_EQ(Model().GetCount(), kRows / 2);
  EXPECT_THAT(grid_->SelectedRows(), SizeIs(kRows / 2));
  EXPECT_EQ(ShownText(kRows / 2, FileColumn::kSource), "<ProjectDir>\\Datei100000.dll");
  OpenEditor(kRows / 2, FileColumn::kDestination);
  TypeText("abc");
  PressKey(WXK_RETURN);
  EXPECT_TRUE(EditorCloses());
  EXPECT_THAT(edits_, ElementsAre(Edit{kRows / 2, FileColumn::kDestination, "abc"}));
  PressKey('A', wxMOD_CONTROL);
  Delete(grid_->SelectedRows());
  EXPECT_EQ(Model().GetCount(), 0U);
}

}  // namespace
}  // namespace txs
