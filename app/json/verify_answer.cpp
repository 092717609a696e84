#include "app/json/verify_answer.h"

namespace {

// Reasons and offers are about other requests than this one.
const char* const UNCHECKED[] = {"request", "reasons", "offers"};

bool says_nothing(const PLACE& answer)
{
    return answer.require("pll").is_null();
}

PLL::PLL_ERROR_TYPE read_error(const PLACE& answer)
{
    if (!answer.get_value().contains("error")) {
        return PLL::PLL_NO_ERROR;
    }
    const PLACE error = answer.require("error").require("value");
    return static_cast<PLL::PLL_ERROR_TYPE>(error.read_int(0, PLL::MAX_PLL_ERROR_TYPE - 1));
}

// The answer as it should be. An error of the library says that it took the request for missed.
JSON write_right_answer(const JSON_REQUEST& request, const advice::VERIFICATION& verification,
                        PLL::PLL_ERROR_TYPE error)
{
    const bool is_met = verification.get_verdict().m_met && error == PLL::PLL_NO_ERROR;
    const ANSWER_PARTS parts{request.m_request,
                             request.m_device,
                             verification.get_pll(),
                             verification.get_achieved(),
                             verification.get_verdict(),
                             is_met,
                             error};
    JSON right = write_json_answer(parts, {}, {});
    for (const char* const key : UNCHECKED) {
        right.erase(key);
    }
    return right;
}

}  // namespace

bool CHECKED_ANSWER::is_clean() const
{
    return m_verification != nullptr && m_verification->is_clean() && m_differences.empty() &&
           m_error == PLL::PLL_NO_ERROR;
}

JSON_REQUEST read_request_of(const PLACE& answer)
{
    return read_json_request(answer.require("request"));
}

CHECKED_ANSWER check_answer(const PLACE& answer, const JSON_REQUEST& request,
                            const advice::LIMITS& limits)
{
    CHECKED_ANSWER checked;
    checked.m_error = read_error(answer);
    if (says_nothing(answer)) {
        return checked;
    }
    const advice::SETTING setting = read_json_setting(answer, request.m_request.m_outputs.size());
    checked.m_verification = std::make_unique<advice::VERIFICATION>(
        request.m_request, limits, setting,
        checked.m_error == PLL::PLL_NO_ERROR ? advice::COMPONENT_SOURCE::LISTS
                                             : advice::COMPONENT_SOURCE::COMPUTED);
    if (checked.m_verification->is_possible()) {
        const JSON right = write_right_answer(request, *checked.m_verification, checked.m_error);
        compare_documents("", answer.get_value(), right, &checked.m_differences);
    }
    return checked;
}
