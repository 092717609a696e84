// A random request, some fields of which the input sets, through the library and through the plain
// model: both must agree to the bit.
#include "comparison.h"
#include "fuzz.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t SEED_SIZE = sizeof(std::uint32_t);

// Limits stay small, since the model walks over all that they allow.
void set_field(RANDOM_CASE* random_case, std::uint8_t which, std::uint8_t value)
{
    constexpr int LARGEST_COUNT = 40;
    MODEL_PROP& request = random_case->m_request;
    MODEL_PLL& pll = random_case->m_pll;
    MODEL_CLOCK& clock = request.m_taps[which / 16 % MODEL_MAX_TAPS];
    const int count = 1 + value % LARGEST_COUNT;
    int* const counts[] = {
        &clock.m_mult,        &clock.m_div,         &request.m_vco_mult,       &request.m_vco_div,
        &pll.m_m.m_max_count, &pll.m_n.m_max_count, &pll.m_taps[0].m_max_count};
    switch (which % 16) {
    case 7:
        clock.m_phase = value * 1.40625 - 180.0;
        break;
    case 8:
        clock.m_duty = value % 101;
        break;
    case 9:
        request.m_fin_period += value - 128;
        break;
    case 10:
        pll.m_vco_max_period[1] += value - 128;
        break;
    case 11:
        request.m_feedback_tap = value % (MODEL_MAX_TAPS + 1) - 1;
        break;
    case 12:
        request.m_bandwidth_type = value % 5;
        break;
    case 13:
        pll.m_output_counter_cascade = value % 2 == 1;
        break;
    case 14:
        pll.m_max_vco_post_scale = value % 3;
        break;
    case 15:
        clock.m_delay = value * 8 - 1024;
        break;
    default:
        *counts[which % 16] = count;
        break;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < SEED_SIZE + 1) {
        return 0;
    }
    static const PLL anchor(0, PLL_MAX_TAPS);  // keeps the shared lists alive between the cases
    std::uint32_t seed = 0;
    std::memcpy(&seed, data, SEED_SIZE);
    const auto kinds = static_cast<std::uint8_t>(CASE_KIND::COUNT);
    CASE_KIND kind = static_cast<CASE_KIND>(data[SEED_SIZE] % kinds);
    if (kind == CASE_KIND::BUILT_IN || kind == CASE_KIND::HAIR || kind == CASE_KIND::HOSTILE) {
        kind = CASE_KIND::MIXED;  // the model takes too long for these
    }
    RANDOM_CASE random_case = make_random_case(kind, seed);
    for (std::size_t i = SEED_SIZE + 1; i + 1 < size; i += 2) {
        set_field(&random_case, data[i], data[i + 1]);
    }
    random_case.m_kind = CASE_KIND::HOSTILE;  // what holds for sane ones alone may not hold here
    const COMPARISON comparison = compare_case(random_case);
    if (!comparison.m_difference.empty()) {
        std::fputs((comparison.m_difference + describe_case(random_case)).c_str(), stderr);
        std::abort();
    }
    return 0;
}
