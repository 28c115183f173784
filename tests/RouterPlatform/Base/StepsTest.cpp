#include <RouterPlatform/Base/Steps.h>

#include <gmock/gmock.h>

#include <stdexcept>
#include <vector>

namespace {

TEST(Steps, AreAllTakenAndThrowWhatTheFirstOneThrew) {
  std::vector<int> taken;
  Fwk::Steps steps;
  steps.run([&] { taken.push_back(1); });
  steps.run([&] {
    taken.push_back(2);
    throw std::runtime_error("first");
  });
  steps.run([&] {
    taken.push_back(3);
    throw std::logic_error("second");
  });
  EXPECT_THAT(taken, testing::ElementsAre(1, 2, 3));
  EXPECT_THROW(steps.finish(), std::runtime_error);
  EXPECT_NO_THROW(steps.finish()) << "once";
}

TEST(Steps, ThatThrowNothingEndInNothing) {
  Fwk::Steps steps;
  steps.run([] {});
  EXPECT_NO_THROW(steps.finish());
}

}  // namespace
