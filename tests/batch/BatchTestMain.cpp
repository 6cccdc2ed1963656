// The batch tests read images and draw reference pictures, which needs Qt's fonts.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cstdlib>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
