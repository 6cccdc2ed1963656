#include "app/frmAbout.h"

#include <QCloseEvent>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace orvane {

namespace {
constexpr int kMargin = 12;
constexpr int kMinWidth = 420;
}  // namespace

frmAbout::frmAbout(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName("frmAbout");
  setWindowTitle("About Orvane Regression");
  setAutoFillBackground(true);
  fitToText();
}

QStringList frmAbout::splashLines() {
  return {"", "", "", "Orvane Regression", "", "Copyright (C) 2026 The Orvane developers", "",
          "All Rights Reserved", "", "www.orvane.example"};
}

void frmAbout::PrintSplash() {
  lines_ += splashLines();
  fitToText();
  update();
}

void frmAbout::fitToText() {
  const QFontMetrics metrics(font());
  int width = kMinWidth;
  for (const QString& line : lines_) width = std::max(width, metrics.horizontalAdvance(line) + 2 * kMargin);
  const int textLines = std::max<qsizetype>(lines_.size(), splashLines().size() + 1);
  resize(width, static_cast<int>(textLines) * metrics.lineSpacing() + 2 * kMargin);
}

void frmAbout::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QFontMetrics metrics(font());
  int y = kMargin + metrics.ascent();
  for (const QString& line : lines_) {
    painter.drawText(kMargin, y, line);
    y += metrics.lineSpacing();
  }
}

void frmAbout::mousePressEvent(QMouseEvent*) { close(); }

void frmAbout::closeEvent(QCloseEvent* event) {
  // Unloading discards what was printed: the next About starts on a clean window.
  lines_.clear();
  event->accept();
}

}  // namespace orvane
