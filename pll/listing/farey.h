// The reduced fractions of a box of counters, in ascending order.
//
// All m / n with 1 <= m <= m_max and 1 <= n <= n_max, reduced, form a Farey sequence with two
// bounds. For neighbours a/b < c/d in it, c x b - a x d = 1: the triangle of (0, 0), (a, b) and
// (c, d) lies in the box, so a further point of the lattice in it would be a fraction between the
// two. The neighbour behind c/d must therefore be (k x c - a) / (k x d - b) for some k, all of
// which lie closer to c/d the larger k is; so it is the largest k that stays in the box.
#pragma once

#include <cstdint>

namespace pll_internal {

// A reduced fraction, or a box of them: m_mult and m_div at their largest.
struct FAREY_FRACTION
{
    std::uint32_t m_mult;
    std::uint32_t m_div;
};

// Reduced fractions are equal when both parts are.
inline bool operator==(const FAREY_FRACTION& a, const FAREY_FRACTION& b)
{
    return a.m_mult == b.m_mult && a.m_div == b.m_div;
}

// Exact: the products of ints fit into 64 bits.
inline bool operator<(const FAREY_FRACTION& a, const FAREY_FRACTION& b)
{
    return std::uint64_t{a.m_mult} * b.m_div < std::uint64_t{b.m_mult} * a.m_div;
}

// A walk over the fractions of a box, from any one of them upwards.
class FAREY_WALK
{
public:
    // Finds the neighbour of `first` from scratch, which takes steps in proportion to its digits.
    // The box has positive sides below 2^31; `first` is reduced and lies in it.
    FAREY_WALK(FAREY_FRACTION box, FAREY_FRACTION first);

    // The fraction that the walk stands on; the first one before any step.
    const FAREY_FRACTION& get() const { return m_here; }

    // Goes to the next larger fraction. False, and stays, at the last one.
    bool go_on()
    {
        if (m_next.m_div == 0) {
            return false;
        }
        // The largest k that leaves both parts of the fraction behind the next one in the box.
        const std::uint32_t by_mult = (m_box.m_mult + m_here.m_mult) / m_next.m_mult;
        const std::uint32_t by_div = (m_box.m_div + m_here.m_div) / m_next.m_div;
        const std::uint32_t k = by_mult < by_div ? by_mult : by_div;
        const FAREY_FRACTION here = m_here;
        m_here = m_next;
        m_next = {k * m_here.m_mult - here.m_mult, k * m_here.m_div - here.m_div};
        return true;
    }

private:
    // Two neighbours are all that the walk remembers: they determine the rest of the sequence.
    FAREY_FRACTION m_box;
    FAREY_FRACTION m_here;
    FAREY_FRACTION m_next;  // 1 / 0 behind the last one
};

}  // namespace pll_internal
