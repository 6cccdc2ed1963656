#pragma once
// The desktop's dialogs with Qt: message and input boxes, file dialogs, the print
// dialog, the program's own help window, the clipboard, the beep, the wait cursor and
// the event pump.

#include <QPointer>
#include <QString>
#include <QStringList>

#include "platform/Dialogs.h"

class QWidget;
class QTextBrowser;

namespace orvane {

class QtDialogs : public Dialogs {
 public:
  // Each box and dialog opens over the window the user is working in; `parent` (may be
  // null, and changed later) serves when no window of the program is active. They stay
  // modal to the whole program: a window that could be closed under its own box (the
  // main window's close box while a study window asks something) would take the box and
  // the handler waiting on it with it.
  explicit QtDialogs(QWidget* parent);
  ~QtDialogs() override;
  QtDialogs(const QtDialogs&) = delete;
  QtDialogs& operator=(const QtDialogs&) = delete;

  void setParentWidget(QWidget* parent) { parent_ = parent; }

  // Folders that hold the help documents when the one asked for has none of them (the
  // installed documents, the source tree's); tried in order.
  void setHelpFolders(QStringList folders) { helpFolders_ = std::move(folders); }

  int MsgBox(std::string_view prompt, int style = mb::OKOnly,
             std::string_view title = kAppTitle) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultText = {}) override;
  // One row a name: its label, then a field holding the name, all in a scrolling list.
  bool EditNames(std::string_view title, std::string_view prompt, const std::vector<std::string>& labels,
                 std::vector<std::string>& names) override;
  std::optional<std::string> OpenFileName(std::string_view title, std::string_view filter,
                                          std::string_view initialPath = {}) override;
  std::optional<std::string> SaveFileName(std::string_view title, std::string_view filter,
                                          std::string_view initialPath = {}) override;
  // The print dialog on a high-resolution printer; the page prints on what the user
  // picked (a printer or a PDF file).
  std::unique_ptr<PrinterPage> OpenPrinter(std::string_view documentName) override;
  // Shows the HTML document in one help window that is reused, or the document of that
  // name in the first help folder that has it; false when none can be read.
  bool ShowHelp(const std::string& path) override;
  // The image of a QImageCanvas goes to the clipboard; other surfaces have no pixels.
  void CopyPicture(const Canvas& picture) override;
  void CopyText(std::string_view text) override;
  std::string ClipboardText() override;
  void Beep() override;
  void SetBusy(bool busy) override;
  void DoEvents() override;

  // A prompt's "\r\n", "\r" and "\n" line separators as Qt line breaks.
  static QString promptText(std::string_view prompt);

 private:
  // The window a dialog opens over: an open modal box, else the active window, else the
  // parent given.
  QWidget* owner() const;

  QPointer<QWidget> parent_;
  QStringList helpFolders_;
  QPointer<QWidget> helpWindow_;
  QPointer<QTextBrowser> helpBrowser_;
  bool busy_ = false;
};

}  // namespace orvane
