// Orvane Regression: the process starts here and ends when the main window unloads.

#include <QWidget>

#include "app/Application.h"
#include "app/SubMain.h"
#include "platform/ui/QtDialogs.h"

int main(int argc, char* argv[]) {
  orvane::Application application(argc, argv);
  orvane::Application::setApplicationName("Orvane Regression");
  orvane::QtDialogs dialogs(nullptr);
  application.reportErrorsTo(&dialogs);
  orvane::SubMain subMain(dialogs);
  if (!subMain.Start()) return 0;
  return orvane::Application::exec();
}
