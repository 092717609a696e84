// Ends the process when the library still holds memory.
#pragma once

#include "mem_alloc_sys.h"

#include <cstdio>
#include <cstdlib>

inline void expect_no_live_blocks()
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
    if (blocks != 0) {
        std::fprintf(stderr, "%zu blocks are still live\n", blocks);
        std::abort();
    }
}
