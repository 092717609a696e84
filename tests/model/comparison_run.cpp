#include "comparison_run.h"

#include "mem_alloc_sys.h"

#include <iostream>

int run_comparison(const SEEDS& seeds, const char* cases,
                   const std::function<bool(COUNTS*)>& compare_all)
{
    std::cout << "seeds " << seeds.m_first << " to " << seeds.m_first + seeds.m_number - 1
              << std::endl;
    COUNTS counts;
    const bool agreed = compare_all(&counts);
    for (const auto& [name, number] : counts) {
        std::cout << number << '\t' << name << '\n';
    }
    if (!agreed) {
        return 1;
    }
    const std::size_t live = MEM_MANAGER::get_live_blocks(nullptr);
    if (live != 0) {
        std::cout << live << " blocks are still live\n";
        return 1;
    }
    std::cout << "no differences in " << seeds.m_number << ' ' << cases << '\n';
    return 0;
}
