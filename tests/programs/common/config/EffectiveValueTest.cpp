#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <programs/common/config/EffectiveValue.h>

#include <string>
#include <vector>

namespace Tool {

namespace {

std::vector<std::string> effectiveValuesOf(char const* typeName) {
  Fwk::TypeRecord const* const type = Fwk::typeRegistry().find(typeName);
  std::vector<std::string> names;
  for (Fwk::AttributeRecord const& attr : type->attributes)
    if (isEffectiveValue(*type, attr)) names.emplace_back(attr.name);
  return names;
}

TEST(EffectiveValue, APrefixHasOneForEachValueThatAProfileMayReplace) {
  EXPECT_THAT(effectiveValuesOf("RouterAdvt::PrefixConfigEntry"),
              testing::UnorderedElementsAre("noAdvertiseValue", "validLifetimeValue", "preferredLifetimeValue",
                                            "noOnLinkValue", "noAutoConfigValue"));
}

TEST(EffectiveValue, ADnsServerHasOneForItsLifetime) {
  EXPECT_THAT(effectiveValuesOf("RouterAdvt::DNSServerConfigEntry"), testing::ElementsAre("validLifetime"));
}

}  // namespace

}  // namespace Tool
