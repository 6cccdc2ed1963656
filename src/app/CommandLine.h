#pragma once
// The program's own arguments: --help, --version and an optional file to open.

#include <QCommandLineParser>
#include <QString>

class QCoreApplication;

namespace orvane {

class CommandLine {
 public:
  CommandLine();

  // Answers --help or --version on standard output and ends the process. Runs before the
  // window system starts, so both work without a display.
  void AnswerHelpAndVersion(int argc, char* argv[]);

  // Reads the arguments the window system left (it takes -platform, -style and the like
  // for itself); an unknown option ends the process with a message on standard error.
  void Read(const QCoreApplication& application);

  // The FILE argument; empty when none was given.
  QString file() const;

 private:
  QCommandLineParser parser_;
};

}  // namespace orvane
