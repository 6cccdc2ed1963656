#include "app/Application.h"

#include <exception>
#include <new>

#include "platform/Dialogs.h"
#include "platform/RuntimeError.h"

namespace orvane {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const RuntimeError& error) {
    if (dialogs_ != nullptr) ShowRunTimeError(*dialogs_, error);
    else qWarning("Run-time error %d: %s", error.number(), error.description().c_str());
  } catch (const std::bad_alloc&) {
    if (dialogs_ != nullptr) ShowRunTimeError(*dialogs_, RuntimeError(7));
    else qWarning("Out of memory");
  } catch (const std::exception& error) {
    if (dialogs_ != nullptr) dialogs_->MsgBox(error.what(), mb::Critical);
    else qWarning("%s", error.what());
  }
  return false;
}

}  // namespace orvane
