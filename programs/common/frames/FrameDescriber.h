#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <programs/common/frames/FrameDescription.h>

#include <span>

/// A Router Advertisement in words, with everything that is odd about it. Any octets are taken: what is no
/// advertisement, or no complete one, is described as far as it goes and shown as hex from there on.
namespace Tool {

/// An Ethernet frame without frame check sequence, with or without 802.1Q tags.
FrameDescription describeEthernetFrame(std::span<Fwk::U8 const> frame);

/// A packet that begins with its IPv6 header.
FrameDescription describeIp6Packet(std::span<Fwk::U8 const> packet);

}  // namespace Tool
