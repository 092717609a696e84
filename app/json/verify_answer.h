// The check of a whole answer in JSON: rules, wishes and limits of its setting, and every figure
// that it states.
#pragma once

#include "app/json/answer.h"
#include "app/json/compare.h"
#include "app/json/request.h"

#include "advice/verify/verify.h"

#include <memory>
#include <vector>

struct CHECKED_ANSWER
{
    std::unique_ptr<advice::VERIFICATION> m_verification;  // null: the answer holds no setting
    std::vector<JSON_DIFFERENCE> m_differences;            // what is said and is not so
    PLL::PLL_ERROR_TYPE m_error = PLL::PLL_NO_ERROR;       // that the answer says it has

    // A setting that keeps all rules, wishes and limits, truly described, and without an error of
    // the library.
    bool is_clean() const;
};

// Reads the request of an answer and the names of its device. Throws a USAGE_ERROR.
JSON_REQUEST read_request_of(const PLACE& answer);

// Checks an answer within the limits of the request's device, which must outlive the result. Throws
// a USAGE_ERROR for what is no answer.
CHECKED_ANSWER check_answer(const PLACE& answer, const JSON_REQUEST& request,
                            const advice::LIMITS& limits);
