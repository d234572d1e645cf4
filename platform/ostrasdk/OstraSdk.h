#pragma once

// All that a user of the sensor platform needs.
#include "ostrasdk/DiscoveryKeys.h"
#include "ostrasdk/VeDiscoveryClient.h"
#include "ostrasdk/VeJson.h"
#include "ostrasdk/VeSystem.h"
