// Whether a setting does what a request wants and keeps the rules and limits of its device.
//
//   const VERIFICATION verification = verify(request, limits, setting);
//   for (const BROKEN_RULE& rule : verification.m_rules) ...       counters that cannot be so
//   for (const JUDGED_LIMIT& limit : verification.m_verdict.m_limits) ...
//
// Rules come first: a setting that breaks one has no frequencies to speak of, and is judged no
// further. Rates, phases and duty cycles are computed twice, from the definitions here and by the
// library, and a difference is told as a broken rule.
#pragma once

#include "advice/verdict/verdict.h"
#include "advice/verify/setting.h"

#include "pll.h"
#include "pll_prop.h"

#include <string>
#include <vector>

namespace advice {

// A rule that all PLLs have in common and a setting breaks.
struct BROKEN_RULE
{
    std::string m_place;  // "pll.n", "outputs[0].initial", as the JSON of an answer spells it
    std::string m_text;   // what is there, and what would be right
};

// What currents and resistors of the loop filter must be. A search that meets nothing leaves the
// currents that it computed in the place of those that a device has.
enum class COMPONENT_SOURCE
{
    LISTS,
    COMPUTED
};

class VERIFICATION
{
public:
    // The limits must outlive this.
    VERIFICATION(const REQUEST& request, const LIMITS& limits, const SETTING& setting,
                 COMPONENT_SOURCE components = COMPONENT_SOURCE::LISTS);
    VERIFICATION(const VERIFICATION&) = delete;
    VERIFICATION& operator=(const VERIFICATION&) = delete;

    // Every rule, wish and limit is kept.
    bool is_clean() const { return m_rules.empty() && m_verdict.m_met; }
    // The counters can be as they are, so the rest means something.
    bool is_possible() const { return m_is_possible; }

    const std::vector<BROKEN_RULE>& get_rules() const { return m_rules; }
    const VERDICT& get_verdict() const { return m_verdict; }
    const PLL& get_pll() const { return m_pll; }
    const PLL_PROP& get_achieved() const { return m_achieved; }

private:
    std::vector<BROKEN_RULE> m_rules;
    VERDICT m_verdict;
    PLL m_pll;
    PLL_PROP m_achieved;
    bool m_is_possible = false;
};

// The rules that a setting breaks before any figure is computed: counts, chains, taps, starts and
// delays that no counter can have. At most `max_outputs` counters are legal.
std::vector<BROKEN_RULE> find_broken_rules(const REQUEST& request, const SETTING& setting,
                                           int max_outputs);

// The rules of a setting that is in a PLL: what the library says of it is what its counters make,
// and the loop filter is built of parts that the device has.
std::vector<BROKEN_RULE> find_broken_figures(const REQUEST& request, const LIMITS& limits,
                                             const PLL& pll, const PLL_PROP& achieved,
                                             COMPONENT_SOURCE components);

}  // namespace advice
