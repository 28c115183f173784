#include <Ipv6RouterAdvt/Version.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Version, OfTheLibraryIsThatOfTheHeadersAndOfTheProject) {
  EXPECT_STREQ(RouterAdvt::version(), ROUTER_ADVT_VERSION);
  EXPECT_STREQ(ROUTER_ADVT_VERSION, PROJECT_VERSION);
}

TEST(Version, AsTextIsMadeOfItsNumbers) {
  EXPECT_EQ(std::to_string(ROUTER_ADVT_VERSION_MAJOR) + '.' + std::to_string(ROUTER_ADVT_VERSION_MINOR) + '.' +
                std::to_string(ROUTER_ADVT_VERSION_PATCH),
            ROUTER_ADVT_VERSION);
}

}  // namespace
