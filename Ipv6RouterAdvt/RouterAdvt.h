#pragma once

/// The model: what to advertise, what was received, and what the agent publishes.
#include <Ipv6RouterAdvt/Heard/RaPacketStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRaStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <Ipv6RouterAdvt/Version.h>
