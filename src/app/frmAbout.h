#pragma once
// The splash window, which is also the About box: no controls, its text printed line
// by line from the top-left; a click anywhere closes it.

#include <QStringList>
#include <QWidget>

namespace orvane {

class frmAbout : public QWidget {
  Q_OBJECT

 public:
  explicit frmAbout(QWidget* parent = nullptr);

  // Prints the ten splash lines below whatever the window already shows.
  void PrintSplash();
  const QStringList& printedLines() const { return lines_; }

  // The ten lines, in order.
  static QStringList splashLines();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;  // Form_Click
  void closeEvent(QCloseEvent* event) override;

 private:
  void fitToText();

  QStringList lines_;
};

}  // namespace orvane
