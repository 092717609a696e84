#include "random_hostile.h"

#include "model_fields.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr int INTS[] = {0,       -1,          1,           2,       11,      INT_MAX,
                        INT_MIN, MODEL_UNSET, INT_MAX - 1, 1 << 30, -360000, 3001};
constexpr double DOUBLES[] = {0.0,
                              -0.0,
                              -1.0,
                              1e300,
                              -1e300,
                              DBL_MAX,
                              DBL_MIN,
                              1e-320,
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(),
                              4294967296.5};

// Fields whose size decides how long the plain search runs, and what the host can't set.
bool is_bounded(const FIELD_NAME& field)
{
    const bool is_counter = std::strcmp(field.m_record, "m_m") == 0 ||
                            std::strcmp(field.m_record, "m_n") == 0 ||
                            std::strcmp(field.m_record, "m_taps") == 0;
    const bool is_limit = std::strcmp(field.m_name, "m_max_count") == 0 ||
                          std::strcmp(field.m_name, "m_min_count") == 0;
    return (is_counter && is_limit) || std::strcmp(field.m_name, "m_debug") == 0;
}

// Overwrites about `per_mille` of a thousand fields.
struct SPOILER
{
    RANDOM* m_random;
    int m_per_mille;

    bool hits() const { return m_random->between(0, 999) < m_per_mille; }

    void operator()(const FIELD_NAME& field, int& value, int&) const
    {
        if (hits()) {
            value = is_bounded(field) ? m_random->between(-2, 60)
                                      : INTS[m_random->between(0, std::size(INTS) - 1)];
        }
    }

    void operator()(const FIELD_NAME&, double& value, double&) const
    {
        if (hits()) {
            value = DOUBLES[m_random->between(0, std::size(DOUBLES) - 1)];
        }
    }

    void operator()(const FIELD_NAME& field, bool& value, bool&) const
    {
        if (hits() && !is_bounded(field)) {
            value = !value;
        }
    }
};

}  // namespace

void make_hostile(RANDOM_CASE* random_case, RANDOM* random)
{
    SPOILER spoil = {random, random->chance(50) ? 5 : 25};
    visit_pll(random_case->m_pll, random_case->m_pll, spoil);
    spoil.m_per_mille = random->chance(50) ? 10 : 40;
    visit_prop(random_case->m_request, random_case->m_request, spoil);
    spoil.m_per_mille = 50;
    if (random_case->m_has_device) {
        visit_device(random_case->m_device, random_case->m_device, spoil);
    }
    // An error of an earlier synthesis is one of the known values, or the host's mistake alone.
    random_case->m_pll.m_error &= 15;
}
