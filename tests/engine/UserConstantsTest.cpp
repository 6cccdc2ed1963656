// The user constants list and its registration in the engine.

#include <string>

#include "engine/EngineCheck.h"
#include "engine/UserConstants.h"

namespace orvane::test {
namespace {

TEST(UserConstants, NameRules) {
  const std::pair<const char*, bool> rows[] = {
      {"a=2.37", true}, {"a1=5", true}, {"Abc9=pi/2", true}, {"2a=1", false}, {"a b=1", false}, {"a_b=1", false},
      {" a=1", false},  {"=5", false},  {"abc", false},      {"\xC3\xA9=1", false},
      {"a=", true}};  // a bad value is the engine's to report
  for (const auto& [typed, accepted] : rows) {
    UserConstants list;
    EXPECT_EQ(list.Add(typed), accepted) << typed;
    EXPECT_EQ(list.numcon(), accepted ? 1 : 0) << typed;
  }
}

TEST(UserConstants, RedefinitionKeepsOneEntryAtTheEndWithin101) {
  UserConstants list;
  for (const char* typed : {"a=1", "b=2", "a=2"}) ASSERT_TRUE(list.Add(typed));
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"b=2", "a=2"}));
  ASSERT_TRUE(list.Add("ab=3"));  // a longer name with the same start is another constant
  EXPECT_EQ(list.numcon(), 3);

  UserConstants full;
  for (int i = 0; i < 101; ++i) ASSERT_TRUE(full.Add("c" + std::to_string(i) + "=1"));
  EXPECT_FALSE(full.Add("z=1"));
  EXPECT_EQ(full.numcon(), 101);
  EXPECT_TRUE(full.Add("c5=2"));  // redefining frees its own place first
  EXPECT_EQ(full.entries().back(), "c5=2");
}

TEST(UserConstants, RegisteredInListOrderRemovedAsZero) {
  Engine t;
  UserConstants list;
  for (const char* typed : {"a=2.37", "b=2*a", "h=Asin(1)*2", "k=1"}) list.Add(typed);
  list.RegisterAll(t.engine);
  EXPECT_DOUBLE_EQ(t.engine.Eval("b"), 4.74);
  EXPECT_EQ(t.engine.Eval("h"), t.sh.pi);
  EXPECT_DOUBLE_EQ(EvaluateAt(t.engine, t.sh, "Asin(x/2)+Tanh(x)*a", 0.5), t.sh.Asin(0.25) + t.sh.Tanh(0.5) * 2.37);
  EXPECT_DOUBLE_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 5.37);
  list.Remove(0, t.engine);
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"b=2*a", "h=Asin(1)*2", "k=1"}));
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  list.RegisterAll(t.engine);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  EXPECT_THROW(list.Remove(3, t.engine), RuntimeError);
  EXPECT_THROW(list.Remove(-1, t.engine), RuntimeError);
}

TEST(UserConstants, BadEntryStopsRegistrationThroughTheEngine) {
  Engine t;
  std::vector<int32_t> reported;
  t.engine.SetErrorHandler([&](const RuntimeError& e) { reported.push_back(e.number()); });
  UserConstants list;
  for (const char* typed : {"a=1", "c=1+", "d=3"}) list.Add(typed);
  EXPECT_THROW(list.RegisterAll(t.engine), RuntimeError);
  EXPECT_EQ(reported, (std::vector<int32_t>{1023}));
  EXPECT_EQ(t.engine.Eval("a"), 1);
  EXPECT_THROW(t.engine.Eval("d"), RuntimeError);
}

}  // namespace
}  // namespace orvane::test
