#pragma once

#include "PosixCalls.h"
