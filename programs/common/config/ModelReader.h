#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <programs/common/config/YamlReader.h>

namespace Tool {

/// Fills an entity and all entities below it from a mapping whose keys are attributes. It asks only the type records
/// which attributes exist, so a new attribute of the model can be configured without a change here. docs/adr/0006
void readEntity(YamlReader& reader, YamlValue const& value, Fwk::Ptr<Fwk::Entity> const& entity);

}  // namespace Tool
