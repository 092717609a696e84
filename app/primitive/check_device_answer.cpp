#include "app/primitive/check_device_answer.h"

#include "advice/devices/device_answer.h"
#include "app/json/request.h"
#include "app/primitive/device_report.h"

namespace {

std::string read_name(const PLACE& place)
{
    return place.is_null() ? "" : place.read_text();
}

advice::DEVICE_SETTING read_setting(const PLACE& answer)
{
    advice::DEVICE_SETTING setting;
    const PLACE pll = answer.require("pll");
    setting.m_n = pll.require("n").read_exact();
    setting.m_m = pll.require("feedback_factor").read_exact();
    setting.m_fed_back = read_name(pll.require("fed_back_by"));
    answer.require("outputs").read_list([&](const PLACE& output) {
        setting.m_clocks.push_back(
            {output.require("made_by").read_text(), read_name(output.require("select")),
             output.require("count").read_exact(), output.require("division").read_exact()});
    });
    return setting;
}

}  // namespace

bool is_device_answer(const JSON& document)
{
    return document.is_object() && document.contains("device") && document.contains("pll");
}

CHECKED_DEVICE_ANSWER check_device_answer(const PLACE& answer,
                                          const advice::CANDIDATE_DEVICE& device, bool is_other)
{
    advice::DEVICE_REQUEST request;
    request.m_request = read_json_request(answer.require("request")).m_request;
    request.m_device = device;
    CHECKED_DEVICE_ANSWER checked;
    checked.m_has_setting = !answer.require("pll").is_null();
    if (!checked.m_has_setting) {
        return checked;
    }
    const advice::DEVICE_ANSWER described = advice::describe_setting(request, read_setting(answer));
    if (!described.m_has_setting) {
        checked.m_differences.push_back(
            {"pll", "the outputs of " + device.m_sheet->m_title + " cannot be wired so"});
        return checked;
    }
    for (const std::string& reason : described.m_reasons) {
        checked.m_differences.push_back({"wishes and limits", reason});
    }
    JSON right = write_json_device_answer(request, described, described.m_met ? 0 : 1);
    // Reasons and offers are about other requests than this one.
    for (const char* const key : {"request", "reasons", "offers"}) {
        right.erase(key);
    }
    if (is_other) {
        right.erase("device");
        right.erase("grade");
        right.erase("limits");
    }
    compare_documents("", answer.get_value(), right, &checked.m_differences);
    checked.m_description = report_device_answer(request, described);
    return checked;
}
