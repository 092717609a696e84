// Answers in JSON: the object that `synth --format json` writes and that `verify` reads.
#pragma once

#include "app/devices/device.h"
#include "app/json/json.h"
#include "app/json/place.h"

#include "advice/answer/answer.h"
#include "advice/request/request.h"
#include "advice/verdict/verdict.h"
#include "advice/verify/setting.h"

#include "pll.h"
#include "pll_prop.h"

#include <string>
#include <vector>

// What an answer is written from; nothing is owned.
struct ANSWER_PARTS
{
    const advice::REQUEST& m_request;
    const DEVICE_WORDS& m_device;
    const PLL& m_pll;
    const PLL_PROP& m_achieved;
    const advice::VERDICT& m_verdict;
    bool m_met;                   // by the library and the verdict
    PLL::PLL_ERROR_TYPE m_error;  // of the library; none when it takes the request for met
};

ANSWER_PARTS parts_of(const advice::REQUEST& request, const DEVICE_WORDS& device,
                      const advice::ANSWER& answer);

// A request that would be met, and the command that asks for it.
struct JSON_OFFER
{
    std::string m_text;
    std::string m_command;
};

// The whole object.
JSON write_json_answer(const ANSWER_PARTS& parts, const std::vector<std::string>& reasons,
                       const std::vector<JSON_OFFER>& offers);

// Its members, for objects of other commands.
JSON write_json_error(PLL::PLL_ERROR_TYPE error);
JSON write_json_loop(const ANSWER_PARTS& parts);     // "pll"; null without a setting
JSON write_json_outputs(const ANSWER_PARTS& parts);  // "outputs"
JSON write_json_limits(const ANSWER_PARTS& parts);   // "limits"

// Reads the setting of an answer, for a request of that many outputs. Throws a USAGE_ERROR that
// names the place of a key that is missing or of a wrong type.
advice::SETTING read_json_setting(const PLACE& answer, std::size_t outputs);
