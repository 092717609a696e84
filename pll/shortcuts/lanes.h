// Vectors of numbers that the processor works on at once: two doubles or four floats.
#pragma once

namespace pll_internal {

using TWO = double __attribute__((vector_size(16)));
using FOUR = float __attribute__((vector_size(16)));

template <class LANES>
inline LANES smaller(LANES a, LANES b)
{
    return a < b ? a : b;
}

template <class LANES>
inline LANES larger(LANES a, LANES b)
{
    return a > b ? a : b;
}

template <class LANES>
inline LANES distance(LANES a, LANES b)
{
    return larger(a - b, b - a);
}

inline TWO both(double value)
{
    return TWO{value, value};
}

inline FOUR all(float value)
{
    return FOUR{value, value, value, value};
}

// A whole number nearest to the value: adding 1.5 x 2^23, or 1.5 x 2^52, leaves no room for a
// fraction. Beyond 2^22 a float is off by a little.
template <class REAL>
inline REAL round_by(REAL value, REAL no_fraction)
{
    return (value + no_fraction) - no_fraction;
}

inline FOUR round_to_whole(FOUR value)
{
    return round_by(value, all(12582912.0F));
}

inline TWO round_to_whole(TWO value)
{
    return round_by(value, both(6755399441055744.0));
}

inline double round_to_whole(double value)
{
    return round_by(value, 6755399441055744.0);
}

}  // namespace pll_internal
