// The requested delays on the delay chains of N, M and the outputs.
#include "model.h"
#include "model_util.h"

#include <algorithm>

namespace {

constexpr int TOO_WIDE = 5;

void check_chain(int delay, const char* condition, MODEL_REPORTS& reports)
{
    if (delay < 0 || delay > MODEL_MAX_DELAY) {
        reports.push_back(condition);
    }
}

void place_feedback_delay(MODEL_PLL* pll, const MODEL_PROP& request, int shift,
                          MODEL_REPORTS& reports)
{
    if (pll->m_feedback_tap < 0) {
        pll->m_m.m_delay = shift;
        return;
    }
    if (pll->m_feedback_tap > pll->m_user_taps_count) {
        reports.push_back("this->m_feedback_tap <= this->m_user_taps_count");
    }
    const int index = model_nearest_index(pll->m_feedback_tap, MODEL_MAX_TAPS);
    if (request.m_taps[index].m_delay < 0) {
        pll->m_m.m_delay = model_subtract(0, request.m_taps[index].m_delay);
    }
}

}  // namespace

bool model_place_delays(MODEL_PLL* pll, const MODEL_PROP& request, MODEL_REPORTS& reports)
{
    const int taps = model_taps_to_walk(request.m_taps_count);
    if (taps <= 0) {
        return true;
    }
    int dmax = -9999;
    int dmin = 9999;
    for (int i = 0; i < taps; ++i) {
        dmax = std::max(dmax, request.m_taps[i].m_delay);
        dmin = std::min(dmin, request.m_taps[i].m_delay);
    }
    if (model_subtract(dmax, dmin) >= 3001) {
        pll->m_error = TOO_WIDE;
        return false;
    }
    int excess = 0;
    if (dmax > MODEL_MAX_DELAY) {
        excess = dmax - MODEL_MAX_DELAY;
        dmax = MODEL_MAX_DELAY;
    }
    const int s = std::max({dmin, -MODEL_MAX_DELAY, model_subtract(dmax, MODEL_MAX_DELAY)});
    int shift = 0;
    if (s < 0) {
        pll->m_n.m_delay = 0;
        shift = model_subtract(0, s);
    } else {
        pll->m_n.m_delay = request.m_use_reconfig ? excess : s;
    }
    place_feedback_delay(pll, request, shift, reports);
    pll->m_n.m_delay = std::min(pll->m_n.m_delay, MODEL_MAX_DELAY);
    check_chain(pll->m_m.m_delay,
                "0 <= this->m_m.m_delay && this->m_m.m_delay <= MAX_DELAY_CHAIN_VALUE", reports);
    check_chain(pll->m_n.m_delay,
                "0 <= this->m_n.m_delay && this->m_n.m_delay <= MAX_DELAY_CHAIN_VALUE", reports);
    const int base = model_subtract(pll->m_n.m_delay, shift);
    bool met = true;
    for (int i = 0; i < taps; ++i) {
        int& delay = pll->m_taps[i].m_delay;
        delay = model_subtract(request.m_taps[i].m_delay, base);
        if (delay < 0) {
            reports.push_back("0 <= this->m_taps[i].m_delay");
        }
        if (delay > MODEL_MAX_DELAY) {
            delay = MODEL_MAX_DELAY;
            met = false;
        }
    }
    if (!met) {
        pll->m_error = TOO_WIDE;
    }
    return met;
}
