#include <RouterPlatform/Base/FunctionRef.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace {

using Fwk::FunctionRef;

int callWithTwo(FunctionRef<int(int)> call) { return call(2); }
int twice(int v) { return v * 2; }

TEST(FunctionRef, CallsLambdasFunctorsAndFunctionPointers) {
  struct Adder {
    int operator()(int v) const { return v + 10; }
  };
  Adder const adder;
  EXPECT_EQ(callWithTwo([](int v) { return v + 1; }), 3);
  EXPECT_EQ(callWithTwo(adder), 12);
  EXPECT_EQ(callWithTwo(&twice), 4);
}

TEST(FunctionRef, CallsTheCallableItselfNotACopy) {
  int calls = 0;
  auto count = [calls = 0](int) mutable { return ++calls; };
  FunctionRef<int(int)> const call = count;
  call(0);
  FunctionRef<int(int)> const copy = call;
  calls = copy(0);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(count(0), 3);
}

TEST(FunctionRef, PassesReferencesAndThingsThatCanOnlyBeMoved) {
  auto const append = [](std::string& out, std::unique_ptr<int> number) { out += std::to_string(*number); };
  FunctionRef<void(std::string&, std::unique_ptr<int>)> const call = append;
  std::string out = "n";
  call(out, std::make_unique<int>(5));
  EXPECT_EQ(out, "n5");
}

TEST(FunctionRef, LetsExceptionsPass) {
  auto const fail = [](int) -> int { throw 5; };
  EXPECT_THROW(callWithTwo(fail), int);
}

TEST(FunctionRef, AllocatesNothingHoweverMuchTheCallableHolds) {
  std::array<int, 100> const numbers{1, 2, 3};
  std::size_t const before = allocationCount();
  EXPECT_EQ(callWithTwo([numbers](int v) { return numbers[static_cast<std::size_t>(v)]; }), 3);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(sizeof(FunctionRef<void()>), 2 * sizeof(void*));
}

TEST(FunctionRef, IsMadeOfWhatCanBeCalledThatWayOnly) {
  EXPECT_TRUE((std::is_constructible_v<FunctionRef<long(int)>, decltype([](long) { return 1; })>));
  EXPECT_FALSE((std::is_constructible_v<FunctionRef<int(int)>, decltype([](std::string) { return 1; })>));
  EXPECT_FALSE((std::is_constructible_v<FunctionRef<int(int)>, decltype([](int) { return std::string(); })>));
}

}  // namespace
