// Arithmetic of the model: ints that wrap, doubles that saturate into ints, phases and counters.
#pragma once

#include "model_records.h"

// The int that a double is cut to: towards zero, saturating, NaN gives 0.
int model_truncate(double value);

// Ints modulo 2^32; division by zero and its remainder give 0.
int model_add(int a, int b);
int model_subtract(int a, int b);
int model_multiply(int a, int b);
int model_divide(int a, int b);
int model_remainder(int a, int b);

// The smaller and the larger of two numbers; a NaN on either side wins.
double model_min(double a, double b);
double model_max(double a, double b);

// Brings an index to the nearest entry of an array of `size`.
int model_nearest_index(int index, int size);

// How many of `taps_count` clocks a record can hold.
int model_taps_to_walk(int taps_count);

int model_gcd(int x, int y, MODEL_REPORTS& reports);
void model_normalize(int* numerator_out, int* denominator_out, int numerator, int denominator,
                     MODEL_REPORTS& reports);

int model_phase_of(int vco_tap, int start);

// A VCO tap and a counter start, and the phase that they realise.
struct MODEL_PLACE
{
    int m_vco_tap = 0;
    int m_start = 1;
    int m_phase = 0;
};
MODEL_PLACE model_place_phase(double phase, int max_start, MODEL_REPORTS& reports);
MODEL_PLACE model_place_start(double phase, int vco_tap, int max_start, MODEL_REPORTS& reports);

double model_user_phase(int numerator, int denominator, const MODEL_PLL& pll, int vco_tap,
                        int start);
int model_cascade_factor(int count, int max_count, MODEL_REPORTS& reports);
int model_tap_count(const MODEL_PLL& pll, int tap, MODEL_REPORTS& reports);

// 1 for a bypassed output counter, else its two halves.
int model_output_count(const MODEL_TAP& tap);

// The post-scale that the entry of -1 stands for, reported when out of range.
int model_current_post_scale(const MODEL_PLL& pll, MODEL_REPORTS& reports);

double model_m_over_n(const MODEL_PLL& pll);
