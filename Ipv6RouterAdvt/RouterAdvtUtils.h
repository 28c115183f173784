#pragma once

/// The packet functions: building advertisements.
#include <Ipv6RouterAdvt/RouterAdvtUtils/PrefixInfoOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
