// What the programs that compare library and model share: they count what came up and end alike.
#pragma once

#include "counts.h"

#include <cstdint>
#include <functional>

// Cases are made of seeds that follow each other.
struct SEEDS
{
    std::uint64_t m_first;
    std::uint64_t m_number;
};

// Prints the seeds, runs `compare_all`, prints the counts and what came of it. `compare_all` fills
// the counts and prints the first difference, for which it is false; `cases` names what was
// compared. Returns the exit status: 0 when all agree and no block of memory is left, else 1.
int run_comparison(const SEEDS& seeds, const char* cases,
                   const std::function<bool(COUNTS*)>& compare_all);
