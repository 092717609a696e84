// Divisors of whole numbers.
//
// A divisor is a product of prime factors, and few numbers have many of these: so the primes up to
// the square root are tried, instead of every number that could be the divisor. An odd p divides
// n if and only if n x p' mod 2^32 is at most (2^32 - 1) / p, where p x p' mod 2^32 is 1: the
// products of p are then the numbers 0, 1, 2, ..., and all others lie above (Granlund and
// Montgomery, Division by invariant integers using multiplication, 1994). Four primes are tried at
// once.
#include "platform/divisors.h"

#include <bit>
#include <bitset>
#include <cmath>

namespace pll_internal {

namespace {

using FOUR_COUNTS = std::uint32_t __attribute__((vector_size(16)));

constexpr int LANES = 4;

// n' with n x n' mod 2^32 = 1, by Newton's method: each step doubles the binary digits that are
// right, of which an odd number itself has three.
std::uint32_t inverse_of_odd(std::uint32_t odd)
{
    constexpr int STEPS = 4;
    constexpr std::uint32_t TWO = 2;
    std::uint32_t inverse = odd;
    for (int i = 0; i < STEPS; ++i) {
        inverse *= TWO - odd * inverse;
    }
    return inverse;
}

// The odd primes up to the square root of the largest int, ascending, and the one behind them,
// which fills the last lane.
class ODD_PRIMES
{
public:
    static constexpr int COUNT = 4792;

    ODD_PRIMES();

    std::uint32_t at(int index) const { return m_primes[index]; }

    bool divides(int index, std::uint32_t number) const
    {
        return number * m_inverses[index] <= m_quotients[index];
    }

    // Whether one of the LANES primes from `index` on does.
    bool any_divides(int index, std::uint32_t number) const
    {
        const FOUR_COUNTS products = number * load(m_inverses + index);
        const auto divides = products <= load(m_quotients + index);
        return (divides[0] | divides[1] | divides[2] | divides[3]) != 0;
    }

private:
    static constexpr std::uint32_t END = 46350;
    static_assert(COUNT % LANES == 0);

    static FOUR_COUNTS load(const std::uint32_t* from)
    {
        return FOUR_COUNTS{from[0], from[1], from[2], from[3]};
    }

    std::uint32_t m_primes[COUNT];
    std::uint32_t m_inverses[COUNT];
    std::uint32_t m_quotients[COUNT];  // the largest that a number can have
};

ODD_PRIMES::ODD_PRIMES()
{
    constexpr std::uint32_t SMALLEST = 3;
    constexpr std::uint32_t LARGEST_NUMBER = 0xFFFFFFFF;
    std::bitset<END> is_product;
    int count = 0;
    for (std::uint32_t p = SMALLEST; p < END; p += 2) {
        if (is_product[p]) {
            continue;
        }
        m_primes[count] = p;
        m_inverses[count] = inverse_of_odd(p);
        m_quotients[count] = LARGEST_NUMBER / p;
        ++count;
        for (std::uint32_t product = p * p; product < END && p * p < END; product += 2 * p) {
            is_product.set(product);
        }
    }
}

// The divisors of a number that are not above a limit, from those of its prime powers.
class DIVISORS
{
public:
    explicit DIVISORS(std::uint32_t limit) : m_limit(limit), m_count(1) { m_divisors[0] = 1; }

    void add_prime(std::uint32_t prime, int multiplicity)
    {
        const int count = m_count;
        std::uint64_t power = 1;
        for (int i = 0; i < multiplicity; ++i) {
            power *= prime;
            for (int j = 0; j < count; ++j) {
                add(power * m_divisors[j]);
            }
        }
    }

    // 0 when there is none.
    std::uint32_t smallest_from(std::uint32_t least) const
    {
        std::uint32_t smallest = 0;
        for (int i = 0; i < m_count; ++i) {
            if (m_divisors[i] >= least && (smallest == 0 || m_divisors[i] < smallest)) {
                smallest = m_divisors[i];
            }
        }
        return smallest;
    }

private:
    // Of all numbers up to 2^31, 2095133040 has the most divisors: 1600, half of them below its
    // square root.
    static constexpr int CAPACITY = 800;

    void add(std::uint64_t divisor)
    {
        if (divisor <= m_limit) {
            m_divisors[m_count++] = std::uint32_t(divisor);
        }
    }

    std::uint32_t m_limit;
    int m_count;
    std::uint32_t m_divisors[CAPACITY];
};

}  // namespace

std::uint32_t smallest_divisor_from(std::uint32_t number, std::uint32_t least)
{
    static const ODD_PRIMES PRIMES;
    const std::uint32_t root = std::uint32_t(std::sqrt(double(number)));
    if (least > root) {
        return 0;
    }
    DIVISORS divisors(root);
    const int twos = std::countr_zero(number);
    divisors.add_prime(2, twos);
    std::uint32_t rest = number >> twos;
    for (int i = 0; i < ODD_PRIMES::COUNT && PRIMES.at(i) * PRIMES.at(i) <= rest; i += LANES) {
        if (!PRIMES.any_divides(i, rest)) {
            continue;
        }
        for (int lane = i; lane < i + LANES; ++lane) {
            int multiplicity = 0;
            for (; PRIMES.divides(lane, rest); ++multiplicity) {
                rest /= PRIMES.at(lane);
            }
            divisors.add_prime(PRIMES.at(lane), multiplicity);
        }
    }
    if (rest > 1) {
        divisors.add_prime(rest, 1);
    }
    return divisors.smallest_from(least);
}

}  // namespace pll_internal
