#pragma once

/// The packet functions: building advertisements, checking and reading received ones.
#include <Ipv6RouterAdvt/RouterAdvtUtils/Icmp6ChecksumValid.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/PrefixInfoOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
