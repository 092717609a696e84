#include "app/command/why.h"

#include "advice/why/conflict.h"
#include "advice/why/counts.h"
#include "advice/why/miss.h"
#include "advice/why/needs.h"
#include "advice/why/offers.h"
#include "app/json/answer.h"
#include "app/reports/reports.h"
#include "app/request/request_text.h"

namespace {

constexpr std::size_t SHORT_OFFERS = 3;
constexpr std::size_t ALL_OFFERS = 12;

std::string write_offers(const std::vector<JSON_OFFER>& offers)
{
    std::string text;
    for (const JSON_OFFER& offer : offers) {
        text += offer.m_text + "\n  " + offer.m_command + "\n";
    }
    return text;
}

std::string write_lines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

std::vector<JSON_OFFER> make_offers(const REQUEST& request, const ANSWER& answer,
                                    const DEVICE_WORDS& device, std::size_t most)
{
    const DEVICE_WORDS words = name_database(device, request.m_device);
    std::vector<JSON_OFFER> offers;
    for (const advice::OFFER& offer :
         advice::find_offers(request, *request.m_limits, answer, most)) {
        offers.push_back({offer.m_text, write_command(offer.m_request, words)});
    }
    return offers;
}

std::vector<std::string> list_reasons(const REQUEST& request, const ANSWER& answer)
{
    if (answer.is_met()) {
        return {};
    }
    std::vector<std::string> reasons = advice::explain_needs(request, *request.m_limits);
    for (std::string& line : advice::explain_miss(request, *request.m_limits, answer)) {
        reasons.push_back(std::move(line));
    }
    for (std::string& line : advice::count_settings(request, *request.m_limits)) {
        reasons.push_back(std::move(line));
    }
    return reasons;
}

}  // namespace

DEVICE_WORDS name_database(DEVICE_WORDS words, const DEVICE* device)
{
    if (device != nullptr) {
        words.m_database = device->get_directory();
    } else {
        words.m_database.reset();
    }
    return words;
}

std::string write_json(const REQUEST& request, const ANSWER& answer, const DEVICE_WORDS& device)
{
    const DEVICE_WORDS words = name_database(device, request.m_device);
    return write_document(write_json_answer(parts_of(request, words, answer),
                                            list_reasons(request, answer),
                                            make_offers(request, answer, device, ALL_OFFERS)),
                          2);
}

std::string explain_shortly(const REQUEST& request, const ANSWER& answer,
                            const DEVICE_WORDS& device)
{
    if (answer.is_met()) {
        return "";
    }
    const std::vector<JSON_OFFER> offers = make_offers(request, answer, device, SHORT_OFFERS);
    return "\n" + write_lines(advice::explain_needs(request, *request.m_limits)) +
           (offers.empty() ? "" : "What can be had instead:\n" + write_offers(offers)) +
           "pllcalc explain says more.\n";
}

std::string explain(const REQUEST& request, const ANSWER& answer, const DEVICE_WORDS& device)
{
    std::string text;
    if (answer.is_met()) {
        return report_verdict(request, answer);
    }
    const std::string needs = write_lines(advice::explain_needs(request, *request.m_limits));
    const std::string conflict =
        advice::describe_conflict(advice::find_conflict(request, *request.m_limits));
    const std::vector<JSON_OFFER> offers = make_offers(request, answer, device, ALL_OFFERS);
    text = needs + report_verdict(request, answer);
    const std::string origins = report_origins(request, answer);
    text += "\n" + origins + (origins.empty() ? "" : "\n");
    text += "What the limits leave:\n" +
            write_lines(advice::count_settings(request, *request.m_limits)) + "\n";
    if (!conflict.empty()) {
        text += "The smallest conflict:\n" + conflict + "\n\n";
    }
    text += offers.empty()
                ? "Nothing near it can be had.\n"
                : "What can be had instead, least change first:\n" + write_offers(offers);
    return text;
}
