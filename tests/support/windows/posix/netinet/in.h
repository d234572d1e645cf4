#pragma once

#include "SocketCalls.h"
