#pragma once

// All that a user of the sensor platform needs.
#include "DiscoveryKeys.h"
#include "VeDiscoveryClient.h"
#include "VeJson.h"
#include "VeSystem.h"
