#include <RouterPlatform/Trace/Trace.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Trace::Handle const handle("TraceTest");

constexpr std::uint64_t bits(std::initializer_list<unsigned> levels) {
  std::uint64_t mask = 0;
  for (unsigned const n : levels) mask |= std::uint64_t{1} << n;
  return mask;
}

TEST(Trace, CarriesHandleLevelPlaceAndText) {
  Trace::Capture const capture("TraceTest");
  TRACE_AT(handle, 8, Trace::Location{"Some/Source", 539, "someFunction"}, "MTU ", 1500, " ", true);
  ASSERT_EQ(capture.records().size(), 1U);
  auto const& record = capture.records()[0];
  EXPECT_EQ(record.handle, "TraceTest");
  EXPECT_EQ(record.level, 8U);
  EXPECT_EQ(record.source, "Some/Source");
  EXPECT_EQ(record.line, 539);
  EXPECT_EQ(record.function, "someFunction");
  EXPECT_EQ(record.text, "MTU 1500 true");
}

TEST(Trace, NamesThePlaceOfTheMessageWhenNoneIsGiven) {
  Trace::Capture const capture("TraceTest");
  TRACE(handle, 0, "here");
  int const line = __LINE__ - 1;
  ASSERT_EQ(capture.records().size(), 1U);
  EXPECT_THAT(capture.records()[0].source, testing::HasSubstr("TraceTest.cpp"));
  EXPECT_EQ(capture.records()[0].line, line);
  EXPECT_EQ(capture.records()[0].function, "TestBody");
}

TEST(Trace, IsOffAtStart) {
  Trace::Handle const fresh("TraceTestFresh");
  EXPECT_EQ(fresh.levels(), 0U);
}

TEST(Trace, EvaluatesNothingOfADisabledMessage) {
  Trace::Capture const capture("TraceTest", "3");
  int evaluated = 0;
  TRACE(handle, 8, "costly ", ++evaluated);
  EXPECT_EQ(evaluated, 0);
  TRACE(handle, 3, "costly ", ++evaluated);
  EXPECT_EQ(evaluated, 1);
  EXPECT_THAT(capture.texts(3), ElementsAre("costly 1"));
}

TEST(Trace, IsOneStatement) {
  Trace::Capture const capture("TraceTest", "1");
  if (false)
    TRACE(handle, 1, "then");
  else
    TRACE(handle, 1, "otherwise");
  EXPECT_THAT(capture.texts(1), ElementsAre("otherwise"));
}

TEST(Trace, LevelsBeyondTheLastAreNeverEnabled) {
  Trace::Capture const capture("TraceTest", "*");
  EXPECT_TRUE(handle.enabled(63));
  EXPECT_FALSE(handle.enabled(64));
  EXPECT_FALSE(handle.enabled(~0U));
}

TEST(Trace, TheFormerSinkComesBack) {
  std::vector<std::string> outer;
  Trace::Sink const start = Trace::sinkIs([&](Trace::Record const& r) { outer.emplace_back(r.text); });
  { Trace::Capture const capture("TraceTest", "1"); }
  Trace::levelsIs("TraceTest/1");
  TRACE(handle, 1, "outer");
  Trace::levelsIs("TraceTest/");
  Trace::sinkIs(start);
  EXPECT_THAT(outer, ElementsAre("outer"));
}

TEST(Trace, WhatASinkTracesItselfIsDropped) {
  Trace::levelsIs("TraceTest/1");
  int calls = 0;
  Trace::Sink former = Trace::sinkIs([&](Trace::Record const&) {
    ++calls;
    TRACE(handle, 1, "from the sink");
  });
  TRACE(handle, 1, "first");
  TRACE(handle, 1, "second");
  Trace::sinkIs(former);
  Trace::levelsIs("TraceTest/");
  EXPECT_EQ(calls, 2);
}

TEST(Trace, ASinkMayReplaceItself) {
  Trace::levelsIs("TraceTest/1");
  std::vector<std::string> seen;
  Trace::Sink const former = Trace::sinkIs([&seen](Trace::Record const& r) {
    Trace::sinkIs([&seen](Trace::Record const& later) { seen.push_back("b:" + std::string(later.text)); });
    seen.push_back("a:" + std::string(r.text));
  });
  TRACE(handle, 1, "one");
  TRACE(handle, 1, "two");
  Trace::sinkIs(former);
  Trace::levelsIs("TraceTest/");
  EXPECT_THAT(seen, ElementsAre("a:one", "b:two"));
}

TEST(Trace, TheDefaultSinkWritesOnePrintableLineOnStandardError) {
  Trace::Sink const former = Trace::sinkIs(nullptr);
  Trace::levelsIs("TraceTest/3");
  testing::internal::CaptureStderr();
  TRACE_AT(handle, 3, Trace::Location{"Some/Source", 588, "f"}, "two\nlines\x1b[0m \xc3\xa4");
  std::string const output = testing::internal::GetCapturedStderr();
  Trace::levelsIs("TraceTest/");
  Trace::sinkIs(former);
  EXPECT_EQ(output, "TraceTest/3 Some/Source:588: f: two\\x0alines\\x1b[0m \xc3\xa4\n");
}

struct SettingsRow {
  char const* name;
  char const* settings;
  std::uint64_t mask;
  friend void PrintTo(SettingsRow const& r, std::ostream* os) { *os << r.name; }
};
SettingsRow const settingsRows[] = {
    {"RangesAndLevels", "TraceSettings/0-3,8", bits({0, 1, 2, 3, 8})},
    {"OneLevel", "TraceSettings/63", bits({63})},
    {"Star", "TraceSettings/*", ~std::uint64_t{0}},
    {"EmptyListIsNone", "TraceSettings/", 0},
    {"Pattern", "Trace*/1", bits({1})},
    {"QuestionMark", "TraceSetting?/1", bits({1})},
    {"LaterWins", "TraceSettings/1:Trace*/2", bits({2})},
    {"NoMatchChangesNothing", "trace*/1:TraceSettings?/2:race*/3", bits({5})},
    {"EmptySettingsAreSkipped", "::TraceSettings/4:", bits({4})},
    {"EmptyTextChangesNothing", "", bits({5})},
    {"EqualEndsOfARange", "TraceSettings/7-7", bits({7})},
};
class TraceSettings : public testing::TestWithParam<SettingsRow> {};
TEST_P(TraceSettings, SetTheLevelsOfMatchingHandles) {
  Trace::levelsIs("TraceSettings/");
  Trace::Handle const target("TraceSettings");
  target.levelsIs(bits({5}));
  Trace::levelsIs(GetParam().settings);
  EXPECT_EQ(target.levels(), GetParam().mask);
  Trace::levelsIs("*/");
}
INSTANTIATE_TEST_SUITE_P(All, TraceSettings, testing::ValuesIn(settingsRows),
                         [](auto const& row) { return row.param.name; });

struct ErrorRow {
  char const* name;
  char const* settings;
  std::size_t offset;
  friend void PrintTo(ErrorRow const& r, std::ostream* os) { *os << r.name; }
};
ErrorRow const errorRows[] = {
    {"NoSlash", "RouterAdvt", 10}, {"NoSlashInTheSecond", "A/1:B", 5}, {"NoName", "A/1:/3", 4},
    {"NotANumber", "A/x", 2},      {"LevelTooHigh", "A/64", 2},        {"LevelFarTooHigh", "A/99999999999999999999", 2},
    {"NegativeLevel", "A/-1", 2},  {"BackwardRange", "A/5-3", 4},      {"OpenRange", "A/5-", 4},
    {"TrailingComma", "A/5,", 4},  {"BadSeparator", "A/5;6", 3},
};
class TraceSettingsErrors : public testing::TestWithParam<ErrorRow> {};
TEST_P(TraceSettingsErrors, SayWhereAndChangeNothing) {
  Trace::Handle const target("A");
  target.levelsIs(bits({9}));
  try {
    Trace::levelsIs(GetParam().settings);
    FAIL() << "no error";
  } catch (Trace::SettingsError const& error) {
    EXPECT_EQ(error.offset(), GetParam().offset) << error.what();
    EXPECT_THAT(error.what(), testing::HasSubstr("character " + std::to_string(GetParam().offset + 1)));
  }
  EXPECT_EQ(target.levels(), bits({9}));
}
INSTANTIATE_TEST_SUITE_P(All, TraceSettingsErrors, testing::ValuesIn(errorRows),
                         [](auto const& row) { return row.param.name; });

TEST(TraceSettingsText, ReachHandlesMadeLater) {
  Trace::levelsIs("TraceLat*/4:TraceLater/6");
  Trace::Handle const later("TraceLater");
  Trace::Handle const latest("TraceLatest");
  EXPECT_EQ(later.levels(), bits({6}));
  EXPECT_EQ(latest.levels(), bits({4}));
  Trace::levelsIs("TraceLat*/:TraceLater/");
}

TEST(TraceSettingsText, ReachEveryHandleOfAName) {
  Trace::Handle const one("TraceTwin");
  Trace::Handle const other("TraceTwin");
  Trace::levelsIs("TraceTwin/2");
  EXPECT_EQ(one.levels(), bits({2}));
  EXPECT_EQ(other.levels(), bits({2}));
  Trace::levelsIs("TraceTwin/");
}

// The environment is read once, at start, so these run in a process of their own.
TEST(TraceEnvironmentDeathTest, SetsLevelsAtStart) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ASSERT_EQ(setenv("TRACE", "TraceTest/0-3,8:Other/5", 1), 0);
  EXPECT_EXIT(std::exit(handle.levels() == bits({0, 1, 2, 3, 8}) ? 0 : 1), testing::ExitedWithCode(0), "");
  unsetenv("TRACE");
}

TEST(TraceEnvironmentDeathTest, ABadTextIsSaidOnStandardErrorAndIgnored) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ASSERT_EQ(setenv("TRACE", "TraceTest/3:Other/x", 1), 0);
  EXPECT_EXIT(std::exit(handle.levels() == 0 ? 0 : 1), testing::ExitedWithCode(0),
              "environment variable TRACE: trace settings \"TraceTest/3:Other/x\", character 19: expected a level");
  unsetenv("TRACE");
}

TEST(TraceThreads, MessagesSettingsAndSinksMayMeet) {
  std::size_t received = 0;  // plain on purpose: the sink is called by one thread at a time
  Trace::Sink const former = Trace::sinkIs([&](Trace::Record const& r) { received += r.text.size(); });
  Trace::levelsIs("TraceThreads/1");
  Trace::Handle const shared("TraceThreads");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&shared, t] {
      for (int i = 0; i < 500; ++i) {
        TRACE(shared, 1, "0123456789");
        TRACE(shared, 2, "never or sometimes");
        Trace::Handle const own("TraceThreads");
        if (t == 0) Trace::levelsIs(i % 2 ? "TraceThreads/1" : "TraceThreads/1-2");
      }
    });
  for (auto& thread : threads) thread.join();
  Trace::sinkIs(former);
  Trace::levelsIs("TraceThreads/");
  EXPECT_GE(received, 4U * 500 * 10);
}

TEST(Trace, SaysThatAMessageIsLostWhenThereIsNoMemoryForIt) {
  Trace::levelsIs("TraceTest/3");
  testing::internal::CaptureStderr();
  {
    AllocationFailure const failure(0);
    TRACE(handle, 3, "short");
  }
  std::string const output = testing::internal::GetCapturedStderr();
  Trace::levelsIs("TraceTest/");
  EXPECT_EQ(output, "trace: a message was lost, out of memory\n");
}

}  // namespace
