// Deterministic random PLLs and requests: the same seed and kind give the same case on every
// machine. Cases are plain records; `REAL_CASE` makes the library's objects of one.
#pragma once

#include "model_records.h"

#include "pll.h"
#include "pll_prop.h"

#include <cstdint>
#include <memory>
#include <string>

// splitmix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators).
class RANDOM
{
public:
    explicit RANDOM(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next();

    // A number of first..last, both included.
    int between(int first, int last);

    // True `percent` times in a hundred.
    bool chance(int percent);

    // A number of [0, 1).
    double fraction();

private:
    std::uint64_t m_state;
};

// What a case is meant to exercise; MIXED takes everything a little.
enum class CASE_KIND
{
    BUILT_IN,  // the built-in limits
    SMALL,     // few counter values, tight windows
    EDGE,      // windows that end on or a picosecond beside a pair of counters
    PHASE,
    TABLE,
    FILTER,  // custom bandwidths and odd component lists
    SPREAD,
    FEEDBACK,
    CASCADE,
    WIDE,    // counters of a hundred values and more
    CROWD,   // clocks so slow that most candidates nearly meet them
    BORDER,  // limits that end at the request's own settings, post-scales that differ
    HAIR,    // counters near a million, wishes that differ by rounding
    BEYOND,  // feedback from counters that no clock uses, counters of 0
    WALKED,  // what is left to the walk over the rows
    MIXED,
    HOSTILE,  // fields with values that no sane host gives
    COUNT
};

const char* case_kind_name(CASE_KIND kind);

// The kind with a name; COUNT when there is none.
CASE_KIND find_case_kind(const std::string& name);

// Whether cases of a kind hold what hosts may give, so that rules beyond the model's hold too.
bool is_sane(CASE_KIND kind);

struct RANDOM_CASE
{
    CASE_KIND m_kind = CASE_KIND::MIXED;
    std::uint64_t m_seed = 0;
    MODEL_PLL m_pll;  // its m_device is set by whoever uses it
    MODEL_PROP m_request;
    MODEL_PARTS m_parts;
    bool m_has_device = false;
    MODEL_DEVICE m_device;
};

RANDOM_CASE make_random_case(CASE_KIND kind, std::uint64_t seed);

// Every field that is not at its default, one a line.
std::string describe_case(const RANDOM_CASE& random_case);

// The library's objects of a case; also fills the shared component lists.
class REAL_CASE
{
public:
    explicit REAL_CASE(const RANDOM_CASE& random_case);

    PLL m_pll;
    PLL_PROP m_request;
    PLL_BASIC_INFO m_basic_info;
};
