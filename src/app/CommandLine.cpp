#include "app/CommandLine.h"

#include <QCoreApplication>
#include <QStringList>

namespace orvane {

CommandLine::CommandLine() {
  parser_.setApplicationDescription(QStringLiteral(
      "Multiple linear regression, with 2-D and stereo studies of the fitted function."));
  // "-platform xcb" is then one unknown long option, not the short options p, l, a ...
  parser_.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  parser_.addHelpOption();
  parser_.addVersionOption();
  parser_.addPositionalArgument(QStringLiteral("file"),
                                QStringLiteral("A regression file pair (FILE with FILE.dat beside it) or a CSV table to open."),
                                QStringLiteral("[file]"));
}

void CommandLine::AnswerHelpAndVersion(int argc, char* argv[]) {
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
  // Whatever else is wrong is told later, once the window system has taken its options.
  parser_.parse(arguments);
  if (!parser_.isSet(QStringLiteral("help")) && !parser_.isSet(QStringLiteral("version"))) return;
  QCoreApplication terminal(argc, argv);  // the help text names the program from it
  if (parser_.isSet(QStringLiteral("help"))) parser_.showHelp(0);
  parser_.showVersion();
}

void CommandLine::Read(const QCoreApplication& application) { parser_.process(application); }

QString CommandLine::file() const { return parser_.positionalArguments().value(0); }

}  // namespace orvane
