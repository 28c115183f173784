#include <RouterPlatform/Fwk/Notification.h>
#include <RouterPlatform/Net/IntfId.h>

#include <gtest/gtest.h>

namespace {

using Fwk::NotificationKey;
using Net::IntfId;

TEST(NotificationKey, IsFalseWithoutAKey) {
  NotificationKey const none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.as<IntfId>(), nullptr);
  std::string text = "none";
  none.appendTo(text);
  EXPECT_EQ(text, "none");
}

TEST(NotificationKey, GivesTheKeyAsItsOwnTypeOnly) {
  IntfId const intfId("Ethernet1");
  NotificationKey const key = NotificationKey::of(intfId);
  EXPECT_TRUE(key);
  EXPECT_EQ(key.as<IntfId>(), &intfId);
  EXPECT_EQ(key.as<Fwk::U32>(), nullptr);
  EXPECT_EQ(key.as<Fwk::String>(), nullptr);
}

TEST(NotificationKey, PrintsItsPlainText) {
  IntfId const intfId("Ethernet1");
  Fwk::U32 const number = 7;
  Fwk::String const text("example.com");
  std::string out;
  NotificationKey::of(intfId).appendTo(out);
  NotificationKey::of(number).appendTo(out);
  NotificationKey::of(text).appendTo(out);
  EXPECT_EQ(out, "Ethernet17example.com");
}

}  // namespace
