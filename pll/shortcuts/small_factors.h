// The prime factors of whole numbers, as far as 2, 3, 5 and 7 go: most fractions that can be
// reduced can be reduced by one of them.
#pragma once

#include <cstdint>

namespace pll_internal {

class SMALL_FACTORS
{
public:
    // Which of the four divide `number`, from 0 up: a bit for each.
    static unsigned of(std::int64_t number) { return TABLE.m_sets[std::uint64_t(number) % PERIOD]; }

    // The smallest of a set that is not empty.
    static int smallest(unsigned set) { return TABLE.m_smallest[set]; }

private:
    static constexpr int PRIMES = 4;
    static constexpr int PRIME[PRIMES] = {2, 3, 5, 7};
    static constexpr int PERIOD = 2 * 3 * 5 * 7;
    static constexpr int SETS = 1 << PRIMES;

    struct TABLES
    {
        constexpr TABLES() : m_sets{}, m_smallest{}
        {
            for (int prime = 0; prime < PRIMES; ++prime) {
                for (int number = 0; number < PERIOD; number += PRIME[prime]) {
                    m_sets[number] = std::uint8_t(m_sets[number] | 1 << prime);
                }
                for (int set = 1 << prime; set < SETS; set += 2 << prime) {
                    m_smallest[set] = std::uint8_t(PRIME[prime]);
                }
            }
        }

        std::uint8_t m_sets[PERIOD];
        std::uint8_t m_smallest[SETS];
    };

    static const TABLES TABLE;
};

inline constexpr SMALL_FACTORS::TABLES SMALL_FACTORS::TABLE;

}  // namespace pll_internal
