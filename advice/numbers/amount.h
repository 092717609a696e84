// A quantity that is known exactly where the counters give it, and as a double in any case.
#pragma once

#include "advice/numbers/rational.h"

namespace advice {

struct AMOUNT
{
    AMOUNT() = default;
    AMOUNT(const RATIONAL& exact) : m_exact(exact), m_value(exact.to_double()) {}
    // For figures of the loop filter and others that no fraction gives.
    explicit AMOUNT(double value) : m_exact(RATIONAL::invalid()), m_value(value) {}

    bool is_exact() const { return m_exact.is_valid(); }

    RATIONAL m_exact;      // invalid: only the double is known
    double m_value = 0.0;  // not a number: there is none
};

// a x b: exact where that fits, else a double.
inline AMOUNT product(const RATIONAL& a, const RATIONAL& b)
{
    const RATIONAL exact = a * b;
    return exact.is_valid() ? AMOUNT(exact) : AMOUNT(a.to_double() * b.to_double());
}

// Exact where both sides are, else in doubles.
inline bool is_less(const AMOUNT& a, const AMOUNT& b)
{
    return a.is_exact() && b.is_exact() ? a.m_exact < b.m_exact : a.m_value < b.m_value;
}

}  // namespace advice
