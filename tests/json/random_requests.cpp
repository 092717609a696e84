#include "random_requests.h"

#include <algorithm>

namespace {

using advice::RATIONAL;
using advice::REQUEST;

constexpr int MEGA = 1000000;

// Frequencies that boards have, in Hz, and two that are no whole number of them.
const RATIONAL CLOCKS[] = {
    RATIONAL(10 * MEGA),  RATIONAL(12 * MEGA),
    RATIONAL(14318180),   RATIONAL(20 * MEGA),
    RATIONAL(24576000),   RATIONAL(25 * MEGA),
    RATIONAL(27 * MEGA),  RATIONAL(33333333),
    RATIONAL(40 * MEGA),  RATIONAL(48 * MEGA),
    RATIONAL(50 * MEGA),  RATIONAL(61440000),
    RATIONAL(74250000),   RATIONAL(100 * MEGA),
    RATIONAL(125 * MEGA), RATIONAL(148500000, 1001) * RATIONAL(1000),
    RATIONAL(148500000),  RATIONAL(156250000),
    RATIONAL(200 * MEGA), RATIONAL(27000000000, 1001),
};

class DICE
{
public:
    explicit DICE(std::mt19937* random) : m_random(random) {}

    int roll(int least, int most)
    {
        return std::uniform_int_distribution<int>(least, most)(*m_random);
    }
    bool one_in(int count) { return roll(1, count) == 1; }
    template <class LIST>
    const auto& pick(const LIST& list)
    {
        return list[static_cast<std::size_t>(roll(0, static_cast<int>(std::size(list)) - 1))];
    }

private:
    std::mt19937* m_random;
};

void roll_shape(DICE* dice, std::size_t index, advice::OUTPUT_WISH* wish)
{
    if (dice->one_in(3)) {
        wish->m_phase = dice->one_in(2) ? RATIONAL(45 * dice->roll(-8, 8))
                                        : RATIONAL(dice->roll(-1000, 1000), dice->roll(3, 7));
        if (index > 0 && dice->one_in(4)) {
            wish->m_phase_to = dice->roll(0, static_cast<int>(index) - 1);
        }
    }
    if (dice->one_in(4)) {
        wish->m_duty = RATIONAL(dice->roll(10, 90));
    } else if (dice->one_in(20)) {
        wish->m_duty = RATIONAL(100, 3);
    }
    wish->m_delay = dice->one_in(10) ? dice->roll(-1500, 1500) : 0;
    wish->m_even = dice->one_in(10);
    wish->m_even_count = dice->one_in(15);
    wish->m_pin = dice->one_in(6);
    if (dice->one_in(8)) {
        wish->m_tolerances.m_frequency = RATIONAL(dice->roll(1, 90000), MEGA);
        wish->m_tolerances.m_phase = RATIONAL(dice->roll(1, 60));
    }
}

advice::OUTPUT_WISH roll_output(DICE* dice, const REQUEST& request)
{
    advice::OUTPUT_WISH wish;
    if (dice->one_in(5)) {
        wish.m_frequency = dice->pick(CLOCKS);
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
    } else {
        wish.m_ratio = RATIONAL(dice->roll(1, 12), dice->roll(1, 4));
        wish.m_frequency = request.m_input.m_frequency * wish.m_ratio;
    }
    roll_shape(dice, request.m_outputs.size(), &wish);
    return wish;
}

void roll_loop(DICE* dice, REQUEST* request)
{
    if (dice->one_in(4)) {
        request->m_bandwidth_kind = static_cast<advice::BANDWIDTH_KIND>(dice->roll(0, 4));
        request->m_bandwidth = RATIONAL(dice->roll(100, 2000) * 1000);
    }
    if (dice->one_in(6)) {
        request->m_spread = RATIONAL(dice->roll(1, 7), 1000);
        if (dice->one_in(2)) {
            request->m_spread_rate = RATIONAL(dice->roll(25, 60) * 1000);
        }
    }
    if (dice->one_in(6)) {
        request->m_feedback = dice->roll(0, static_cast<int>(request->m_outputs.size()) - 1);
    }
    if (dice->one_in(12)) {
        request->m_input2 = advice::make_input(dice->pick(CLOCKS));
    }
    if (dice->one_in(10)) {
        request->m_by_hand.m_vco.m_least = RATIONAL(dice->roll(200, 500) * MEGA);
        request->m_by_hand.m_vco.m_most = RATIONAL(dice->roll(600, 1200) * MEGA);
    }
    request->m_reconfig = dice->one_in(20);
}

}  // namespace

RANDOM_LIMITS::RANDOM_LIMITS()
{
    m_limits.push_back(std::make_unique<advice::LIMITS>());
    if (!m_manager.read(PLL_DATA_DIR "/sample")) {
        return;
    }
    for (int i = 0; i < m_manager.get_number_of_families(); ++i) {
        add_family(m_manager.get_family(i));
    }
}

void RANDOM_LIMITS::add_family(const char* name)
{
    const PLL_FAMILY_INFO* const family = m_manager.read_family_info(name);
    const PLL_PART_INFO* previous = nullptr;
    for (int i = 0; family != nullptr && i < family->m_number_of_parts; ++i) {
        const PLL_PART_INFO& part = *family->m_parts[i];
        PLL_QUERY query;
        query.m_family = name;
        query.m_type = part.m_type;
        query.m_part = part.m_name;
        query.m_speed_grade = part.m_speed_grade;
        add(&query);
        if (previous != nullptr && previous->m_type == part.m_type) {
            query.add_migration_part(name, previous->m_name, previous->m_speed_grade);
            add(&query);
        }
        previous = &part;
    }
}

void RANDOM_LIMITS::add(PLL_QUERY* query)
{
    auto limits = std::make_unique<advice::LIMITS>();
    if (limits->take_device(&m_manager, *query)) {
        m_limits.push_back(std::move(limits));
    }
}

REQUEST make_random_request(std::mt19937* random, int max_outputs)
{
    DICE dice(random);
    for (;;) {
        REQUEST request;
        request.m_input = advice::make_input(dice.pick(CLOCKS));
        const int outputs = dice.one_in(3) ? dice.roll(1, std::min(4, max_outputs)) : 1;
        for (int i = 0; i < outputs; ++i) {
            request.m_outputs.push_back(roll_output(&dice, request));
            if (dice.one_in(5)) {
                request.m_outputs.back().m_name = "clock" + std::to_string(i);
            }
        }
        roll_loop(&dice, &request);
        if (!advice::find_problem(request, max_outputs)) {
            return request;
        }
    }
}
