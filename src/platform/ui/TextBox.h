#pragma once
// The program's one text field. It behaves as the fields always have:
//  - getting the focus selects the whole text and raises GotFocus;
//  - when the focus is about to leave for another widget of the same window, Validate
//    runs first; a handler that sets cancel keeps the focus in the field and the move
//    does not happen; otherwise LostFocus follows;
//  - every typed character passes through KeyPress, whose handler may change it or
//    discard it (set it to 0); Enter arrives as 13.
//
// Validation comes before the move: Tab and Backtab are checked in
// focusNextPrevChild; a mouse press (or a mnemonic shortcut) aimed at another widget
// that would take the focus is caught by an application-wide event filter, installed
// only while the field has the focus, and swallowed when Validate refuses, so a button
// whose click would leave a refused field is not clicked. An accepted mnemonic moves the
// focus to its button before the click, so LostFocus comes before Click. A focus move made by the
// program itself (setFocus elsewhere) is validated as the focus leaves; when refused,
// the focus comes back at the next turn of the event loop.
//
// Widgets marked with setCausesValidation(widget, false) (a Cancel or Help button, say)
// take the focus without validating the field.
//
// A character filter keeps the characters a field takes, whether typed, pasted (keys,
// middle click, context menu), dropped or set by the program. A number field refuses to
// be left while the number its text starts with is beyond the range of a double. A
// run-time error raised by a field's handler (or by that check) shows the run-time error
// box through the Dialogs given with reportErrorsTo; in Validate it refuses the
// departure, so the field keeps the focus.
//
// Handlers connect directly:
//   connect(txtOrder, &TextBox::Validate, this, &frmOrvane::txtOrder_Validate);
//   void frmOrvane::txtOrder_Validate(bool& cancel);

#include <QLineEdit>
#include <functional>

namespace orvane {

class Dialogs;

class TextBox : public QLineEdit {
  Q_OBJECT

 public:
  explicit TextBox(QWidget* parent = nullptr);
  explicit TextBox(const QString& text, QWidget* parent = nullptr);
  ~TextBox() override;

  // Whether moving the focus to `widget` validates the field that loses it (default
  // true).
  static void setCausesValidation(QWidget* widget, bool causes);
  static bool causesValidation(const QWidget* widget);

  // Runs Validate now as if the focus were leaving; true when it was accepted.
  bool validateNow();

  // The characters the field takes; null takes every character.
  void setCharacterFilter(std::function<bool(char16_t)> accepts);
  // The field's text is a number (its leading numeric part).
  void setNumberField(bool number) { numberField_ = number; }
  bool isNumberField() const { return numberField_; }
  // Where the field's run-time errors are shown; without it they reach the caller.
  void reportErrorsTo(Dialogs* dialogs) { dialogs_ = dialogs; }
  // The same for every text field in `window`.
  static void reportErrorsTo(const QWidget* window, Dialogs& dialogs);

 signals:
  void GotFocus();
  void Validate(bool& cancel);
  void LostFocus();
  void KeyPress(int& keyAscii);

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool validatesMoveTo(QWidget* target) const;
  void watchApplication(bool on);
  // Emits GotFocus or LostFocus; a run-time error of the handler is shown.
  void emitReported(void (TextBox::*event)());

  std::function<bool(char16_t)> accepts_;
  bool numberField_ = false;
  Dialogs* dialogs_ = nullptr;

  bool validating_ = false;
  bool validated_ = false;         // this focus departure was already validated
  bool selectOnRelease_ = false;   // a click gave the focus: keep the whole text selected
  bool watching_ = false;
  bool awayToOtherWindow_ = false;  // the focus went to another window or a popup
  bool restoring_ = false;     // taking the focus back after a refusal
  bool swallowClick_ = false;  // eat the rest of a click that was refused
};

}  // namespace orvane
