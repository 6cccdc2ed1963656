#pragma once
// Dialogs for tests: every question is answered from a queue filled beforehand, and
// everything the program asked or showed is recorded. Nothing is ever shown.
//
// Answers when a queue is empty: a message box answers with its first button (OK for
// OK-only and OK/Cancel boxes, Yes for Yes/No and Yes/No/Cancel boxes); an input box
// and the file dialogs answer nullopt, as if cancelled; a list of names is accepted.
//
// OpenPrinter hands out a page that writes into printer(), one recording page kept for
// the dialogs' whole life (like the one system printer, it keeps its font between
// documents), so a test can read what was printed after the caller dropped its page.
// The pages handed out must not outlive the ScriptedDialogs.

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Dialogs.h"
#include "platform/RecordingPrinterPage.h"

namespace orvane {

class ScriptedDialogs : public Dialogs {
 public:
  struct MessageRecord {
    std::string prompt;
    int style = 0;
    std::string title;
    int answer = 0;
  };
  struct InputRecord {
    std::string prompt, title, defaultText;
  };
  struct NamesRecord {
    std::string title, prompt;
    std::vector<std::string> labels, names;  // the names as offered
  };
  struct FileRecord {
    bool save = false;
    std::string title, filter, initialPath;
  };

  ScriptedDialogs();

  // Queued answers, taken in order.
  void queueMsgBox(int answer) { msgBoxAnswers_.push_back(answer); }
  void queueInputBox(std::optional<std::string> answer) { inputAnswers_.push_back(answer); }
  void queueOpenFileName(std::optional<std::string> path) { openAnswers_.push_back(path); }
  void queueSaveFileName(std::optional<std::string> path) { saveAnswers_.push_back(path); }
  // The names an EditNames answers with; nullopt cancels. With none queued the names are
  // accepted as offered.
  void queueEditNames(std::optional<std::vector<std::string>> names) { namesAnswers_.push_back(std::move(names)); }
  // The clipboard's text, as another program would leave it (CopyText sets it too).
  void setClipboardText(std::string text) { clipboard_ = std::move(text); }
  // While set, OpenPrinter answers nullptr, as when the user cancels the print dialog.
  void setCancelPrinting(bool cancel) { cancelPrinting_ = cancel; }

  int MsgBox(std::string_view prompt, int style = mb::OKOnly,
             std::string_view title = kAppTitle) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultText = {}) override;
  bool EditNames(std::string_view title, std::string_view prompt, const std::vector<std::string>& labels,
                 std::vector<std::string>& names) override;
  std::optional<std::string> OpenFileName(std::string_view title, std::string_view filter,
                                          std::string_view initialPath = {}) override;
  std::optional<std::string> SaveFileName(std::string_view title, std::string_view filter,
                                          std::string_view initialPath = {}) override;
  std::unique_ptr<PrinterPage> OpenPrinter(std::string_view documentName) override;
  // Records the path; true when the file exists and has something to read.
  bool ShowHelp(const std::string& path) override;
  void CopyPicture(const Canvas& picture) override;
  void CopyText(std::string_view text) override {
    copiedTexts_.emplace_back(text);
    clipboard_ = text;
  }
  std::string ClipboardText() override { return clipboard_; }
  void Beep() override { ++beeps_; }
  void SetBusy(bool busy) override;
  void DoEvents() override { ++doEvents_; }

  // What was asked and shown.
  const std::vector<MessageRecord>& messages() const { return messages_; }
  const std::vector<InputRecord>& inputs() const { return inputs_; }
  const std::vector<FileRecord>& fileDialogs() const { return fileDialogs_; }
  const std::vector<NamesRecord>& nameLists() const { return nameLists_; }
  const std::vector<std::string>& helpRequests() const { return helpRequests_; }
  const std::vector<std::string>& printDocuments() const { return printDocuments_; }
  RecordingPrinterPage& printer() { return printer_; }
  int beeps() const { return beeps_; }
  int doEvents() const { return doEvents_; }
  // Every SetBusy call in order, and whether the busy pointer is on now.
  const std::vector<bool>& busyCalls() const { return busyCalls_; }
  bool busy() const { return !busyCalls_.empty() && busyCalls_.back(); }
  // Pixel size (width, height) of each picture copied to the clipboard.
  const std::vector<std::pair<int, int>>& copiedPictures() const { return copied_; }
  const std::vector<std::string>& copiedTexts() const { return copiedTexts_; }
  // Answers still queued (a test can check that all were used).
  size_t pendingAnswers() const;

 private:
  std::deque<int> msgBoxAnswers_;
  std::deque<std::optional<std::string>> inputAnswers_, openAnswers_, saveAnswers_;
  std::deque<std::optional<std::vector<std::string>>> namesAnswers_;
  std::string clipboard_;
  bool cancelPrinting_ = false;

  std::vector<MessageRecord> messages_;
  std::vector<InputRecord> inputs_;
  std::vector<FileRecord> fileDialogs_;
  std::vector<NamesRecord> nameLists_;
  std::vector<std::string> helpRequests_;
  std::vector<std::string> printDocuments_;
  RecordingPrinterPage printer_;
  int beeps_ = 0;
  int doEvents_ = 0;
  std::vector<bool> busyCalls_;
  std::vector<std::pair<int, int>> copied_;
  std::vector<std::string> copiedTexts_;
};

}  // namespace orvane
