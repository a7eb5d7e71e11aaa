#include "document/setup_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace txs {
namespace {

TEST(SetupDocument, ListsHiddenRowsBehindTheVisibleOnes) {
  SetupDocument document;
  document.hidden_files.Append("hidden 1", "", "");
  document.files.Append("visible 1", "", "");
  document.files.Append("visible 2", "", "");

  const std::vector<FileRow*> rows = document.AllRows();

  EXPECT_THAT(rows, testing::ElementsAre(&document.files.Row(1), &document.files.Row(2),
                                         &document.hidden_files.Row(1)));
}

TEST(SetupDocument, HasNoRowsWhileEmpty) {
  SetupDocument document;

  EXPECT_TRUE(document.AllRows().empty());
}

}  // namespace
}  // namespace txs
