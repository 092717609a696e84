#include "advice/why/offers.h"

#include "advice/why/offers_found.h"

#include <algorithm>

namespace advice {

namespace {

constexpr int MOST_TRIES = 400;    // requests that are asked of the library
constexpr int MOST_THOROUGH = 24;  // of them with the further search

bool are_same(const OFFER& a, const OFFER& b)
{
    return a.m_text == b.m_text;
}

}  // namespace

bool OFFERS_FOUND::is_met(const REQUEST& request)
{
    if (find_problem(request, request.m_max_outputs.value_or(m_limits.get_max_outputs())) ||
        ++m_tries > MOST_TRIES) {
        return false;
    }
    const EFFORT effort = m_tries <= MOST_THOROUGH ? EFFORT::THOROUGH : EFFORT::FIRST_ANSWER_ONLY;
    return ANSWER(request, m_limits, effort).is_met();
}

bool OFFERS_FOUND::add(REQUEST request, const std::string& text, double change)
{
    if (!is_met(request)) {
        return false;
    }
    m_offers.push_back({std::move(request), text, change});
    return true;
}

std::vector<OFFER> OFFERS_FOUND::take(std::size_t most)
{
    std::stable_sort(m_offers.begin(), m_offers.end(),
                     [](const OFFER& a, const OFFER& b) { return a.m_change < b.m_change; });
    m_offers.erase(std::unique(m_offers.begin(), m_offers.end(), are_same), m_offers.end());
    if (m_offers.size() > most) {
        m_offers.resize(most);
    }
    return std::move(m_offers);
}

std::vector<OFFER> find_offers(const REQUEST& request, const LIMITS& limits, const ANSWER& answer,
                               std::size_t most)
{
    if (answer.is_met()) {
        return {};
    }
    OFFERS_FOUND found(request, limits, answer);
    offer_achieved(&found);
    offer_shapes(&found);
    offer_frequencies(&found);
    offer_loops(&found);
    offer_inputs(&found);
    return found.take(most);
}

}  // namespace advice
