#include "platform/ui/TextBox.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>
#include <QWindow>

#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

const char* const kCausesValidation = "orvaneCausesValidation";

// The widget that a mouse press on `hit` gives the focus to, as Qt decides it: the
// first enabled widget up the parent chain that accepts focus by click.
QWidget* clickFocusTarget(QWidget* hit) {
  for (QWidget* w = hit; w != nullptr; w = w->parentWidget()) {
    if (w->isEnabled() && (w->focusPolicy() & Qt::ClickFocus) == Qt::ClickFocus)
      return w->focusProxy() != nullptr ? w->focusProxy() : w;
    if (w->isWindow()) break;
  }
  return nullptr;
}

// The widget under a press that arrived at a top-level window.
QWidget* widgetAt(QWindow* window, const QPointF& pos) {
  for (QWidget* top : QApplication::topLevelWidgets()) {
    if (top->windowHandle() != window) continue;
    QWidget* child = top->childAt(pos.toPoint());
    return child != nullptr ? child : top;
  }
  return nullptr;
}

// Drops the characters a field does not take from every text that reaches it, however
// it came; the caret keeps its place among the characters that stay.
class CharacterFilter : public QValidator {
 public:
  CharacterFilter(std::function<bool(char16_t)> accepts, QObject* parent)
      : QValidator(parent), accepts_(std::move(accepts)) {}

  State validate(QString& input, int& pos) const override {
    QString kept;
    kept.reserve(input.size());
    int caret = pos;
    for (qsizetype i = 0; i < input.size(); ++i) {
      if (accepts_(input.at(i).unicode()))
        kept += input.at(i);
      else if (i < pos)
        --caret;
    }
    if (kept.size() != input.size()) {
      input = kept;
      pos = caret;
    }
    return Acceptable;
  }

 private:
  std::function<bool(char16_t)> accepts_;
};

bool isMouseButtonEvent(QEvent::Type type) {
  return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
         type == QEvent::MouseButtonDblClick;
}

}  // namespace

TextBox::TextBox(QWidget* parent) : QLineEdit(parent) {}

TextBox::TextBox(const QString& text, QWidget* parent) : QLineEdit(text, parent) {}

TextBox::~TextBox() { watchApplication(false); }

void TextBox::setCausesValidation(QWidget* widget, bool causes) {
  if (widget != nullptr) widget->setProperty(kCausesValidation, causes);
}

bool TextBox::causesValidation(const QWidget* widget) {
  if (widget == nullptr) return true;
  const QVariant value = widget->property(kCausesValidation);
  return !value.isValid() || value.toBool();
}

void TextBox::reportErrorsTo(const QWidget* window, Dialogs& dialogs) {
  for (TextBox* box : window->findChildren<TextBox*>()) box->reportErrorsTo(&dialogs);
}

void TextBox::setCharacterFilter(std::function<bool(char16_t)> accepts) {
  delete validator();
  accepts_ = std::move(accepts);
  setValidator(accepts_ ? new CharacterFilter(accepts_, this) : nullptr);
}

bool TextBox::validateNow() {
  if (validating_) return false;
  validating_ = true;
  bool cancel = false;
  try {
    // A number the program cannot hold is refused before any rule of the field.
    if (numberField_) (void)leadingNumber(text().toStdString());
    emit Validate(cancel);
  } catch (const RuntimeError& error) {
    if (dialogs_ == nullptr) {
      validating_ = false;
      throw;
    }
    cancel = true;
    ShowRunTimeError(*dialogs_, error);  // the departure waits while the box is open
  }
  validating_ = false;
  return !cancel;
}

void TextBox::emitReported(void (TextBox::*event)()) {
  try {
    emit (this->*event)();
  } catch (const RuntimeError& error) {
    if (dialogs_ == nullptr) throw;
    ShowRunTimeError(*dialogs_, error);
  }
}

bool TextBox::validatesMoveTo(QWidget* target) const {
  if (target == nullptr || target == this || isAncestorOf(target)) return false;
  if (target->window() != window()) return false;
  return causesValidation(target);
}

void TextBox::watchApplication(bool on) {
  if (on == watching_ || QCoreApplication::instance() == nullptr) return;
  watching_ = on;
  if (on)
    QCoreApplication::instance()->installEventFilter(this);
  else
    QCoreApplication::instance()->removeEventFilter(this);
}

void TextBox::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  watchApplication(true);
  validated_ = false;
  // Coming back from another window or a popup, or from a refused departure, is not a
  // new visit; the first focus of a window that opens is.
  const bool back = event->reason() == Qt::PopupFocusReason ||
                    (event->reason() == Qt::ActiveWindowFocusReason && awayToOtherWindow_);
  awayToOtherWindow_ = false;
  if (restoring_ || back) return;
  selectAll();
  selectOnRelease_ = event->reason() == Qt::MouseFocusReason;
  emitReported(&TextBox::GotFocus);
}

void TextBox::focusOutEvent(QFocusEvent* event) {
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) {
    awayToOtherWindow_ = true;
    QLineEdit::focusOutEvent(event);
    watchApplication(false);
    return;
  }
  // A departure that nobody validated beforehand (a click delivered straight to a
  // widget, a program's setFocus elsewhere): validate now, and take the focus back
  // when refused.
  QWidget* next = QApplication::focusWidget();
  if (!validated_ && !restoring_ && causesValidation(next) && !validateNow() && isVisible() &&
      isEnabled()) {
    if (reason == Qt::MouseFocusReason) swallowClick_ = true;
    restoring_ = true;
    setFocus(Qt::OtherFocusReason);
    restoring_ = false;
    return;
  }
  validated_ = false;
  selectOnRelease_ = false;
  QLineEdit::focusOutEvent(event);
  watchApplication(false);
  emitReported(&TextBox::LostFocus);
}

void TextBox::mouseReleaseEvent(QMouseEvent* event) {
  QLineEdit::mouseReleaseEvent(event);
  // The press that gave the focus placed the cursor; the field still starts selected
  // unless the user dragged a selection of his own.
  if (selectOnRelease_ && !hasSelectedText()) selectAll();
  selectOnRelease_ = false;
}

void TextBox::keyPressEvent(QKeyEvent* event) {
  int ascii = 0;
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      ascii = 13;
      break;
    case Qt::Key_Escape:
      ascii = 27;
      break;
    case Qt::Key_Backspace:
      ascii = 8;
      break;
    default: {
      // With Ctrl or Meta a letter is a command (Ctrl+V pastes), not a character.
      const QString text = event->text();
      if (text.size() == 1 && text.at(0).unicode() >= 32 &&
          !(event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)))
        ascii = text.at(0).unicode();
    }
  }
  if (ascii == 0) {
    QLineEdit::keyPressEvent(event);
    return;
  }
  const int typed = ascii;
  emit KeyPress(ascii);
  if (ascii >= 32 && accepts_ && (ascii > 0xFFFF || !accepts_(static_cast<char16_t>(ascii)))) ascii = 0;
  if (ascii == 0) {
    event->accept();  // discarded
    return;
  }
  if (ascii != typed && ascii >= 32 && ascii <= 0xFFFF) {
    insert(QString(QChar(static_cast<char16_t>(ascii))));
    return;
  }
  QLineEdit::keyPressEvent(event);
}

bool TextBox::focusNextPrevChild(bool next) {
  if (validating_) return true;
  if (!validateNow()) return true;  // refused: Tab leaves the focus where it is
  validated_ = true;
  const bool moved = QLineEdit::focusNextPrevChild(next);
  if (hasFocus()) validated_ = false;  // nowhere to go: the next departure validates again
  return moved;
}

bool TextBox::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (swallowClick_ && isMouseButtonEvent(type) && watched != this) {
    // The rest of a click whose focus change was refused.
    if (type == QEvent::MouseButtonRelease) swallowClick_ = false;
    return true;
  }
  if (validating_ || !hasFocus()) return false;

  if (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick) {
    // A press arriving at a window, before any widget saw it or the focus moved.
    if (!watched->isWindowType()) return false;
    auto* mouse = static_cast<QMouseEvent*>(event);
    QWidget* target = clickFocusTarget(widgetAt(static_cast<QWindow*>(watched), mouse->position()));
    if (!validatesMoveTo(target)) return false;
    if (!validateNow()) {
      swallowClick_ = true;  // and its release
      return true;
    }
    validated_ = true;
    return false;
  }
  if (type == QEvent::Shortcut && watched->isWidgetType()) {
    // A mnemonic such as Alt+C focuses and clicks its button.
    auto* target = static_cast<QWidget*>(watched);
    if (!validatesMoveTo(target)) return false;
    if (!validateNow()) return true;
    validated_ = true;
    // A button's mnemonic clicks without moving the focus in Qt; the field is left
    // first, as a click with the mouse would leave it.
    if (qobject_cast<QAbstractButton*>(target) != nullptr && target->focusPolicy() != Qt::NoFocus)
      target->setFocus(Qt::ShortcutFocusReason);
    if (hasFocus()) validated_ = false;  // the focus stayed: validate its next departure
    return false;
  }
  return false;
}

}  // namespace orvane
