// orvane-batch: the command-line companion of the workbench.

#include <QGuiApplication>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "batch/BatchCommands.h"

namespace {

void onStopSignal(int) { orvane::batchInterrupted = 1; }

// Ctrl+C and SIGTERM only set the flag: the command stops at its next check, and its
// saves remove their temporary files instead of leaving them half-written. A signal the
// caller chose to ignore (nohup, a background job) stays ignored.
void catchStopSignals() {
  struct sigaction action {};
  action.sa_handler = onStopSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (int signal : {SIGINT, SIGTERM}) {
    struct sigaction previous {};
    if (sigaction(signal, nullptr, &previous) == 0 && previous.sa_handler == SIG_IGN) continue;
    sigaction(signal, &action, nullptr);
  }
}

// Qt's own notes (a missing runtime directory, font fallbacks) are not the program's
// messages; only its critical and fatal ones reach standard error.
void quietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::cerr << text.toStdString() << "\n";
}
}  // namespace

int main(int argc, char** argv) {
  catchStopSignals();
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && args[0] == "--version") {
    std::cout << "orvane-batch " ORVANE_VERSION "\n";
    return 0;
  }
  // Pictures and PDF pages need Qt's fonts and painting, never a display.
  std::unique_ptr<QGuiApplication> app;
  if (!args.empty() && (args[0] == "plot2d" || args[0] == "stereo" || args[0] == "report")) {
    qInstallMessageHandler(quietQtMessages);
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    app = std::make_unique<QGuiApplication>(argc, argv);
  }
  const int status = orvane::RunBatch(args, std::cout, std::cerr);
  std::cout.flush();
  // A signal during work that has no stop check (reading a file) still ends as stopped.
  if (orvane::batchInterrupted != 0 && status != orvane::kInterruptedStatus) {
    std::cerr << "orvane-batch: interrupted\n";
    return orvane::kInterruptedStatus;
  }
  return status;
}
