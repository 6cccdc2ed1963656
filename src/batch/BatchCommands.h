#pragma once
// orvane-batch: the workbench's routines from the command line. Each subcommand sets
// up what the corresponding window sets up, calls the same routines and prints what
// the window would show in its lists and labels.

#include <ostream>
#include <string>
#include <vector>

namespace orvane {

// Runs one command line (without the program name). Results go to `out`, messages to
// `err`. Returns the exit status: 0 when the command produced its result, 1 otherwise.
// The rendering and PDF commands need a QGuiApplication.
int RunBatch(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace orvane
