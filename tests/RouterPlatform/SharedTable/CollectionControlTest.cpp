#include <RouterPlatform/Fwk/Reflection.h>
#include <RouterPlatform/SharedTable/CollectionControl.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Fwk::Ptr;
using SharedTable::CollectionControl;
using SharedTable::MountStatus;

TEST(CollectionControl, HasNoKeyToBeMadeFrom) {
  Fwk::TypeRecord const& type = CollectionControl::typeRecord();
  EXPECT_EQ(type.create("x"), nullptr);
  Ptr<Fwk::Entity> const made = type.create("");
  ASSERT_TRUE(made);
  EXPECT_EQ(&made->fwkType(), &type);
}

TEST(CollectionControl, SaysItsStateInWords) {
  Ptr<CollectionControl> const control = Fwk::create<CollectionControl>();
  auto const read = [&](std::string_view attribute) {
    std::string text;
    EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*control), attribute, text));
    return text;
  };
  EXPECT_EQ(read("mountStatus"), "unmounted");
  EXPECT_EQ(read("quiesced"), "true");
  control->quiescedIs(false);
  control->mountStatusIs(MountStatus::mounted);
  EXPECT_EQ(read("mountStatus"), "mounted");
  EXPECT_EQ(read("quiesced"), "false");
  control->mountStatusIs(MountStatus::failed);
  EXPECT_EQ(read("mountStatus"), "failed");
}

TEST(MountStatusText, HasTheNameOfItsType) {
  EXPECT_STREQ(textTypeNameOf(MountStatus::mounted), "SharedTable::MountStatus");
}

TEST(MountStatusText, ReadsBackAndRefusesOthers) {
  for (MountStatus const status : {MountStatus::unmounted, MountStatus::mounted, MountStatus::failed}) {
    std::string text;
    appendText(text, status);
    MountStatus read = MountStatus::unmounted;
    EXPECT_TRUE(parseText(text, read)) << text;
    EXPECT_EQ(read, status);
  }
  MountStatus read = MountStatus::failed;
  EXPECT_FALSE(parseText("Mounted", read));
  EXPECT_FALSE(parseText("", read));
  EXPECT_EQ(read, MountStatus::failed);
}

TEST(CollectionControl, KeepsAnEntityForAsLongAsTheTableIsInUse) {
  Ptr<CollectionControl> const control = Fwk::create<CollectionControl>();
  Ptr<CollectionControl> kept = Fwk::create<CollectionControl>();
  control->entityIs(kept);
  EXPECT_EQ(control->keptEntity(), nullptr) << "not in use";
  control->quiescedIs(false);
  control->entityIs(kept);
  control->mountStatusIs(MountStatus::mounted);
  control->quiescedIs(true);
  EXPECT_EQ(control->keptEntity(), kept);
  control->mountStatusIs(MountStatus::unmounted);
  EXPECT_EQ(control->keptEntity(), nullptr);
}

}  // namespace
