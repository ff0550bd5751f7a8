#include "support/printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImageReader>
#include <QLoggingCategory>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QLoggingCategory::setFilterRules("default.warning=false");  // Qt tells of every font that it looks into
  QImageReader::setAllocationLimit(0);
  QApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
