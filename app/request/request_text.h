// A request as the words that ask for it.
#pragma once

#include "advice/request/request.h"
#include "app/devices/device.h"

#include <string>
#include <vector>

// The words behind `pllcalc synth`, exactly: reading them gives the same request again. What is as
// a fresh request has it is left out.
std::vector<std::string> write_words(const advice::REQUEST& request, const DEVICE_WORDS& device);

// "pllcalc synth --in 27MHz ...": one line that a shell takes, its words quoted where they must be.
std::string write_command(const advice::REQUEST& request, const DEVICE_WORDS& device);
