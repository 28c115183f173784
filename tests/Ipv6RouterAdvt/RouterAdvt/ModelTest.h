#pragma once

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <tests/RouterPlatform/Support/ModelTest.h>
