// The text field's focus events: selection on entry, Validate before the focus moves
// (by Tab, by a click on another field or a button, by the program), LostFocus after.

#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

#include "platform/ui/TextBox.h"

using namespace orvane;

namespace {

// A window with two fields and a button that logs every event in order.
struct Form {
  QWidget window;
  TextBox* txtA = new TextBox("12.5", &window);
  TextBox* txtB = new TextBox("7", &window);
  QPushButton* cmdGo = new QPushButton("&Go", &window);
  QPushButton* cmdHelp = new QPushButton("Help", &window);
  QStringList log;
  bool refuseA = false;

  Form() {
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* w : {static_cast<QWidget*>(txtA), static_cast<QWidget*>(txtB),
                       static_cast<QWidget*>(cmdGo), static_cast<QWidget*>(cmdHelp)})
      layout->addWidget(w);
    TextBox::setCausesValidation(cmdHelp, false);
    QObject::connect(txtA, &TextBox::GotFocus, [this] { log << "A.GotFocus"; });
    QObject::connect(txtA, &TextBox::Validate, [this](bool& cancel) {
      log << "A.Validate";
      cancel = refuseA;
    });
    QObject::connect(txtA, &TextBox::LostFocus, [this] { log << "A.LostFocus"; });
    QObject::connect(txtB, &TextBox::GotFocus, [this] { log << "B.GotFocus"; });
    QObject::connect(cmdGo, &QPushButton::clicked, [this] { log << "Go.Click"; });
    QObject::connect(cmdHelp, &QPushButton::clicked, [this] { log << "Help.Click"; });
  }

  bool start() {
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) return false;
    txtA->setFocus(Qt::TabFocusReason);
    log.clear();
    return txtA->hasFocus();
  }
};

}  // namespace

class TextBoxTest : public QObject {
  Q_OBJECT

 private slots:
  void enteringSelectsTheWholeText() {
    Form form;
    QVERIFY(form.start());
    QCOMPARE(form.txtA->selectedText(), QString("12.5"));
    QTest::mouseClick(form.txtB, Qt::LeftButton);  // a click places no cursor
    QVERIFY(form.txtB->hasFocus());
    QCOMPARE(form.txtB->selectedText(), QString("7"));
    QCOMPARE(form.log, QStringList({"A.Validate", "A.LostFocus", "B.GotFocus"}));
  }

  void refusedValidateKeepsTheFocusOnTab() {
    Form form;
    QVERIFY(form.start());
    form.refuseA = true;
    QTest::keyClick(form.txtA, Qt::Key_Tab);
    QVERIFY(form.txtA->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate"}));

    form.refuseA = false;
    QTest::keyClick(form.txtA, Qt::Key_Tab);
    QVERIFY(form.txtB->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate", "A.Validate", "A.LostFocus", "B.GotFocus"}));
  }

  void refusedFieldStopsAButtonClick_data() {
    QTest::addColumn<bool>("throughWindow");
    QTest::newRow("press delivered to the button") << false;
    QTest::newRow("press arriving at the window") << true;
  }
  void refusedFieldStopsAButtonClick() {
    QFETCH(bool, throughWindow);
    Form form;
    QVERIFY(form.start());
    auto click = [&](QWidget* target) {
      if (throughWindow)
        QTest::mouseClick(form.window.windowHandle(), Qt::LeftButton, {},
                          target->mapTo(&form.window, target->rect().center()));
      else
        QTest::mouseClick(target, Qt::LeftButton);
    };

    form.refuseA = true;
    click(form.cmdGo);
    QVERIFY(form.txtA->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate"}));

    // The next, unrelated click is not swallowed.
    form.refuseA = false;
    click(form.cmdGo);
    QCOMPARE(form.log, QStringList({"A.Validate", "A.Validate", "A.LostFocus", "Go.Click"}));
  }

  void refusedFieldStopsAButtonMnemonic() {
    Form form;
    QVERIFY(form.start());
    form.refuseA = true;
    QTest::keyClick(form.txtA, Qt::Key_G, Qt::AltModifier);
    QTest::qWait(300);  // a mnemonic clicks after a short animation
    QVERIFY(form.txtA->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate"}));

    form.refuseA = false;
    QTest::keyClick(form.txtA, Qt::Key_G, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(form.log.join(" "), QString("A.Validate A.Validate A.LostFocus Go.Click"), 1000);
  }

  void buttonsThatDoNotValidateAreClickedAtOnce() {
    Form form;
    QVERIFY(form.start());
    form.refuseA = true;
    QTest::mouseClick(form.cmdHelp, Qt::LeftButton);
    QCOMPARE(form.log, QStringList({"A.LostFocus", "Help.Click"}));
  }

  void programFocusMoveIsValidatedToo() {
    Form form;
    QVERIFY(form.start());
    form.refuseA = true;
    form.txtB->setFocus();
    QVERIFY(form.txtA->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate"}));
    QCOMPARE(form.txtA->text(), QString("12.5"));
  }

  void keyPressCanDiscardOrChangeKeys() {
    Form form;
    QVERIFY(form.start());
    int enters = 0;
    QObject::connect(form.txtA, &TextBox::KeyPress, [&](int& key) {
      if (key == 13) ++enters;
      if (key >= 'a' && key <= 'z') key = 0;  // letters are discarded
      if (key == ',') key = '.';
    });
    form.txtA->clear();
    QTest::keyClicks(form.txtA, "1a,5x");
    QTest::keyClick(form.txtA, Qt::Key_Return);
    QCOMPARE(form.txtA->text(), QString("1.5"));
    QCOMPARE(enters, 1);
  }
};

QTEST_MAIN(TextBoxTest)
#include "TextBoxTest.moc"
