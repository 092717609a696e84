// What holds for every PLL, whatever its device:
//
//   count = high + low, both 1 or more; a count of one is a bypass, and nothing else is
//   start counts are 1 or more, phase taps 0 to 7, delay chains 0 to their end
//   an output is fed by the VCO or by a counter behind the outputs, which the VCO feeds and which
//   feeds that output alone
//   the feedback is the one that the request names; an output in it feeds M in the place of a tap
//   N counts the input, so it has neither start count nor tap
#include "advice/verify/verify.h"

#include <algorithm>

namespace advice {

namespace {

constexpr int LAST_VCO_TAP = PLL_VCO_TAPS_NUMBER - 1;
constexpr int LARGEST_COUNT = 1 << 24;  // larger ones would not fit what is computed from them

class RULES
{
public:
    RULES(const REQUEST& request, const SETTING& setting)
        : m_setting(setting), m_outputs(request.m_outputs.size())
    {
    }

    void check_loop(const REQUEST& request)
    {
        check_loop_counter("m", m_setting.m_m);
        check_loop_counter("n", m_setting.m_n);
        expect("pll.n_initial", m_setting.m_n.m_initial, 1, 1);
        expect("pll.n_vco_tap", m_setting.m_n.m_vco_tap, 0, 0);
        expect("pll.post_scale", m_setting.m_post_scale, 1, PLL_VCO_POST_SCALE_MAX);
        expect("spread.cycles", m_setting.m_spread_cycles, 0, LARGEST_COUNT);
        if (m_setting.m_spread_cycles > 0) {
            expect("spread.m", m_setting.m_m.m_spread_count, 1, LARGEST_COUNT);
            expect("spread.n", m_setting.m_n.m_spread_count, 1, LARGEST_COUNT);
        }
        if (m_setting.m_feedback != request.m_feedback) {
            object("pll.feedback", "is " + name_of_feedback(m_setting.m_feedback) +
                                       "; the request wants " +
                                       name_of_feedback(request.m_feedback));
        }
    }

    bool check_number(int max_outputs)
    {
        const auto most = static_cast<std::size_t>(std::clamp(max_outputs, 0, PLL_MAX_TAPS));
        const std::size_t counters = m_setting.m_counters.size();
        if (counters < m_outputs) {
            object("outputs", std::to_string(counters) + " counters for " +
                                  std::to_string(m_outputs) + " outputs");
            return false;
        }
        if (counters > std::max(most, m_outputs)) {
            object("cascades",
                   std::to_string(counters) + " counters; the device has " + std::to_string(most));
            return false;
        }
        return true;
    }

    void check_counter(std::size_t index)
    {
        const OUTPUT_COUNTER& counter = m_setting.m_counters[index];
        const std::string place = place_of(index);
        expect(place + "high", counter.m_high, 0, LARGEST_COUNT);
        expect(place + "low", counter.m_low, 0, LARGEST_COUNT);
        expect(place + "initial", counter.m_initial, 1, LARGEST_COUNT);
        expect(place + "vco_tap", counter.m_vco_tap, 0, LAST_VCO_TAP);
        expect(place + "delay_chain_ps", counter.m_delay, 0, MAX_DELAY_CHAIN_VALUE);
        const std::int64_t count = std::int64_t{counter.m_high} + counter.m_low;
        if (counter.m_bypass != (count == 1)) {
            object(place + "bypass", std::string(counter.m_bypass ? "is" : "is not") +
                                         " set with a count of " + std::to_string(count) +
                                         "; a bypass divides by one, and nothing else does");
        } else if (!counter.m_bypass && (counter.m_high < 1 || counter.m_low < 1)) {
            object(place + (counter.m_high < 1 ? "high" : "low"),
                   "is 0; a counter that divides is high and low for 1 or more");
        }
        check_source(index, place + "fed_by");
    }

private:
    std::string place_of(std::size_t index) const
    {
        return index < m_outputs ? "outputs[" + std::to_string(index) + "]."
                                 : "cascades[" + std::to_string(index - m_outputs) + "].";
    }

    static std::string name_of_feedback(int feedback)
    {
        return feedback == NO_OUTPUT ? "M" : "output " + std::to_string(feedback + 1);
    }

    void object(const std::string& place, const std::string& text)
    {
        m_broken.push_back({place, text});
    }

    void expect(const std::string& place, int value, int least, int most)
    {
        if (value < least || value > most) {
            object(place, "is " + std::to_string(value) + "; legal are " + std::to_string(least) +
                              " to " + std::to_string(most));
        }
    }

    void check_loop_counter(const std::string& name, const LOOP_COUNTER& counter)
    {
        const std::string place = "pll." + name;
        expect(place, counter.m_count, 1, LARGEST_COUNT);
        expect(place + "_initial", counter.m_initial, 1, LARGEST_COUNT);
        expect(place + "_vco_tap", counter.m_vco_tap, 0,
               m_setting.m_feedback == NO_OUTPUT ? LAST_VCO_TAP : 0);
        expect(place + "_delay_ps", counter.m_delay, 0, MAX_DELAY_CHAIN_VALUE);
    }

    void check_source(std::size_t index, const std::string& place)
    {
        const int source = m_setting.m_counters[index].m_fed_by;
        if (source == FED_BY_VCO) {
            return;
        }
        const bool is_cascade = source >= 0 && static_cast<std::size_t>(source) >= m_outputs &&
                                static_cast<std::size_t>(source) < m_setting.m_counters.size();
        if (index >= m_outputs || !is_cascade) {
            object(place, "is " + std::to_string(source + 1) +
                              "; legal are the VCO and, for an output, a counter of a cascade");
            return;
        }
        for (std::size_t other = 0; other < index; ++other) {
            if (m_setting.m_counters[other].m_fed_by == source) {
                object(place, "is " + std::to_string(source + 1) + ", which feeds " +
                                  std::to_string(other + 1) + " too");
            }
        }
    }

    const SETTING& m_setting;
    std::size_t m_outputs;

public:
    std::vector<BROKEN_RULE> m_broken;
};

}  // namespace

std::vector<BROKEN_RULE> find_broken_rules(const REQUEST& request, const SETTING& setting,
                                           int max_outputs)
{
    RULES rules(request, setting);
    rules.check_loop(request);
    if (rules.check_number(max_outputs)) {
        for (std::size_t i = 0; i < setting.m_counters.size(); ++i) {
            rules.check_counter(i);
        }
    }
    return std::move(rules.m_broken);
}

}  // namespace advice
