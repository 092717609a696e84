// Divisors of whole numbers, by way of their prime factors.
#pragma once

#include <cstdint>

namespace pll_internal {

// The smallest divisor of `number` that is `least` or more and not above the square root of
// `number`; 0 where there is none. `number` is 1 to 2^31, `least` at least 1.
//
// Divisors come in pairs around the square root, so who looks for one above it asks for its
// partner. Takes 1,198 steps at most, for a prime of 31 bits.
std::uint32_t smallest_divisor_from(std::uint32_t number, std::uint32_t least);

}  // namespace pll_internal
