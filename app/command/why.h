// pllcalc explain: why a request is not met, and what can be had instead.
#pragma once

#include "app/devices/device.h"
#include "app/request/request.h"

#include <string>

// The words of the device with the directory of its database, even when the environment names it.
DEVICE_WORDS name_database(DEVICE_WORDS words, const DEVICE* device);

// The answer as one JSON object, with reasons and offers when it is not met.
std::string write_json(const REQUEST& request, const ANSWER& answer, const DEVICE_WORDS& device);

// What stands under every answer that is not met: the counter that ended, and the nearest offers.
std::string explain_shortly(const REQUEST& request, const ANSWER& answer,
                            const DEVICE_WORDS& device);

// The whole explanation: verdict, what each limit leaves, the smallest conflict, offers.
std::string explain(const REQUEST& request, const ANSWER& answer, const DEVICE_WORDS& device);
