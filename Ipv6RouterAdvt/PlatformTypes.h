#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Fwk/AttrId.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <RouterPlatform/Net/VrfName.h>

#include <iosfwd>

namespace Fwk {
struct TypeRecord;
}  // namespace Fwk
namespace Ip6 {
class VirtualRouterStatusV6;
}  // namespace Ip6
namespace Net {
class EthAddr;
class Pkt;
}  // namespace Net

/// The platform's names that the library uses unqualified.
namespace RouterAdvt {

using Fwk::AttrId;
using Fwk::Name;
using Fwk::Ptr;
using Fwk::S32;
using Fwk::Seconds;
using Fwk::String;
using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

using Net::EthAddr;
using Net::Icmp6RouterAdvtRouterPreferenceType;
using Net::IntfId;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;
using Net::Pkt;
using Net::VrfName;

using Ip6::VirtualRouterStatusV6;

}  // namespace RouterAdvt
