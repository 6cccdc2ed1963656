#include "platform/ui/QtPrinterPage.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include "platform/RuntimeError.h"
#include "platform/ui/QImageCanvas.h"

namespace orvane {

namespace {
constexpr int32_t kPrinterError = 482;
constexpr double kTwipsPerInch = 1440.0;
}  // namespace

QtPrinterPage::QtPrinterPage(std::unique_ptr<QPrinter> printer) : printer_(std::move(printer)) {
  if (!printer_) printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
}

QtPrinterPage::QtPrinterPage(const std::string& pdfPath, const std::string& documentName)
    : printer_(std::make_unique<QPrinter>(QPrinter::HighResolution)) {
  printer_->setOutputFormat(QPrinter::PdfFormat);
  printer_->setOutputFileName(QString::fromStdString(pdfPath));
  if (!documentName.empty()) printer_->setDocName(QString::fromStdString(documentName));
}

QtPrinterPage::~QtPrinterPage() {
  // A document that was started goes out even when nobody ended it.
  if (painter_ && painter_->isActive()) painter_->end();
}

QPainter& QtPrinterPage::painter() {
  if (!painter_) painter_ = std::make_unique<QPainter>();
  if (!painter_->isActive()) {
    if (!painter_->begin(printer_.get()))
      throw RuntimeError(kPrinterError, "Printer error");
    painter_->setFont(makeFont());
    pages_ = 1;
  }
  return *painter_;
}

QFont QtPrinterPage::makeFont() const {
  QFont font(QString::fromStdString(fontName_));
  font.setPointSizeF(fontSize_);
  const QString lower = QString::fromStdString(fontName_).toLower();
  if (lower.contains("courier") || lower.contains("mono") || lower.contains("fixed")) {
    // Reports line up on their colons: insist on a fixed-pitch face.
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
  }
  return font;
}

double QtPrinterPage::deviceFromTwips(double twips) const {
  return twips * printer_->resolution() / kTwipsPerInch;
}

double QtPrinterPage::lineHeight() {
  return QFontMetricsF(painter().font(), printer_.get()).lineSpacing();
}

void QtPrinterPage::newPage() {
  painter();
  printer_->newPage();
  ++pages_;
  y_ = 0;
}

void QtPrinterPage::Write(std::string_view text) {
  QPainter& p = painter();
  if (text.empty()) return;
  const QString s = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  const QFontMetricsF metrics(p.font(), printer_.get());
  if (y_ > 0 && y_ + metrics.height() > printer_->height()) newPage();
  p.setPen(Qt::black);
  p.drawText(QPointF(x_, y_ + metrics.ascent()), s);
  x_ += metrics.horizontalAdvance(s);
}

void QtPrinterPage::Tab(int column) {
  QPainter& p = painter();
  if (column < 1) column = 1;
  const double charWidth = QFontMetricsF(p.font(), printer_.get()).horizontalAdvance(QChar('0'));
  const double target = (column - 1) * charWidth;
  // A little slack absorbs rounding of the advances written so far.
  if (x_ > target + charWidth * 0.01) NewLine();
  x_ = target;
}

void QtPrinterPage::NewLine() {
  const double height = lineHeight();
  x_ = 0;
  y_ += height;
  if (y_ + height > printer_->height()) newPage();
}

double QtPrinterPage::CurrentY() const {
  return y_ * kTwipsPerInch / printer_->resolution();
}

void QtPrinterPage::SetCurrentY(double twips) {
  y_ = deviceFromTwips(twips < 0 ? 0 : twips);
}

void QtPrinterPage::SetFontName(std::string_view face) {
  fontName_ = std::string(face);
  if (painter_ && painter_->isActive()) painter_->setFont(makeFont());
}

void QtPrinterPage::SetFontSize(double points) {
  if (points <= 0) return;
  fontSize_ = points;
  if (painter_ && painter_->isActive()) painter_->setFont(makeFont());
}

void QtPrinterPage::PaintPicture(const Canvas& picture, double left, double top, double width,
                                 double height) {
  const auto* canvas = dynamic_cast<const QImageCanvas*>(&picture);
  if (canvas == nullptr || width <= 0 || height <= 0) return;
  const QRectF target(deviceFromTwips(left), deviceFromTwips(top), deviceFromTwips(width),
                      deviceFromTwips(height));
  painter().drawImage(target, canvas->image());
}

void QtPrinterPage::EndDoc() {
  painter();  // an empty document still gives its page
  painter_->end();
  x_ = y_ = 0;
}

}  // namespace orvane
