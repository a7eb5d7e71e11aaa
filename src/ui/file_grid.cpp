#include "ui/file_grid.h"

#include <wx/dnd.h>
#include <wx/settings.h>
#include <wx/utils.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <utility>

#include "ui/file_grid_native.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

struct ColumnStyle {
  FileColumn column;
  int width;  // device-independent pixels
  wxAlignment alignment;
  wxEllipsizeMode ellipsis;
  // Length, Disk and Name are computed by the checks and by Create, which would overwrite an edit
  // without a word.
  bool editable;
};

// Cut off in the middle: the variable in front and the file's name behind both stay visible.
constexpr std::array<ColumnStyle, kFileColumnCount> kColumns = {{
    {FileColumn::kSource, 310, wxALIGN_LEFT, wxELLIPSIZE_MIDDLE, true},
    {FileColumn::kDestination, 190, wxALIGN_LEFT, wxELLIPSIZE_MIDDLE, true},
    {FileColumn::kLength, 90, wxALIGN_RIGHT, wxELLIPSIZE_END, false},
    {FileColumn::kDisk, 80, wxALIGN_LEFT, wxELLIPSIZE_END, false},
    {FileColumn::kCompressed, 130, wxALIGN_LEFT, wxELLIPSIZE_END, false},
    {FileColumn::kRegister, 100, wxALIGN_LEFT, wxELLIPSIZE_END, true},
}};

unsigned int ModelColumn(FileColumn column) { return static_cast<unsigned int>(column) - 1; }

// Computed columns are left out: they change while the row stays the same.
std::size_t Fingerprint(const FileRow& row) {
  const std::hash<std::string> hash;
  std::size_t sum = hash(row.source);
  sum = sum * 31 + hash(row.destination);
  return sum * 31 + hash(row.registration);
}

}  // namespace

// Reads the list; counts rows from 0, as the control does.
class FileGrid::Rows : public wxDataViewVirtualListModel {
 public:
  explicit Rows(FileGrid& grid)
      : wxDataViewVirtualListModel(static_cast<unsigned int>(grid.files_.RowCount())),
        grid_(grid) {}

  void SetMarkStyle(const wxDataViewItemAttr& style) { mark_style_ = style; }

  unsigned int GetColumnCount() const override { return kFileColumnCount; }
  wxString GetColumnType(unsigned int /*column*/) const override { return "string"; }

  void GetValueByRow(wxVariant& value, unsigned int row, unsigned int column) const override {
    // Between a change of the list and RefreshRows the control may ask for rows that are gone.
    const bool exists = row < grid_.files_.RowCount();
    value = exists ? ToWx(grid_.files_.Cell(row + std::size_t{1}, kColumns.at(column).column))
                   : wxString();
  }

  bool GetAttrByRow(unsigned int row, unsigned int /*column*/,
                    wxDataViewItemAttr& attributes) const override {
    if (row >= grid_.files_.RowCount() || !grid_.files_.Row(row + std::size_t{1}).marked) {
      return false;
    }
    attributes = mark_style_;
    return true;
  }

  // The user has left the editor. Always false: who listens may have changed the rows, and the
  // control would announce a row by a number that is no longer its own.
  bool SetValueByRow(const wxVariant& value, unsigned int row, unsigned int column) override {
    const std::size_t number = row + std::size_t{1};
    if (row >= grid_.files_.RowCount()) return false;
    const FileColumn file_column = kColumns.at(column).column;
    const std::string text = FromWx(value.GetString());
    if (text == grid_.files_.Cell(number, file_column)) return false;
    if (grid_.events_.edited) grid_.events_.edited(number, file_column, text);
    grid_.RememberRow(number);
    grid_.Refresh();
    return false;
  }

 private:
  FileGrid& grid_;
  wxDataViewItemAttr mark_style_;
};

class FileGrid::DropTarget : public wxFileDropTarget {
 public:
  explicit DropTarget(FileGrid& grid) : grid_(grid) {}

  bool OnDropFiles(wxCoord /*x*/, wxCoord /*y*/, const wxArrayString& names) override {
    if (names.empty() || !grid_.events_.files_dropped) return false;
    std::vector<std::string> paths;
    paths.reserve(names.size());
    for (const wxString& name : names) paths.push_back(FromWx(name));
    // Who listens may show a question; the program that the files come from must not wait for its
    // answer.
    grid_.CallAfter([&grid = grid_, paths] { grid.events_.files_dropped(paths); });
    return true;
  }

 private:
  FileGrid& grid_;
};

FileGrid::FileGrid(wxWindow* parent, FileList& files, Events events)
    : wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                     wxDV_MULTIPLE | wxDV_VERT_RULES),
      files_(files),
      events_(std::move(events)),
      rows_(new Rows(*this)) {
  AssociateModel(rows_);
  rows_->DecRef();
  AddColumns();
  UpdateMarkStyle();
  RememberRows();
  ShowCutTextsAsTooltips(*this);
  LetTabLeave(*this);
  GetMainWindow()->SetDropTarget(new DropTarget(*this));
  BindEvents();
}

FileGrid::~FileGrid() {
  // The control's own destructor ends an edit that never was, and says so; by then no FileGrid is
  // left to hear it.
  SetEvtHandlerEnabled(false);
  // The control outlives what its model reads from.
  WithoutSelectionEvents(*this, [this] { AssociateModel(nullptr); });
}

void FileGrid::AddColumns() {
  for (const ColumnStyle& style : kColumns) {
    auto* const renderer = new wxDataViewTextRenderer(
        "string", style.editable ? wxDATAVIEW_CELL_EDITABLE : wxDATAVIEW_CELL_INERT,
        style.alignment | wxALIGN_CENTRE_VERTICAL);
    renderer->EnableEllipsize(style.ellipsis);
    TakeEditsWhenLeft(*renderer);
    AppendColumn(new wxDataViewColumn(wxString(), renderer, ModelColumn(style.column),
                                      FromDIP(style.width), style.alignment,
                                      wxDATAVIEW_COL_RESIZABLE));
  }
  // A click must select a row, never open an editor in which the Delete key would then work on the
  // text. StartEdit allows editing for as long as it needs. Not before all columns are there: where
  // wxWidgets draws the list, Left and Right go from cell to cell only if some column was editable
  // when the last one came.
  for (unsigned int i = 0; i < GetColumnCount(); ++i) {
    GetColumn(i)->GetRenderer()->SetMode(wxDATAVIEW_CELL_INERT);
  }
}

void FileGrid::BindEvents() {
  Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) { AnnounceSelection(); });
  // Enter or a double click. The editor opens when the toolkit has done with the click.
  Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED,
       [this](wxDataViewEvent&) { CallAfter(&FileGrid::EditCurrentCell); });
  Bind(wxEVT_DATAVIEW_ITEM_EDITING_STARTED, [this](wxDataViewEvent&) { editing_ = true; });
  Bind(wxEVT_DATAVIEW_ITEM_EDITING_DONE, [this](wxDataViewEvent&) { editing_ = false; });
  KeyWindow(*this).Bind(wxEVT_KEY_DOWN, &FileGrid::OnKey, this);
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    UpdateMarkStyle();
    event.Skip();
  });
}

void FileGrid::OnKey(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  const bool plain = !event.HasAnyModifiers() && !editing_;
  if (plain && key == WXK_F2) {
    EditCurrentCell();
  } else if (plain && (key == WXK_DELETE || key == WXK_NUMPAD_DELETE)) {
    if (events_.delete_pressed) events_.delete_pressed();
  } else {
    event.Skip();
  }
}

void FileGrid::EditCurrentCell() {
  const wxDataViewItem item = GetCurrentItem();
  if (!item.IsOk()) return;
  const wxDataViewColumn* const column = GetCurrentColumn();
  StartEdit(rows_->GetRow(item) + std::size_t{1},
            column == nullptr ? FileColumn::kSource : kColumns.at(column->GetModelColumn()).column);
}

void FileGrid::StartEdit(std::size_t row, FileColumn column) {
  if (row < 1 || row > files_.RowCount() || row > rows_->GetCount()) return;
  const unsigned int index = ModelColumn(column);
  if (!kColumns.at(index).editable) {
    wxBell();
    return;
  }
  wxDataViewColumn* const shown = GetColumn(index);
  shown->GetRenderer()->SetMode(wxDATAVIEW_CELL_EDITABLE);
  EditItem(rows_->GetItem(static_cast<unsigned int>(row - 1)), shown);
  shown->GetRenderer()->SetMode(wxDATAVIEW_CELL_INERT);
}

void FileGrid::TakeEdit() {
  if (editing_) TakeOpenEdit(*this);
}

void FileGrid::UpdateMarkStyle() {
  // Bold as well: a colour alone says nothing to everybody.
  const bool dark = wxSystemSettings::GetAppearance().IsUsingDarkBackground();
  wxDataViewItemAttr style;
  style.SetBold(true);
  style.SetColour(dark ? wxColour(0xFF, 0xE0, 0x9A) : wxColour(0x6B, 0x2A, 0x00));
  style.SetBackgroundColour(dark ? wxColour(0x5A, 0x3E, 0x0A) : wxColour(0xFF, 0xE8, 0xB8));
  rows_->SetMarkStyle(style);
  Refresh();
}

void FileGrid::SetColumnCaptions(const std::vector<std::string>& captions) {
  for (unsigned int i = 0; i < GetColumnCount() && i < captions.size(); ++i) {
    GetColumn(i)->SetTitle(ToWx(captions[i]));
  }
}

std::vector<int> FileGrid::ColumnWidths() const {
  std::vector<int> widths;
  for (unsigned int i = 0; i < GetColumnCount(); ++i) widths.push_back(GivenWidth(*GetColumn(i)));
  return widths;
}

void FileGrid::SetColumnWidths(const std::vector<int>& widths) {
  if (widths.size() != GetColumnCount()) return;
  const int smallest = FromDIP(20);
  for (unsigned int i = 0; i < GetColumnCount(); ++i) {
    GetColumn(i)->SetWidth(std::max(widths[i], smallest));
  }
}

void FileGrid::RememberRows() {
  fingerprints_.clear();
  fingerprints_.reserve(files_.RowCount());
  for (const FileRow& row : files_.Rows()) fingerprints_.push_back(Fingerprint(row));
}

void FileGrid::RememberRow(std::size_t row) {
  if (fingerprints_.size() != files_.RowCount() || row > fingerprints_.size()) return;
  fingerprints_[row - 1] = Fingerprint(files_.Row(row));
}

// Whether the list holds exactly the shown rows without `removed` (ascending).
bool FileGrid::IsGoneAfter(const std::vector<std::size_t>& removed) const {
  if (files_.RowCount() + removed.size() != fingerprints_.size()) return false;
  auto next_removed = removed.begin();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < fingerprints_.size(); ++i) {
    if (next_removed != removed.end() && *next_removed == i + 1) {
      ++next_removed;
      continue;
    }
    if (Fingerprint(files_.Rows()[kept++]) != fingerprints_[i]) return false;
  }
  return true;
}

// The rows of which the list is shorter than what is shown, ascending.
std::vector<std::size_t> FileGrid::FindRemoved() const {
  std::vector<std::size_t> removed = SelectedRows();
  // The usual case, and the right one of two equal neighbours.
  if (IsGoneAfter(removed)) return removed;
  removed.clear();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < fingerprints_.size(); ++i) {
    if (kept < files_.RowCount() && Fingerprint(files_.Rows()[kept]) == fingerprints_[i]) {
      ++kept;
    } else {
      removed.push_back(i + 1);
    }
  }
  return removed;
}

void FileGrid::RefreshRows() {
  const std::size_t shown = fingerprints_.size();
  const std::size_t rows = files_.RowCount();
  if (rows < shown) {
    const std::vector<std::size_t> removed = FindRemoved();
    // Without a survivor the control would look for a new current row after each deletion, which
    // takes seconds. And when others were changed at once, there is no telling which row is which.
    if (rows == 0 || !IsGoneAfter(removed)) {
      ResetRows();
      return;
    }
    RemoveRows(removed);
  }
  for (std::size_t i = shown; i < rows; ++i) rows_->RowAppended();
  RememberRows();
  Refresh();
}

void FileGrid::RemoveRows(const std::vector<std::size_t>& removed) {
  const int selected_before = GetSelectedItemsCount();
  WithoutSelectionEvents(*this, [&] {
    // Before anything goes: the control would select the row behind a deleted current one, and
    // nothing else.
    MakeSurvivorCurrent(removed);
    for (auto row = removed.rbegin(); row != removed.rend(); ++row) {
      rows_->RowDeleted(static_cast<unsigned int>(*row - 1));
    }
    const wxDataViewItem current = GetCurrentItem();
    if (current.IsOk()) ScrollToRow(*this, rows_->GetRow(current));
  });
  if (GetSelectedItemsCount() != selected_before) AnnounceSelection();
}

// The row behind the last of `removed` (ascending), or before it when none follows. One is left.
void FileGrid::MakeSurvivorCurrent(const std::vector<std::size_t>& removed) {
  std::size_t survivor = removed.back() + 1;
  if (survivor > rows_->GetCount()) {
    survivor = removed.back() - 1;
    for (auto row = std::next(removed.rbegin()); row != removed.rend() && *row == survivor; ++row) {
      --survivor;
    }
  }
  SetCurrentItem(rows_->GetItem(static_cast<unsigned int>(survivor - 1)));
}

void FileGrid::ResetRows() {
  const bool had_selection = GetSelectedItemsCount() > 0;
  WithoutSelectionEvents(*this, [this] {
    rows_->Reset(static_cast<unsigned int>(files_.RowCount()));
    UnselectAll();
  });
  editing_ = false;
  RememberRows();
  if (had_selection) AnnounceSelection();
}

std::vector<std::size_t> FileGrid::SelectedRows() const {
  wxDataViewItemArray items;
  GetSelections(items);
  std::vector<std::size_t> rows;
  rows.reserve(items.size());
  for (const wxDataViewItem& item : items) rows.push_back(rows_->GetRow(item) + std::size_t{1});
  std::sort(rows.begin(), rows.end());
  return rows;
}

void FileGrid::SelectRows(const std::vector<std::size_t>& rows) {
  wxDataViewItemArray items;
  items.reserve(rows.size());
  for (const std::size_t row : rows) {
    if (row < 1 || row > rows_->GetCount()) continue;
    items.push_back(rows_->GetItem(static_cast<unsigned int>(row - 1)));
  }
  WithoutSelectionEvents(*this, [&] { SetSelections(items); });
  AnnounceSelection();
}

void FileGrid::ShowFirstMark() {
  const auto marked = std::find_if(files_.Rows().begin(), files_.Rows().end(),
                                   [](const FileRow& row) { return row.marked; });
  if (marked == files_.Rows().end()) return;
  const auto index = static_cast<unsigned int>(marked - files_.Rows().begin());
  if (index >= rows_->GetCount()) return;
  SetCurrentItem(rows_->GetItem(index));
  ScrollToRow(*this, index);
}

void FileGrid::AnnounceSelection() {
  if (events_.selection_changed) events_.selection_changed();
}

}  // namespace txs
