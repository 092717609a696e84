// Writes down the fields in which two records differ; doubles are compared bit for bit, but for the
// payload of NaNs, which no rule fixes.
#pragma once

#include "model_fields.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <ostream>

struct FIELD_COMPARE
{
    std::ostream& m_stream;

    template <class A, class B>
    void operator()(const FIELD_NAME& field, const A& a, const B& b)
    {
        if (is_same(a, b)) {
            return;
        }
        m_stream << std::setprecision(std::numeric_limits<double>::max_digits10) << field.m_record;
        if (field.m_index >= 0) {
            m_stream << '[' << field.m_index << ']';
        }
        m_stream << '.' << field.m_name << ": " << a << " against " << b << '\n';
    }

private:
    static bool is_same(double a, double b)
    {
        if (std::isnan(a) && std::isnan(b)) {
            return true;
        }
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    }

    template <class A, class B>
    static bool is_same(const A& a, const B& b)
    {
        return static_cast<long long>(a) == static_cast<long long>(b);
    }
};
