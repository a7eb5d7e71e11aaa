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
// pause. Rows count from 1.
class FileGrid : public wxDataViewCtrl {
 public:
  struct Events {
    std::function<void(std::size_t row, FileColumn column, const std::string& text)> edited;
    std::function<void()> selection_changed;
    std::function<void()> delete_pressed;  // the Delete key
    // Host paths of files dropped onto the list.
    std::function<void(const std::vector<std::string>& host_paths)> files_dropped;
  };

  // `files` must outlive the grid.
  FileGrid(wxWindow* parent, FileList& files, Events events);

  // The texts of the six columns, left to right.
  void SetColumnCaptions(const std::vector<std::string>& captions);
  [[nodiscard]] std::vector<int> ColumnWidths() const;   // pixels
  void SetColumnWidths(const std::vector<int>& widths);  // passed over unless there are six

  // Rows were added, deleted, marked or changed. Rows that are still there stay selected; after a
  // deletion the row that follows the deleted ones becomes current, without being selected.
  void RefreshRows();

  [[nodiscard]] std::vector<std::size_t> SelectedRows() const;  // ascending
  void SelectRows(const std::vector<std::size_t>& rows);
  // Scrolls to the first marked row; nothing when none is marked.
  void ShowFirstMark();
};

}  // namespace txs
