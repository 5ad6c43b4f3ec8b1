#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Listing the tests runs this too, before CTest's environment applies.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
