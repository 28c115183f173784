#pragma once

#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <programs/common/frames/FrameDescription.h>
#include <programs/common/frames/PlacedOctets.h>

namespace Tool {

/// Describes the options of a Router Advertisement, each as a block. Any octets: an option of length 0, and one that
/// passes the end, are shown for what they are and end the list.
void describeOptions(FrameDescription& description, PlacedOctets message);

/// The preference in words, with what the two bits are: `high (1)`.
std::string preferenceText(Net::Icmp6RouterAdvtRouterPreferenceType preference);

}  // namespace Tool
