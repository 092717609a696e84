#include "listing/farey.h"

#include <algorithm>

namespace pll_internal {

namespace {

// The x of 1..modulus for which value x x is 1 modulo `modulus`; the two have no common divisor.
// Euclid's algorithm on value and modulus, with what each remainder is a multiple of.
std::int64_t inverse_of(std::int64_t value, std::int64_t modulus)
{
    std::int64_t remainder = modulus;
    std::int64_t next_remainder = value % modulus;
    std::int64_t factor = 0;
    std::int64_t next_factor = 1;
    while (next_remainder != 0) {
        const std::int64_t quotient = remainder / next_remainder;
        remainder -= quotient * next_remainder;
        std::swap(remainder, next_remainder);
        factor -= quotient * next_factor;
        std::swap(factor, next_factor);
    }
    return factor > 0 ? factor : factor + modulus;
}

}  // namespace

// The neighbour p / q behind m / n is the largest solution in the box of p x n - q x m = 1; the
// solutions are a smallest one plus multiples of m and n.
FAREY_WALK::FAREY_WALK(FAREY_FRACTION box, FAREY_FRACTION first) : m_box(box), m_here(first)
{
    const std::int64_t m = first.m_mult;
    const std::int64_t n = first.m_div;
    const std::int64_t p = inverse_of(n, m);
    const std::int64_t q = (n * p - 1) / m;
    const std::int64_t steps = std::min((box.m_mult - p) / m, (box.m_div - q) / n);
    m_next = {std::uint32_t(p + steps * m), std::uint32_t(q + steps * n)};
}

}  // namespace pll_internal
