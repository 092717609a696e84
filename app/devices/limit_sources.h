// Where the limits of a device stand in the files of its database.
#pragma once

#include "advice/limits/limits.h"
#include "app/devices/device.h"

// Reads the database again and gives each limit of the device its file and line. Limits whose place
// cannot be told, averages of several records for example, keep their source.
void name_sources(const DEVICE& device, advice::LIMITS* limits);
