#pragma once

// All that a user of the sensor platform needs.
#include "ostrasdk/VeDiscoveryClient.h"
#include "ostrasdk/VeInstance.h"
#include "ostrasdk/VeSystem.h"
#include "wire/VeJson.h"
