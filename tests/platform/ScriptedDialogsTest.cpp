#include "platform/ScriptedDialogs.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "platform/CopyToClipboard.h"
#include "platform/PrinterPage.h"
#include "platform/RecordingCanvas.h"

namespace orvane {
namespace {

TEST(ScriptedDialogs, MessageBoxesAnswerFromTheQueueThenWithTheirFirstButton) {
  ScriptedDialogs dialogs;
  dialogs.queueMsgBox(mb::No);
  EXPECT_EQ(dialogs.MsgBox("Save?", mb::YesNoCancel + mb::Question, "Title"), mb::No);
  EXPECT_EQ(dialogs.MsgBox("Done"), mb::OK);
  EXPECT_EQ(dialogs.MsgBox("Sure?", mb::YesNo + mb::Exclamation), mb::Yes);
  EXPECT_EQ(dialogs.MsgBox("Go on?", mb::OKCancel + mb::Critical), mb::OK);

  ASSERT_EQ(dialogs.messages().size(), 4u);
  EXPECT_EQ(dialogs.messages()[0].prompt, "Save?");
  EXPECT_EQ(dialogs.messages()[0].style, 35);
  EXPECT_EQ(dialogs.messages()[0].title, "Title");
  EXPECT_EQ(dialogs.messages()[1].title, kAppTitle);
  EXPECT_EQ(dialogs.pendingAnswers(), 0u);
}

TEST(ScriptedDialogs, InputAndFileDialogsAnswerInOrderThenCancel) {
  ScriptedDialogs dialogs;
  dialogs.queueInputBox("a=2.37");
  dialogs.queueInputBox(std::nullopt);
  dialogs.queueOpenFileName("/tmp/problem");
  dialogs.queueSaveFileName("/tmp/export.txt");

  EXPECT_EQ(dialogs.InputBox("Constant?", "Constants", "x=1"), "a=2.37");
  EXPECT_EQ(dialogs.InputBox("Constant?", "Constants"), std::nullopt);
  EXPECT_EQ(dialogs.InputBox("Again?", "Constants"), std::nullopt);
  EXPECT_EQ(dialogs.SaveFileName("Export", "Text (*.txt)"), "/tmp/export.txt");
  EXPECT_EQ(dialogs.OpenFileName("Open", "All files (*)"), "/tmp/problem");
  EXPECT_EQ(dialogs.OpenFileName("Open", "All files (*)"), std::nullopt);

  ASSERT_EQ(dialogs.inputs().size(), 3u);
  EXPECT_EQ(dialogs.inputs()[0].defaultText, "x=1");
  ASSERT_EQ(dialogs.fileDialogs().size(), 3u);
  EXPECT_TRUE(dialogs.fileDialogs()[0].save);
  EXPECT_FALSE(dialogs.fileDialogs()[1].save);
}

TEST(ScriptedDialogs, PrintedPagesOutliveTheCallersHandle) {
  ScriptedDialogs dialogs;
  {
    std::unique_ptr<PrinterPage> page = dialogs.OpenPrinter("Report");
    ASSERT_NE(page, nullptr);
    page->SetFontName("Courier New");
    page->PrintLine("DEPENDENT VARIABLE: y");
    page->EndDoc();
  }
  EXPECT_EQ(dialogs.printer().texts(), std::vector<std::string>{"DEPENDENT VARIABLE: y"});
  EXPECT_EQ(dialogs.printer().FontName(), "Courier New");
  EXPECT_EQ(dialogs.printer().endDocCount(), 1);

  dialogs.setCancelPrinting(true);
  EXPECT_EQ(dialogs.OpenPrinter("Report"), nullptr);
  EXPECT_EQ(dialogs.printDocuments().size(), 2u);
}

TEST(ScriptedDialogs, RecordsHelpBeepsBusyPointerAndCopies) {
  ScriptedDialogs dialogs;
  const std::string helpPath = ::testing::TempDir() + "orvane_help_test.hlp";
  std::ofstream(helpPath) << "<html><body>Help</body></html>";
  EXPECT_TRUE(dialogs.ShowHelp(helpPath));
  EXPECT_FALSE(dialogs.ShowHelp(helpPath + ".missing"));
  EXPECT_FALSE(dialogs.ShowHelp(::testing::TempDir()));  // a folder is no document
  std::remove(helpPath.c_str());
  EXPECT_EQ(dialogs.helpRequests().size(), 3u);

  dialogs.SetBusy(true);
  EXPECT_TRUE(dialogs.busy());
  dialogs.SetBusy(false);
  EXPECT_FALSE(dialogs.busy());
  EXPECT_EQ(dialogs.busyCalls(), (std::vector<bool>{true, false}));

  dialogs.Beep();
  dialogs.DoEvents();
  dialogs.DoEvents();
  EXPECT_EQ(dialogs.beeps(), 1);
  EXPECT_EQ(dialogs.doEvents(), 2);

  RecordingCanvas picture(400, 300);
  picture.Scale(0, 1, 1, 0);  // the whole client area is copied, not the scaled range
  EXPECT_FALSE(CopyToClipboard(dialogs, picture));
  RecordingCanvas empty(0, 0);
  EXPECT_FALSE(CopyToClipboard(dialogs, empty));
  ASSERT_EQ(dialogs.copiedPictures().size(), 1u);
  EXPECT_EQ(dialogs.copiedPictures()[0], std::make_pair(400, 300));
}

}  // namespace
}  // namespace orvane
