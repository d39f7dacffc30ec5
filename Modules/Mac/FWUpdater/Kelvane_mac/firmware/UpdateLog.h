// The log lines of the update sequence and of the steps it is made of: all under one method.
#pragma once

#include "log/iLog.h"

#define UPDATE_LOG(...) KELVANE_LOG("updateFW:", __VA_ARGS__)
