// The grid `grdFiles`: the rows of the file list, edited in place.
#pragma once

#include <wx/dataview.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "document/file_list.h"

namespace txs {

// Shows rows straight from the list without copying them, so that 100,000 rows scroll without a
// pause. Rows count from 1. Source, destination and registration are edited in place, with F2,
// Enter or a double click; Enter takes the text and so does leaving the cell, Escape drops it.
class FileGrid : public wxDataViewCtrl {
 public:
  // None may throw.
  struct Events {
    // The text of a cell became another. The list still holds the old one: who listens stores it.
    std::function<void(std::size_t row, FileColumn column, const std::string& text)> edited;
    // By the user or by a function of the grid.
    std::function<void()> selection_changed;
    std::function<void()> delete_pressed;  // the Delete key, outside of an edit
    // Host paths of files dropped onto the list.
    std::function<void(const std::vector<std::string>& host_paths)> files_dropped;
  };

  // `files` must outlive the grid.
  FileGrid(wxWindow* parent, FileList& files, Events events);
  ~FileGrid() override;

  // The texts of the six columns, left to right.
  void SetColumnCaptions(const std::vector<std::string>& captions);
  [[nodiscard]] std::vector<int> ColumnWidths() const;   // pixels
  void SetColumnWidths(const std::vector<int>& widths);  // passed over unless there are six

  // Rows were added, deleted, marked or changed. Rows that are still there stay selected; after a
  // deletion the row that follows the deleted ones becomes current, without being selected.
  void RefreshRows();
  // The list is that of another document: an open edit and the selection are dropped, the first row
  // is on top.
  void ResetRows();

  [[nodiscard]] std::vector<std::size_t> SelectedRows() const;  // ascending
  void SelectRows(const std::vector<std::size_t>& rows);        // numbers of no row are passed over
  // Scrolls to the first marked row and makes it current; nothing when none is marked.
  void ShowFirstMark();

  // Opens the editor of a cell. A beep when the column is computed; nothing when there is no such
  // row.
  void StartEdit(std::size_t row, FileColumn column);
  [[nodiscard]] bool IsEditing() const { return editing_; }
  // Takes the text of an open edit, as Enter does: before the list is saved, checked or left.
  void TakeEdit();

 private:
  class Rows;
  class DropTarget;

  void AddColumns();
  void BindEvents();
  void OnKey(wxKeyEvent& event);
  void EditCurrentCell();
  void UpdateMarkStyle();
  void RemoveRows(const std::vector<std::size_t>& removed);
  void MakeSurvivorCurrent(const std::vector<std::size_t>& removed);
  void RememberRows();
  void RememberRow(std::size_t row);
  [[nodiscard]] bool IsGoneAfter(const std::vector<std::size_t>& removed) const;
  [[nodiscard]] std::vector<std::size_t> FindRemoved() const;
  void AnnounceSelection();

  FileList& files_;
  Events events_;
  Rows* rows_;  // kept alive by the control that shows it
  // What tells the shown rows apart: which of them were deleted is seen from what is left.
  std::vector<std::size_t> fingerprints_;
  bool editing_ = false;
};

}  // namespace txs
