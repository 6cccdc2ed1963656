#pragma once
// orvane-batch: the workbench's routines from the command line. Each subcommand sets
// up what the corresponding window sets up, calls the same routines and prints what
// the window would show in its lists and labels.

#include <csignal>
#include <ostream>
#include <string>
#include <vector>

namespace orvane {

// Exit status of a command stopped by Ctrl+C (SIGINT) or SIGTERM.
constexpr int kInterruptedStatus = 130;

// Set to 1 by orvane-batch's signal handler (which does nothing else). The long work of
// the running command stops within about 20 ms, nothing more is saved (what was being
// saved is removed), and RunBatch returns kInterruptedStatus.
extern volatile std::sig_atomic_t batchInterrupted;

// Runs one command line (without the program name). Results go to `out`, messages to
// `err`. Returns the exit status: 0 when the command produced its result, 1 otherwise,
// kInterruptedStatus when stopped.
// The rendering and PDF commands need a QGuiApplication.
int RunBatch(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace orvane
