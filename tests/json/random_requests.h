// Random requests, and the limits that they are asked within: the built-in ones, those of every
// part of the sample database, and of pairs of parts that a design must fit.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include "pll_manager.h"

#include <memory>
#include <random>
#include <vector>

class RANDOM_LIMITS
{
public:
    RANDOM_LIMITS();

    std::size_t count() const { return m_limits.size(); }
    const advice::LIMITS& get(std::size_t index) const { return *m_limits[index]; }

private:
    void add_family(const char* family);
    void add(PLL_QUERY* query);

    PLL_MANAGER m_manager;
    std::vector<std::unique_ptr<advice::LIMITS>> m_limits;
};

// A request that `find_problem` finds none in: one to four outputs, with wishes of every kind.
advice::REQUEST make_random_request(std::mt19937* random, int max_outputs);
