#include "advice/devices/walk.h"

namespace advice {

namespace {

constexpr double EVEN_M_BONUS = 200.0;  // ps

}  // namespace

bool RANK::operator<(const RANK& other) const
{
    if (m_is_missed != other.m_is_missed) {
        return other.m_is_missed;
    }
    if (m_is_detour != other.m_is_detour) {
        return other.m_is_detour;
    }
    if (m_error != other.m_error) {
        return m_error < other.m_error;
    }
    if (m_cost != other.m_cost) {
        return m_cost < other.m_cost;
    }
    if (m_order != other.m_order) {
        return m_order < other.m_order;
    }
    if (m_n != other.m_n) {
        return m_n < other.m_n;
    }
    if (m_has_large_m != other.m_has_large_m) {
        return other.m_has_large_m;
    }
    const double bonus = m_has_even_m == other.m_has_even_m ? 0.0
                         : m_has_even_m                     ? EVEN_M_BONUS
                                                            : -EVEN_M_BONUS;
    return m_vco_period < other.m_vco_period + bonus;
}

}  // namespace advice
