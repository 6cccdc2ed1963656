// Orvane Regression: the process starts here and ends when the main window unloads.

#include <QApplication>
#include <QWidget>

#include "app/SubMain.h"
#include "platform/ui/QtDialogs.h"

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("Orvane Regression");
  orvane::QtDialogs dialogs(nullptr);
  orvane::SubMain subMain(dialogs);
  if (!subMain.Start()) return 0;
  return QApplication::exec();
}
