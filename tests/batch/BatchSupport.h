#pragma once
// Running orvane-batch as a user would: a process with arguments, its standard output
// and error as lines, and its exit status; plus small file helpers.

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orvane::testing {

struct BatchRun {
  int status = -1;
  std::string out;
  std::string err;

  std::vector<std::string> outLines() const {
    std::vector<std::string> result;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) result.push_back(line);
    return result;
  }
};

inline BatchRun runBatch(const std::vector<std::string>& args) {
  QStringList list;
  for (const std::string& a : args) list << QString::fromStdString(a);
  QProcess process;
  process.start(QStringLiteral(ORVANE_BATCH_EXE), list);
  BatchRun run;
  if (!process.waitForFinished(120000)) return run;
  run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
  run.out = process.readAllStandardOutput().toStdString();
  run.err = process.readAllStandardError().toStdString();
  return run;
}

// Writes the bytes exactly as given (CR LF stays CR LF).
inline void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}


}  // namespace orvane::testing
