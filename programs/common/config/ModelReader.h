#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <programs/common/config/YamlReader.h>

namespace Tool {

/// Fills an entity, and all below it, from a mapping whose keys are its attributes. What there is to fill is asked of
/// the type records alone: an attribute that the model gains can be configured without a change here.
void readEntity(YamlReader& reader, YamlValue const& value, Fwk::Ptr<Fwk::Entity> const& entity);

}  // namespace Tool
