#pragma once
// Everything a window asks of the desktop: message and input boxes, file and printer
// dialogs, the help viewer, the clipboard, the beep, the busy pointer and the event
// pump. Windows receive a Dialogs through their constructor; the Qt implementation
// (ui/QtDialogs) talks to the user, the scripted one (ScriptedDialogs) answers from a
// queue and records what was asked, so no test ever waits on a modal dialog.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RuntimeError.h"

namespace orvane {

class Canvas;
class PrinterPage;

// Message-box styles and answers, with the values the program has always used.
namespace mb {
constexpr int OKOnly = 0;
constexpr int OKCancel = 1;
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;

constexpr int OK = 1;
constexpr int Cancel = 2;
constexpr int Yes = 6;
constexpr int No = 7;
}  // namespace mb

// The title of a message box that is given none.
inline constexpr std::string_view kAppTitle = "Orvane Regression";

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // Shows a message box; style = buttons (0, 1, 3, 4) + icon (16, 32, 48, 64). Lines of
  // the prompt may be separated by "\r" or "\n". Returns the answer (mb::OK, ...).
  virtual int MsgBox(std::string_view prompt, int style = mb::OKOnly,
                     std::string_view title = kAppTitle) = 0;
  // Asks for a line of text; nullopt when the user cancels.
  virtual std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                              std::string_view defaultText = {}) = 0;
  // Lists names, each beside its label, for the user to accept or edit. True with
  // `names` as the user left them; false when cancelled (`names` unchanged).
  virtual bool EditNames(std::string_view title, std::string_view prompt, const std::vector<std::string>& labels,
                         std::vector<std::string>& names) = 0;
  // File dialogs; filter as "Text (*.txt);;All files (*)". nullopt when cancelled.
  virtual std::optional<std::string> OpenFileName(std::string_view title, std::string_view filter,
                                                  std::string_view initialPath = {}) = 0;
  virtual std::optional<std::string> SaveFileName(std::string_view title, std::string_view filter,
                                                  std::string_view initialPath = {}) = 0;
  // The print dialog: the user picks a printer or a PDF file. nullptr when cancelled.
  virtual std::unique_ptr<PrinterPage> OpenPrinter(std::string_view documentName) = 0;
  // Shows a help document (HTML) in the program's help window; false when the file
  // cannot be read (the caller reports it).
  virtual bool ShowHelp(const std::string& path) = 0;
  // Puts a copy of the picture's image on the clipboard as a bitmap.
  virtual void CopyPicture(const Canvas& picture) = 0;
  // Puts plain text on the clipboard.
  virtual void CopyText(std::string_view text) = 0;
  // The clipboard's plain text (empty when it holds none).
  virtual std::string ClipboardText() = 0;
  virtual void Beep() = 0;
  // Hourglass pointer on (true) or back to the default (false).
  virtual void SetBusy(bool busy) = 0;
  // Lets pending window events run (paints what was drawn so far).
  virtual void DoEvents() = 0;
};

// The run-time error box: the error's description with an OK button under the program's
// title ("Overflow" for a number beyond the range of a double).
inline void ShowRunTimeError(Dialogs& dialogs, const RuntimeError& error) { dialogs.MsgBox(error.description()); }

// Opens one of the program's help files from `directory`; a file that cannot be shown
// is reported with its full path.
inline void ShowHelpFile(Dialogs& dialogs, const std::string& directory, std::string_view fileName) {
  const std::string path = directory + "/" + std::string(fileName);
  if (!dialogs.ShowHelp(path)) dialogs.MsgBox("Cannot find the help file\r" + path, mb::Critical);
}

}  // namespace orvane
