#pragma once

/// The packet functions: building advertisements, checking and reading received ones.
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertRequest.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/CopyPrefixToRaMsgBuf.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/Icmp6ChecksumValid.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/LeftOut.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
