#pragma once
// The program's QApplication. A run-time error that escapes an event handler is the last
// thing that may end the program with everything typed lost: here it is shown in the
// run-time error box and the program goes on. Windows handle their own errors; this only
// stands behind them.

#include <QApplication>

namespace orvane {

class Dialogs;

class Application : public QApplication {
 public:
  Application(int& argc, char** argv);

  // Where escaped errors are shown; until set they are only logged.
  void reportErrorsTo(Dialogs* dialogs) { dialogs_ = dialogs; }

  bool notify(QObject* receiver, QEvent* event) override;

 private:
  Dialogs* dialogs_ = nullptr;
};

}  // namespace orvane
