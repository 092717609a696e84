// A host that links the static library and has functions of its own with names that the library
// uses inside. They must not clash, and none may take the place of the library's.
#include "pll.h"
#include "pll_prop.h"

#include <cstdio>

// Functions that the library defines in a source, then ones that it defines in headers.
const char* find_keyword(const char* name);
bool check(bool holds, const char* condition, const char* source, int line);
int effective_feedback_division(const PLL& pll);
int current_resistor_product(int m, double bandwidth, double vco_gain);
void copy_carried_values(const PLL_OUTPUT_TAP& from, PLL_OUTPUT_TAP* to);
int wrap_add(int a, int b);
int safe_div(int a, int b);
int truncate_to_int(double value);
int clamp_taps(int count);
int feedback_rest(int m, int count);

namespace {

constexpr int WRONG = -12345;

int calls = 0;

int count_call()
{
    ++calls;
    return WRONG;
}

}  // namespace

const char* find_keyword(const char* name)
{
    ++calls;
    return name;
}

bool check(bool holds, const char* condition, const char* source, int line)
{
    ++calls;
    return !holds && condition == source && line == 0;
}

int effective_feedback_division(const PLL& /*pll*/)
{
    return count_call();
}

int current_resistor_product(int /*m*/, double /*bandwidth*/, double /*vco_gain*/)
{
    return count_call();
}

void copy_carried_values(const PLL_OUTPUT_TAP& /*from*/, PLL_OUTPUT_TAP* /*to*/)
{
    ++calls;
}

int wrap_add(int /*a*/, int /*b*/)
{
    return count_call();
}

int safe_div(int /*a*/, int /*b*/)
{
    return count_call();
}

int truncate_to_int(double /*value*/)
{
    return count_call();
}

int clamp_taps(int /*count*/)
{
    return count_call();
}

int feedback_rest(int /*m*/, int /*count*/)
{
    return count_call();
}

int main()
{
    constexpr int MULT = 5;
    PLL_PROP request(1);
    request.m_fin_period = 40000;  // ps
    request.m_bandwidth_type = 0;  // high
    request.m_taps[0].m_mult = MULT;

    PLL pll(1, PLL_MAX_TAPS);
    const bool is_met = pll.synthesize(request);
    PLL_PROP result(1);
    result.set_properties_from_internals(pll);
    if (!is_met || result.m_taps[0].m_mult != MULT || result.m_taps[0].m_div != 1) {
        std::fprintf(stderr, "the answer is a wrong one\n");
        return 1;
    }
    if (calls != 0) {
        std::fprintf(stderr, "the library called %d functions of the host\n", calls);
        return 1;
    }
    return 0;
}
