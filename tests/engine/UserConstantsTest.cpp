// The user constants list and its registration in the engine.

#include <string>

#include "engine/EngineCheck.h"
#include "engine/UserConstants.h"

namespace orvane::test {
namespace {

TEST(UserConstants, NameRules) {
  struct Row {
    const char* typed;
    bool accepted;
  };
  for (const Row& row : {
           Row{"a=2.37", true},
           Row{"a1=5", true},
           Row{"Abc9=pi/2", true},
           Row{"2a=1", false},
           Row{"a b=1", false},
           Row{"a_b=1", false},
           Row{" a=1", false},
           Row{"=5", false},
           Row{"abc", false},
           Row{"\xC3\xA9=1", false},
           Row{"a=", true},  // a bad value is the engine's to report
       }) {
    UserConstants list;
    EXPECT_EQ(list.Add(row.typed), row.accepted) << row.typed;
    EXPECT_EQ(list.numcon(), row.accepted ? 1 : 0) << row.typed;
  }
}

TEST(UserConstants, RedefinitionKeepsOneEntryAtTheEnd) {
  UserConstants list;
  ASSERT_TRUE(list.Add("a=1"));
  ASSERT_TRUE(list.Add("b=2"));
  ASSERT_TRUE(list.Add("a=2"));
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"b=2", "a=2"}));
  EXPECT_EQ(list.numcon(), 2);
  ASSERT_TRUE(list.Add("ab=3"));  // a longer name with the same start is another constant
  EXPECT_EQ(list.numcon(), 3);
}

TEST(UserConstants, HoldsAtMost101) {
  UserConstants list;
  for (int i = 0; i < UserConstants::MaxEntries; ++i) ASSERT_TRUE(list.Add("c" + std::to_string(i) + "=1"));
  EXPECT_FALSE(list.Add("z=1"));
  EXPECT_EQ(list.numcon(), 101);
  EXPECT_TRUE(list.Add("c5=2"));  // redefining frees its own place first
  EXPECT_EQ(list.entries().back(), "c5=2");
}

TEST(UserConstants, RegisteredInListOrder) {
  Engine t;
  UserConstants list;
  list.Add("a=2.37");
  list.Add("b=2*a");
  list.Add("h=Asin(1)*2");
  list.RegisterAll(t.engine);
  EXPECT_DOUBLE_EQ(t.engine.Eval("b"), 4.74);
  EXPECT_EQ(t.engine.Eval("h"), t.sh.pi);
  t.sh.x = 1;
  EXPECT_DOUBLE_EQ(EvaluateAt(t.engine, t.sh, "Asin(x/2)+Tanh(x)*a", 0.5),
                   t.sh.Asin(0.25) + t.sh.Tanh(0.5) * 2.37);
}

TEST(UserConstants, RemovedConstantEvaluatesAsZero) {
  Engine t;
  UserConstants list;
  list.Add("k=1");
  list.Add("a=2");
  list.RegisterAll(t.engine);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 5);
  list.Remove(1, t.engine);
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"k=1"}));
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  list.RegisterAll(t.engine);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  EXPECT_THROW(list.Remove(1, t.engine), RuntimeError);
  EXPECT_THROW(list.Remove(-1, t.engine), RuntimeError);
}

TEST(UserConstants, BadEntryIsReportedByTheEngineAtRegistration) {
  Engine t;
  std::vector<int32_t> reported;
  t.engine.SetErrorHandler([&](const RuntimeError& e) { reported.push_back(e.number()); });
  UserConstants list;
  list.Add("a=1");
  list.Add("c=1+");
  list.Add("d=3");
  try {
    list.RegisterAll(t.engine);
    ADD_FAILURE();
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 1023);
  }
  EXPECT_EQ(reported, (std::vector<int32_t>{1023}));
  EXPECT_EQ(t.engine.Eval("a"), 1);
  EXPECT_THROW(t.engine.Eval("d"), RuntimeError);  // registration stops at the bad entry
}

}  // namespace
}  // namespace orvane::test
