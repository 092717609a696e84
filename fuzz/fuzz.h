// What a target is to the engine that feeds it, and to the program that replays its corpus.
#pragma once

#include <cstddef>
#include <cstdint>

// Runs one input. Ends the process when something is wrong; always returns 0 otherwise.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
