// Orvane Regression: the process starts here and ends when the main window unloads.

#include <QCommandLineParser>
#include <QWidget>

#include "app/Application.h"
#include "app/SubMain.h"
#include "platform/ui/QtDialogs.h"

int main(int argc, char* argv[]) {
  orvane::Application application(argc, argv);
  orvane::Application::setApplicationName("Orvane Regression");
  QCommandLineParser arguments;
  arguments.addPositionalArgument("FILE", "a regression file pair or a CSV table to open", "[FILE]");
  arguments.process(application);
  const QStringList files = arguments.positionalArguments();
  orvane::QtDialogs dialogs(nullptr);
  application.reportErrorsTo(&dialogs);
  orvane::SubMain subMain(dialogs);
  if (!subMain.Start(files.isEmpty() ? std::string() : files.front().toStdString())) return 0;
  return orvane::Application::exec();
}
