// A plain second implementation of the synthesis, to set the library against: every pair of
// counters is visited in the stated order and nothing is skipped but by the early ends that the
// method itself names. It shares no code with the library.
#pragma once

#include "model_records.h"

// M and N of a candidate once its outputs are assigned.
struct MODEL_VISIT
{
    int m_m;
    int m_n;
};

// Fills `pll` for the request, as PLL::synthesize does; internal errors are appended, and so is
// every candidate to `visits`, if any.
bool model_synthesize(MODEL_PLL* pll, const MODEL_PROP& request, const MODEL_PARTS& parts,
                      MODEL_REPORTS& reports, std::vector<MODEL_VISIT>* visits = nullptr);

// Fills `prop` with what `pll` achieves, as PLL_PROP::set_properties_from_internals does.
void model_set_properties(MODEL_PROP* prop, const MODEL_PLL& pll, MODEL_REPORTS& reports);

// The VCO ratios that `pll` can make of an input period, by ascending ratio.
struct MODEL_RATIO
{
    int m_mult;
    int m_div;
};
std::vector<MODEL_RATIO> model_list_ratios(const MODEL_PLL& pll, int fin_period,
                                           MODEL_REPORTS& reports);

// ---- Steps of the synthesis, one file each

// The request as the search sees it, with the bandwidth presets resolved.
struct MODEL_WISH
{
    const MODEL_PROP* m_request;
    const MODEL_PARTS* m_parts;
    bool m_table_mode;
    bool m_down_spread_active;
    int m_bandwidth_type;
    double m_bandwidth;
    int m_product;  // current x resistor that the bandwidth asks for at the present M
};

// One legal (post-scale, M, N).
struct MODEL_POINT
{
    int m_post_scale;
    int m_m;
    int m_n;
    double m_vco_period;
    int m_vco_center;
};

// How far a candidate is from the request.
struct MODEL_SCORE
{
    double m_error_sum = 0.0;
    double m_relative_error_sum = 0.0;
    double m_cascade_penalty = 0.0;
    int m_taps_in_use = 0;
    bool m_clamped_while_exact = false;
};

// Prepares `candidate` for a point and assigns its output counters; `self` is the PLL that is being
// synthesised, `best` the best candidate so far.
MODEL_SCORE model_assign_outputs(MODEL_PLL* candidate, const MODEL_PLL& self, const MODEL_PLL& best,
                                 const MODEL_POINT& point, const MODEL_WISH& wish,
                                 MODEL_REPORTS& reports);

// Places phases and duty cycles on `candidate`, then rebuilds the counts of `self`.
void model_place_phases_and_duties(MODEL_PLL* self, MODEL_PLL* candidate, const MODEL_PROP& request,
                                   MODEL_REPORTS& reports);
void model_correct_neighbours(MODEL_PLL* pll);

// Duty cycle of output `i` of `pll` and the choice of its halves.
void model_place_duty(MODEL_PLL* pll, const MODEL_CLOCK& clock, int i, MODEL_REPORTS& reports);

// Chooses the row of the bandwidth table; false when there is none.
bool model_choose_row(MODEL_PLL* pll, const MODEL_PROP& request, MODEL_REPORTS& reports);

// Chooses resistor and current for the wished bandwidth, without a table.
void model_choose_loop_filter(MODEL_PLL* pll, const MODEL_WISH& wish, MODEL_REPORTS& reports);

bool model_place_delays(MODEL_PLL* pll, const MODEL_PROP& request, MODEL_REPORTS& reports);
