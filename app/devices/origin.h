// Where the combined limits of several devices come from.
#pragma once

#include "app/devices/device.h"
#include "app/devices/limits.h"

#include <string>

// The devices, by number from 1, that alone give what all of them together have: "2", "1, 3",
// "all"; "average" of a limit that is one, "-" of a limit that none gives. Empty for a single
// device.
std::string find_origin(const DEVICE& device, const DEVICE_LIMIT& limit);

// The devices by number and name, a line each, and whose counters and components hold.
std::string list_devices(const DEVICE& device);
