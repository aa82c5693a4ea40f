// The main of the window tests: one QApplication for all of them, on the offscreen platform unless
// the environment names another (test discovery runs without one).
#include <gtest/gtest.h>

#include <QApplication>
#include <QByteArray>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
