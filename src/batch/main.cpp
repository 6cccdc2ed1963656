// orvane-batch: the command-line companion of the workbench.

#include <QGuiApplication>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "batch/BatchCommands.h"

namespace {
// Qt's own notes (a missing runtime directory, font fallbacks) are not the program's
// messages; only its critical and fatal ones reach standard error.
void quietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::cerr << text.toStdString() << "\n";
}
}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  // Pictures and PDF pages need Qt's fonts and painting, never a display.
  std::unique_ptr<QGuiApplication> app;
  if (!args.empty() && (args[0] == "plot2d" || args[0] == "stereo" || args[0] == "report")) {
    qInstallMessageHandler(quietQtMessages);
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    app = std::make_unique<QGuiApplication>(argc, argv);
  }
  const int status = orvane::RunBatch(args, std::cout, std::cerr);
  std::cout.flush();
  return status;
}
