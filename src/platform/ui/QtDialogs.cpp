#include "platform/ui/QtDialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtPrinterPage.h"

namespace orvane {

namespace {

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::optional<std::string> pathOrNone(const QString& path) {
  if (path.isEmpty()) return std::nullopt;
  return path.toStdString();
}

// The answers of the old message box for the buttons Qt reports.
int answerOf(QMessageBox::StandardButton button) {
  switch (button) {
    case QMessageBox::Ok:
      return mb::OK;
    case QMessageBox::Cancel:
      return mb::Cancel;
    case QMessageBox::Abort:
      return 3;
    case QMessageBox::Retry:
      return 4;
    case QMessageBox::Ignore:
      return 5;
    case QMessageBox::Yes:
      return mb::Yes;
    case QMessageBox::No:
      return mb::No;
    default:
      return mb::Cancel;
  }
}

}  // namespace

QtDialogs::QtDialogs(QWidget* parent) : parent_(parent) {}

QWidget* QtDialogs::owner() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  if (QWidget* active = QApplication::activeWindow()) return active;
  return parent_;
}

QtDialogs::~QtDialogs() {
  if (busy_) QApplication::restoreOverrideCursor();
  delete helpWindow_.data();
}

QString QtDialogs::promptText(std::string_view prompt) {
  QString text = qs(prompt);
  text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return text;
}

int QtDialogs::MsgBox(std::string_view prompt, int style, std::string_view title) {
  QMessageBox box(owner());
  box.setWindowTitle(qs(title));
  box.setText(promptText(prompt));
  switch (style & 0x70) {
    case mb::Critical:
      box.setIcon(QMessageBox::Critical);
      break;
    case mb::Question:
      box.setIcon(QMessageBox::Question);
      break;
    case mb::Exclamation:
      box.setIcon(QMessageBox::Warning);
      break;
    case mb::Information:
      box.setIcon(QMessageBox::Information);
      break;
    default:
      box.setIcon(QMessageBox::NoIcon);
  }
  // Buttons in the old order; the first is the default, Escape answers Cancel where
  // there is one (a Yes/No box cannot be escaped).
  QMessageBox::StandardButtons buttons;
  QMessageBox::StandardButton first = QMessageBox::Ok, escape = QMessageBox::NoButton;
  switch (style & 7) {
    case mb::OKCancel:
      buttons = QMessageBox::Ok | QMessageBox::Cancel;
      escape = QMessageBox::Cancel;
      break;
    case 2:  // abort, retry, ignore
      buttons = QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
      first = QMessageBox::Abort;
      break;
    case mb::YesNoCancel:
      buttons = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
      first = QMessageBox::Yes;
      escape = QMessageBox::Cancel;
      break;
    case mb::YesNo:
      buttons = QMessageBox::Yes | QMessageBox::No;
      first = QMessageBox::Yes;
      break;
    case 5:  // retry, cancel
      buttons = QMessageBox::Retry | QMessageBox::Cancel;
      first = QMessageBox::Retry;
      escape = QMessageBox::Cancel;
      break;
    default:
      buttons = QMessageBox::Ok;
      escape = QMessageBox::Ok;
  }
  box.setStandardButtons(buttons);
  box.setDefaultButton(first);
  if (escape != QMessageBox::NoButton) box.setEscapeButton(escape);
  box.exec();
  auto* clicked = box.clickedButton();
  if (clicked == nullptr) return answerOf(escape == QMessageBox::NoButton ? first : escape);
  return answerOf(box.standardButton(clicked));
}

std::optional<std::string> QtDialogs::InputBox(std::string_view prompt, std::string_view title,
                                               std::string_view defaultText) {
  QInputDialog dialog(owner());
  dialog.setInputMode(QInputDialog::TextInput);
  dialog.setWindowTitle(qs(title));
  dialog.setLabelText(promptText(prompt));
  dialog.setTextValue(qs(defaultText));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue().toStdString();
}

bool QtDialogs::EditNames(std::string_view title, std::string_view prompt, const std::vector<std::string>& labels,
                          std::vector<std::string>& names) {
  QDialog dialog(owner());
  dialog.setWindowTitle(qs(title));
  auto* layout = new QVBoxLayout(&dialog);
  auto* message = new QLabel(promptText(prompt));
  message->setWordWrap(true);
  layout->addWidget(message);
  auto* rows = new QWidget();
  auto* form = new QFormLayout(rows);
  std::vector<QLineEdit*> fields;
  for (size_t i = 0; i < names.size(); ++i) {
    auto* field = new QLineEdit(qs(names[i]));
    field->setObjectName(QStringLiteral("txtName%1").arg(i));
    form->addRow(qs(i < labels.size() ? labels[i] : std::string()), field);
    fields.push_back(field);
  }
  auto* scroll = new QScrollArea();
  scroll->setWidget(rows);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  layout->addWidget(scroll, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  layout->addWidget(buttons);
  if (!fields.empty()) fields.front()->setFocus();
  if (dialog.exec() != QDialog::Accepted) return false;
  for (size_t i = 0; i < names.size(); ++i) names[i] = fields[i]->text().toStdString();
  return true;
}

std::optional<std::string> QtDialogs::OpenFileName(std::string_view title,
                                                   std::string_view filter,
                                                   std::string_view initialPath) {
  QFileDialog dialog(owner(), qs(title), qs(initialPath), qs(filter));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return pathOrNone(dialog.selectedFiles().value(0));
}

std::optional<std::string> QtDialogs::SaveFileName(std::string_view title,
                                                   std::string_view filter,
                                                   std::string_view initialPath) {
  QFileDialog dialog(owner(), qs(title), qs(initialPath), qs(filter));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return pathOrNone(dialog.selectedFiles().value(0));
}

std::unique_ptr<PrinterPage> QtDialogs::OpenPrinter(std::string_view documentName) {
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  printer->setDocName(qs(documentName));
  QPrintDialog dialog(printer.get(), owner());
  if (dialog.exec() != QDialog::Accepted) return nullptr;
  return std::make_unique<QtPrinterPage>(std::move(printer));
}

bool QtDialogs::ShowHelp(const std::string& path) {
  QFileInfo info(QString::fromStdString(path));
  const QString name = info.fileName();
  for (const QString& folder : helpFolders_) {
    if (info.isFile()) break;
    info = QFileInfo(QDir(folder), name);
  }
  QFile file(info.filePath());
  if (!info.isFile() || !file.open(QIODevice::ReadOnly)) return false;
  const QString html = QString::fromUtf8(file.readAll());

  if (helpWindow_.isNull()) {
    // A window of its own, not modal: the user reads help beside the program.
    auto* window = new QWidget(nullptr, Qt::Window);
    window->setObjectName("helpWindow");
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    auto* browser = new QTextBrowser(window);
    browser->setObjectName("helpBrowser");
    browser->setOpenExternalLinks(true);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(browser);
    window->resize(640, 520);
    helpWindow_ = window;
    helpBrowser_ = browser;
  }
  helpWindow_->setWindowTitle(info.fileName());
  helpBrowser_->setSearchPaths({info.absolutePath()});
  helpBrowser_->setHtml(html);
  helpWindow_->show();
  helpWindow_->raise();
  helpWindow_->activateWindow();
  return true;
}

void QtDialogs::CopyPicture(const Canvas& picture) {
  const auto* canvas = dynamic_cast<const QImageCanvas*>(&picture);
  if (canvas == nullptr) return;
  if (QClipboard* clipboard = QGuiApplication::clipboard()) clipboard->setImage(canvas->image());
}

void QtDialogs::CopyText(std::string_view text) {
  if (QClipboard* clipboard = QGuiApplication::clipboard())
    clipboard->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

std::string QtDialogs::ClipboardText() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  return clipboard ? clipboard->text().toStdString() : std::string();
}

void QtDialogs::Beep() { QApplication::beep(); }

void QtDialogs::SetBusy(bool busy) {
  // Kept balanced: repeated calls with the same state change nothing.
  if (busy == busy_) return;
  busy_ = busy;
  if (busy)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void QtDialogs::DoEvents() { QCoreApplication::processEvents(); }

}  // namespace orvane
