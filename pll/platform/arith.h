// Arithmetic on numbers that hosts and files can make as large as they like: every operation has a
// defined result. Int operations wrap modulo 2^32, conversions from double saturate, a division of
// ints by zero gives zero.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace pll_internal {

// Keeps the low 32 bits.
inline int wrap_to_int(std::int64_t value)
{
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

// What two's complement makes of a sum that does not fit. Products of ints fit into 64 bits, so one
// cut at the end is all that is lost.
inline int wrap_add(int a, int b)
{
    return wrap_to_int(std::int64_t{a} + b);
}

inline int wrap_sub(int a, int b)
{
    return wrap_to_int(std::int64_t{a} - b);
}

inline int wrap_mul(int a, int b)
{
    return wrap_to_int(std::int64_t{a} * b);
}

// Towards zero; 0 when the divisor is 0. The smallest int over -1 wraps to itself.
//
// The quotient is taken in 64 bits, since the processor traps where 32 do not hold it.
inline int safe_div(int a, int b)
{
    return b == 0 ? 0 : wrap_to_int(std::int64_t{a} / b);
}

// Has the sign of the dividend, as the built-in operation has; 0 when the divisor is 0.
inline int safe_mod(int a, int b)
{
    return b == 0 ? 0 : wrap_to_int(std::int64_t{a} % b);
}

// What a division by zero gives, an infinity, without raising the flag of one: for where a zero
// says that there is no limit. A dividend that is 0 or no number is divided as ever.
inline double divide_by_any(double dividend, double divisor)
{
    if (divisor != 0.0 || dividend == 0.0 || dividend != dividend) {
        return dividend / divisor;
    }
    const double infinity = std::numeric_limits<double>::infinity();
    return std::signbit(dividend) == std::signbit(divisor) ? infinity : -infinity;
}

// Towards zero, saturating; NaN gives 0.
//
// A plain conversion of a value that no int holds is undefined, and differs between processors.
inline int truncate_to_int(double value)
{
    if (value != value) {
        return 0;
    }
    if (value >= static_cast<double>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    if (value <= static_cast<double>(std::numeric_limits<int>::min())) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(value);
}

// The legal index nearest to `index` in an array of `count` entries.
//
// For indices that a host gives: the wrong one was reported before, and any entry will do.
inline int nearest_index(int index, int count)
{
    return std::clamp(index, 0, count - 1);
}

}  // namespace pll_internal
