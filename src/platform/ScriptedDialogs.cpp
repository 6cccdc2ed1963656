#include "platform/ScriptedDialogs.h"

#include <fstream>

#include "platform/Canvas.h"

namespace orvane {

namespace {

// The page handed to the caller: everything goes to the dialogs' own recording page.
class ForwardingPrinterPage : public PrinterPage {
 public:
  explicit ForwardingPrinterPage(RecordingPrinterPage& target) : target_(target) {}
  void Write(std::string_view text) override { target_.Write(text); }
  void Tab(int column) override { target_.Tab(column); }
  void NewLine() override { target_.NewLine(); }
  double CurrentY() const override { return target_.CurrentY(); }
  void SetCurrentY(double twips) override { target_.SetCurrentY(twips); }
  std::string FontName() const override { return target_.FontName(); }
  void SetFontName(std::string_view face) override { target_.SetFontName(face); }
  void PaintPicture(const Canvas& picture, double left, double top, double width,
                    double height) override {
    target_.PaintPicture(picture, left, top, width, height);
  }
  void EndDoc() override { target_.EndDoc(); }

 private:
  RecordingPrinterPage& target_;
};

template <typename T>
std::optional<T> pop(std::deque<std::optional<T>>& queue) {
  if (queue.empty()) return std::nullopt;
  std::optional<T> answer = std::move(queue.front());
  queue.pop_front();
  return answer;
}

}  // namespace

ScriptedDialogs::ScriptedDialogs() = default;

int ScriptedDialogs::MsgBox(std::string_view prompt, int style, std::string_view title) {
  int answer;
  if (!msgBoxAnswers_.empty()) {
    answer = msgBoxAnswers_.front();
    msgBoxAnswers_.pop_front();
  } else {
    const int buttons = style & 7;
    answer = (buttons == mb::YesNo || buttons == mb::YesNoCancel) ? mb::Yes : mb::OK;
  }
  messages_.push_back({std::string(prompt), style, std::string(title), answer});
  return answer;
}

std::optional<std::string> ScriptedDialogs::InputBox(std::string_view prompt,
                                                     std::string_view title,
                                                     std::string_view defaultText) {
  inputs_.push_back({std::string(prompt), std::string(title), std::string(defaultText)});
  return pop(inputAnswers_);
}

bool ScriptedDialogs::EditNames(std::string_view title, std::string_view prompt,
                                const std::vector<std::string>& labels, std::vector<std::string>& names) {
  nameLists_.push_back({std::string(title), std::string(prompt), labels, names});
  if (namesAnswers_.empty()) return true;
  std::optional<std::vector<std::string>> answer = std::move(namesAnswers_.front());
  namesAnswers_.pop_front();
  if (!answer) return false;
  names = std::move(*answer);
  return true;
}

std::optional<std::string> ScriptedDialogs::OpenFileName(std::string_view title,
                                                         std::string_view filter,
                                                         std::string_view initialPath) {
  fileDialogs_.push_back(
      {false, std::string(title), std::string(filter), std::string(initialPath)});
  return pop(openAnswers_);
}

std::optional<std::string> ScriptedDialogs::SaveFileName(std::string_view title,
                                                         std::string_view filter,
                                                         std::string_view initialPath) {
  fileDialogs_.push_back(
      {true, std::string(title), std::string(filter), std::string(initialPath)});
  return pop(saveAnswers_);
}

std::unique_ptr<PrinterPage> ScriptedDialogs::OpenPrinter(std::string_view documentName) {
  printDocuments_.emplace_back(documentName);
  if (cancelPrinting_) return nullptr;
  return std::make_unique<ForwardingPrinterPage>(printer_);
}

bool ScriptedDialogs::ShowHelp(const std::string& path) {
  helpRequests_.push_back(path);
  std::ifstream file(path, std::ios::binary);
  return file.good() && file.peek() != std::ifstream::traits_type::eof();
}

void ScriptedDialogs::CopyPicture(const Canvas& picture) {
  copied_.emplace_back(picture.pixelWidth(), picture.pixelHeight());
}

void ScriptedDialogs::SetBusy(bool busy) { busyCalls_.push_back(busy); }

size_t ScriptedDialogs::pendingAnswers() const {
  return msgBoxAnswers_.size() + inputAnswers_.size() + openAnswers_.size() + saveAnswers_.size() +
         namesAnswers_.size();
}

}  // namespace orvane
