#include "platform/ScriptedDialogs.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/CopyToClipboard.h"
#include "platform/PrinterPage.h"
#include "platform/RecordingCanvas.h"

namespace orvane {
namespace {

TEST(ScriptedDialogs, AnswersFromTheQueueThenWithTheFirstButtonOrCancel) {
  ScriptedDialogs dialogs;
  dialogs.queueMsgBox(mb::No);
  dialogs.queueInputBox("a=2.37");
  dialogs.queueInputBox(std::nullopt);
  dialogs.queueOpenFileName("/tmp/problem");
  dialogs.queueSaveFileName("/tmp/export.txt");
  EXPECT_EQ(dialogs.MsgBox("Save?", mb::YesNoCancel + mb::Question, "Title"), mb::No);
  EXPECT_EQ(dialogs.MsgBox("Done"), mb::OK);
  EXPECT_EQ(dialogs.MsgBox("Sure?", mb::YesNo + mb::Exclamation), mb::Yes);
  EXPECT_EQ(dialogs.InputBox("Constant?", "Constants", "x=1"), "a=2.37");
  EXPECT_EQ(dialogs.InputBox("Constant?", "Constants"), std::nullopt);
  EXPECT_EQ(dialogs.InputBox("Again?", "Constants"), std::nullopt);
  EXPECT_EQ(dialogs.SaveFileName("Export", "Text (*.txt)"), "/tmp/export.txt");
  EXPECT_EQ(dialogs.OpenFileName("Open", "All files (*)"), "/tmp/problem");
  EXPECT_EQ(dialogs.OpenFileName("Open", "All files (*)"), std::nullopt);

  ASSERT_EQ(dialogs.messages().size(), 3u);
  EXPECT_EQ(dialogs.messages()[0].style, 35);
  EXPECT_EQ(dialogs.messages()[0].title, "Title");
  EXPECT_EQ(dialogs.messages()[1].title, kAppTitle);
  EXPECT_EQ(dialogs.pendingAnswers(), 0u);
  ASSERT_EQ(dialogs.inputs().size(), 3u);
  EXPECT_EQ(dialogs.inputs()[0].defaultText, "x=1");
  ASSERT_EQ(dialogs.fileDialogs().size(), 3u);
  EXPECT_TRUE(dialogs.fileDialogs()[0].save);
  EXPECT_FALSE(dialogs.fileDialogs()[1].save);
}

TEST(ScriptedDialogs, RecordsPrintingAndCopies) {
  ScriptedDialogs dialogs;
  {
    std::unique_ptr<PrinterPage> page = dialogs.OpenPrinter("Report");
    ASSERT_NE(page, nullptr);
    page->PrintLine("DEPENDENT VARIABLE: y");
    page->EndDoc();
  }  // the printed page outlives the caller's handle
  EXPECT_EQ(dialogs.printer().texts(), std::vector<std::string>{"DEPENDENT VARIABLE: y"});
  dialogs.setCancelPrinting(true);
  EXPECT_EQ(dialogs.OpenPrinter("Report"), nullptr);
  EXPECT_EQ(dialogs.printDocuments().size(), 2u);

  RecordingCanvas picture(400, 300), empty(0, 0);
  picture.Scale(0, 1, 1, 0);  // the whole client area is copied, not the scaled range
  EXPECT_FALSE(CopyToClipboard(dialogs, picture));
  EXPECT_FALSE(CopyToClipboard(dialogs, empty));
  EXPECT_EQ(dialogs.copiedPictures(), (std::vector<std::pair<int, int>>{{400, 300}}));
}

}  // namespace
}  // namespace orvane
