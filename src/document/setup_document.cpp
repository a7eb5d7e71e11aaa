#include "document/setup_document.h"

namespace txs {

std::vector<FileRow*> SetupDocument::AllRows() {
  std::vector<FileRow*> rows;
  rows.reserve(files.RowCount() + hidden_files.RowCount());
  for (FileRow& row : files.Rows()) rows.push_back(&row);
  for (FileRow& row : hidden_files.Rows()) rows.push_back(&row);
  return rows;
}

}  // namespace txs
