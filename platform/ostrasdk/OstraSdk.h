#pragma once

// All that a user of the sensor platform needs.
#include "ostrasdk/DiscoveryKeys.h"
#include "ostrasdk/VeDiscoveryClient.h"
#include "ostrasdk/VeSystem.h"
#include "wire/VeJson.h"
