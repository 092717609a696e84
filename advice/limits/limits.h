// The limits in force for a request: those built into the library, or of a device, and above them
// those that the user sets by hand.
//
//   LIMITS limits;                          the built-in ones
//   limits.take_device(&manager, query);    or those of a device, combined over migrations
//   limits.set(...);                        a device sheet adds exact ones
//   limits.take(request.m_by_hand);         and the user's own
//
//   PLL pll(1, limits.get_max_outputs());
//   limits.give_to(&pll);                   the library searches within them, a little wider
//
// The search knows only some of them, as periods in whole ps that it widens by 1 ps. Verdicts judge
// the exact values.
#pragma once

#include "advice/limits/limit.h"
#include "advice/request/request.h"

#include "pll_info.h"

#include <memory>
#include <vector>

class PLL;
class PLL_MANAGER;
class PLL_QUERY;

namespace advice {

struct JUDGED_LIMIT;

// Rules of a device that no LIMIT can express. A device sheet implements it.
class EXTRA_RULES
{
public:
    EXTRA_RULES() = default;
    EXTRA_RULES(const EXTRA_RULES&) = delete;
    EXTRA_RULES& operator=(const EXTRA_RULES&) = delete;
    virtual ~EXTRA_RULES() = default;

    // Appends a judgement for each rule; the limits that it points to are the rules' own.
    virtual void judge(const REQUEST& request, const PLL& pll,
                       std::vector<JUDGED_LIMIT>* judged) const = 0;

    // Changes what the library searches within, before every synthesis.
    virtual void narrow(const REQUEST& request, PLL* pll) const = 0;
};

class LIMITS
{
public:
    // The built-in limits, which are of no real device.
    LIMITS();
    ~LIMITS();
    LIMITS(const LIMITS&) = delete;
    LIMITS& operator=(const LIMITS&) = delete;

    // A copy that can be changed: of list, device and rules.
    std::unique_ptr<LIMITS> copy() const;

    // Takes the limits of a device, combined with those that it must fit too. The manager must
    // outlive this. False, with nothing changed, when the query finds no part or memory is
    // exhausted.
    bool take_device(PLL_MANAGER* manager, const PLL_QUERY& query);

    // Replaces limits by those that are set by hand.
    void take(const LIMITS_BY_HAND& by_hand);

    // Puts a limit in the place of the one of its kind and post-scale, or adds it.
    void set(const LIMIT& limit);

    // Takes a limit away.
    void remove(LIMIT_KIND kind, int post_scale = 0);

    // Says where the limits of a keyword come from: "devices/chervil.txt:12".
    void set_source(const std::string& keyword, const std::string& source);

    // Rules beside the list; not owned, null for none.
    void set_rules(const EXTRA_RULES* rules) { m_rules = rules; }
    const EXTRA_RULES* get_rules() const { return m_rules; }

    const std::vector<LIMIT>& get_list() const { return m_list; }

    // The limit of a kind that holds at a post-scale (0: at any); null when there is none. Valid
    // until a limit is set.
    const LIMIT* find(LIMIT_KIND kind, int post_scale = 0) const;

    // False: the built-in limits, whatever is set above them.
    bool has_device() const { return m_has_device; }
    // Whether any is set by hand.
    bool has_options() const;
    // Output counters of the device, 1 to PLL_MAX_TAPS.
    int get_max_outputs() const { return m_max_outputs; }

    // Gives limits and components to a PLL of any number of outputs, in the library's whole ps, no
    // narrower than they are. The PLL's outputs are at most those of the request or the device.
    void give_to(PLL* pll, const REQUEST& request) const;

    struct PROTOTYPE;

private:
    void take_vco(const RANGE& range);
    void take_missing_vco_limits(const std::vector<int>& post_scales);
    void take_list(LIMIT_KIND kind, const std::vector<int>& legal, const char* option);

    std::vector<LIMIT> m_list;
    const EXTRA_RULES* m_rules = nullptr;
    bool m_has_device = false;
    int m_max_outputs = PLL_MAX_TAPS;
    std::unique_ptr<PROTOTYPE> m_prototype;  // what a PLL of this device looks like
};

}  // namespace advice
