// The placing of a candidate's clocks: VCO taps and counter starts for the phases, high and low
// halves for the duty cycles, and what both miss of the request.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "placing/neighbours.h"

#include <cstdint>

namespace pll_internal {

// What odd halves cost an output that wishes for even ones.
inline constexpr double ODD_HALF_PENALTY = 262144.0;

// Where a candidate's clocks are placed: what all its outputs share.
struct PHASE_FRAME
{
    double m_m;  // M times the count of the feedback output
    int m_m_count;
    int m_n;
    bool m_ordinary;     // both are positive: a phase of 0 stays 0
    int m_reference;     // VCO degrees
    double m_tap_step;   // one VCO tap, in degrees of the input clock
    double m_turn_step;  // one VCO period
};

// Places the phases of one candidate, output after output.
class PHASE_PLACING
{
public:
    // `may_be_negative` tells whether any phase of the request can be below 0.
    PHASE_PLACING(const PLL_PROP& request, bool may_be_negative, PLL* pll);

    // Charges what output `index` misses, and narrows its neighbours.
    void place(int index, NEIGHBOURS* neighbours);

private:
    const PLL_PROP& m_request;
    PLL* m_pll;
    PHASE_FRAME m_frame;
};

// What a counter does for the duty cycle wished of it, and what the host will be told.
struct DUTY_PLAN
{
    static constexpr int MAX_CHARGES = 4;

    int m_count;
    int m_high;
    int m_low;
    bool m_even;
    bool m_has_clamps;  // what one half cannot count went to the other
    int m_charges_count;
    double m_charges[MAX_CHARGES];  // added to the cost one after the other
    int m_smallest;                 // percent, as the next four
    int m_largest;
    int m_next;      // the largest int: no larger duty cycle
    int m_previous;  // the smallest int: no smaller one
};

// A plan without clamps for a duty cycle of 0 to 100 %, as small as can be.
struct SMALL_DUTY_PLAN
{
    std::uint32_t m_key;  // 0: none
    std::int32_t m_high;
    std::uint8_t m_even;
    std::uint8_t m_has_odd_half;
    std::uint8_t m_deviation;  // percent, as the next four
    std::uint8_t m_smallest;
    std::uint8_t m_largest;
    std::uint8_t m_next;      // above 100: no larger duty cycle
    std::uint8_t m_previous;  // above 100: no smaller one
};

// Places duty cycles. Many candidates give a counter the same value, and many outputs have the same
// wish, so plans are kept: the last one of each output, and once there have been many, those of
// many counter values.
class DUTY_PLACING
{
public:
    DUTY_PLACING(const PLL& pll, const PLL_PROP& request);

    // Charges what output `index` misses, and narrows its neighbours.
    void place(int index, PLL* pll, NEIGHBOURS* neighbours);

private:
    static constexpr int TABLE_SIZE = 1024;

    bool is_ordinary(int index, const PLL& pll) const;
    const DUTY_PLAN& plan_of(int index, const PLL& pll);
    void make_plan(int index, const PLL& pll, DUTY_PLAN* plan) const;
    std::uint32_t key_of(int index, int count) const;
    SMALL_DUTY_PLAN* slot_of(std::uint32_t key);
    void count_new_plan();

    const PLL_PROP& m_request;
    int m_taps_count;
    int m_new_plans;
    int m_kinds[PLL_MAX_TAPS];  // the first output with the same wish and the same largest count
    int m_max_counts[PLL_MAX_TAPS];
    DUTY_PLAN m_plans[PLL_MAX_TAPS];
    SMALL_DUTY_PLAN m_table[TABLE_SIZE];  // in use after many new plans
};

// Places the clocks of one candidate after the other.
class PLACEMENT
{
public:
    PLACEMENT(const PLL& pll, const PLL_PROP& request);

    // Gives the outputs of `pll` their VCO taps, counter starts and high/low splits, and charges
    // what the request misses. Narrows the neighbours of each output.
    void place(PLL* pll, NEIGHBOURS (&neighbours)[PLL_MAX_TAPS]);

private:
    const PLL_PROP& m_request;
    int m_taps;
    bool m_may_be_negative;
    DUTY_PLACING m_duties;
};

}  // namespace pll_internal
