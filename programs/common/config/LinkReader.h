#pragma once

#include <programs/common/config/YamlReader.h>

namespace Tool {

/// Reads the section `links`: a mapping from interfaces to their links.
void readLinks(YamlReader& reader, YamlValue const& section, std::vector<LinkConfig>& links);

}  // namespace Tool
