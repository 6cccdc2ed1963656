// Orvane Regression: the process starts here and ends when the main window unloads.

#include <QWidget>

#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/HelpFolders.h"
#include "app/SubMain.h"
#include "platform/ui/QtDialogs.h"

int main(int argc, char* argv[]) {
  orvane::Application::setApplicationName("Orvane Regression");
  orvane::Application::setApplicationVersion(ORVANE_VERSION);
  orvane::CommandLine commandLine;
  commandLine.AnswerHelpAndVersion(argc, argv);

  orvane::Application application(argc, argv);
  orvane::Application::setDesktopFileName(ORVANE_APP_ID);  // the launcher's icon and name
  commandLine.Read(application);
  orvane::QtDialogs dialogs(nullptr);
  dialogs.setHelpFolders(orvane::HelpFolders(orvane::Application::applicationDirPath()));
  application.reportErrorsTo(&dialogs);
  orvane::SubMain subMain(dialogs);
  if (!subMain.Start(commandLine.file().toStdString())) return 0;
  return orvane::Application::exec();
}
