#include "app/request/request_text.h"

#include "app/request/request.h"

#include <algorithm>
#include <cctype>

namespace {

using advice::power_of_ten;
using advice::RATIONAL;

constexpr int MHZ_EXPONENT = 6;
constexpr int PPM_EXPONENT = 6;
constexpr int PERCENT = 100;

typedef std::vector<std::string> WORDS;

// The decimal with the fewest digits, or a fraction where no decimal is exact.
std::string write_number(const RATIONAL& value)
{
    constexpr int MOST_DECIMALS = 9;
    for (int decimals = 0; decimals <= MOST_DECIMALS; ++decimals) {
        if ((value * RATIONAL(power_of_ten(decimals))).is_integer()) {
            return value.to_decimal(decimals);
        }
    }
    return value.to_fraction();
}

std::string write_mhz(const RATIONAL& hertz)
{
    const RATIONAL mhz = hertz / RATIONAL(power_of_ten(MHZ_EXPONENT));
    return mhz.is_valid() ? write_number(mhz) + "MHz" : hertz.to_fraction() + "Hz";
}

std::string write_part(const RATIONAL& part)
{
    return write_number(part * RATIONAL(power_of_ten(PPM_EXPONENT))) + "ppm";
}

std::string write_percent(const RATIONAL& part)
{
    return write_number(part * RATIONAL(PERCENT)) + "%";
}

std::string write_tolerances(const advice::OUTPUT_TOLERANCES& tolerances)
{
    std::string text;
    if (tolerances.m_frequency) {
        text += ",tolerance=" + write_part(*tolerances.m_frequency);
    }
    if (tolerances.m_phase) {
        text += ",phase-tolerance=" + write_number(*tolerances.m_phase);
    }
    if (tolerances.m_duty) {
        text += ",duty-tolerance=" + write_number(*tolerances.m_duty);
    }
    if (tolerances.m_delay) {
        text += ",delay-tolerance=" + write_number(*tolerances.m_delay);
    }
    return text;
}

std::string write_output(const advice::OUTPUT_WISH& wish)
{
    std::string text = wish.m_frequency.is_valid() ? write_mhz(wish.m_frequency)
                                                   : "ratio=" + wish.m_ratio.to_fraction();
    text += wish.m_name.empty() ? "" : ",name=" + wish.m_name;
    text += wish.m_phase.is_zero() ? "" : ",phase=" + write_number(wish.m_phase);
    if (wish.m_phase_to != advice::NO_OUTPUT) {
        text += ",to=" + std::to_string(wish.m_phase_to + 1);
    }
    const bool is_square = wish.m_duty == advice::OUTPUT_WISH().m_duty;
    text += is_square ? "" : ",duty=" + write_number(wish.m_duty);
    text += wish.m_delay == 0 ? "" : ",delay=" + std::to_string(wish.m_delay);
    text += wish.m_even ? ",even" : "";
    text += wish.m_even_count ? ",even-count" : "";
    text += wish.m_pin ? ",pin" : "";
    return text + write_tolerances(wish.m_tolerances);
}

void add(const char* option, const std::string& value, WORDS* words)
{
    words->emplace_back(option);
    words->push_back(value);
}

void add_loop(const advice::REQUEST& request, WORDS* words)
{
    if (request.m_bandwidth_kind == advice::BANDWIDTH_KIND::CUSTOM) {
        add("--bandwidth", write_mhz(request.m_bandwidth), words);
    } else if (request.m_bandwidth_kind != advice::BANDWIDTH_KIND::AUTO) {
        add("--bandwidth", BANDWIDTH_WORDS[static_cast<std::size_t>(request.m_bandwidth_kind)],
            words);
    }
    if (!request.m_spread.is_zero()) {
        add("--spread", write_percent(request.m_spread), words);
    }
    if (request.m_spread_rate) {
        add("--spread-rate", write_mhz(*request.m_spread_rate), words);
    }
    if (request.m_feedback != advice::NO_OUTPUT) {
        add("--feedback", std::to_string(request.m_feedback + 1), words);
    }
    if (request.m_vco_ratio) {
        add("--vco-ratio", request.m_vco_ratio->to_fraction(), words);
    }
    if (request.m_reconfig) {
        words->emplace_back("--reconfig");
    }
    if (request.m_max_outputs) {
        add("--max-outputs", std::to_string(*request.m_max_outputs), words);
    }
}

void add_unless_usual(const char* option, const std::string& value, const std::string& usual,
                      WORDS* words)
{
    if (value != usual) {
        add(option, value, words);
    }
}

void add_tolerances(const advice::TOLERANCES& tolerances, WORDS* words)
{
    const advice::TOLERANCES usual;
    add_unless_usual("--tolerance", write_part(tolerances.m_frequency),
                     write_part(usual.m_frequency), words);
    add_unless_usual("--phase-tolerance", write_number(tolerances.m_phase),
                     write_number(usual.m_phase), words);
    add_unless_usual("--duty-tolerance", write_number(tolerances.m_duty),
                     write_number(usual.m_duty), words);
    add_unless_usual("--delay-tolerance", write_number(tolerances.m_delay),
                     write_number(usual.m_delay), words);
    add_unless_usual("--bandwidth-tolerance", write_percent(tolerances.m_bandwidth),
                     write_percent(usual.m_bandwidth), words);
    add_unless_usual("--spread-tolerance", write_percent(tolerances.m_spread),
                     write_percent(usual.m_spread), words);
}

void add_frequencies(const char* option, const advice::RANGE& range, WORDS* words)
{
    if (range.is_set()) {
        add(option,
            (range.m_least ? write_mhz(*range.m_least) : "") + "-" +
                (range.m_most ? write_mhz(*range.m_most) : ""),
            words);
    }
}

void add_counts(const char* option, const advice::RANGE& range, WORDS* words)
{
    if (range.is_set()) {
        add(option,
            (range.m_least ? range.m_least->to_fraction() : "") + "-" +
                (range.m_most ? range.m_most->to_fraction() : ""),
            words);
    }
}

void add_list(const char* option, const std::vector<int>& values, WORDS* words)
{
    std::string text;
    for (const int value : values) {
        text += (text.empty() ? "" : ",") + std::to_string(value);
    }
    if (!values.empty()) {
        add(option, text, words);
    }
}

void add_limits(const advice::LIMITS_BY_HAND& limits, WORDS* words)
{
    add_frequencies("--vco", limits.m_vco, words);
    add_frequencies("--pfd", limits.m_pfd, words);
    add_frequencies("--input-range", limits.m_input, words);
    add_frequencies("--output-range", limits.m_output, words);
    add_counts("--m", limits.m_m, words);
    add_counts("--n", limits.m_n, words);
    add_counts("--k", limits.m_k, words);
    add_list("--post-scales", limits.m_post_scales, words);
    add_list("--taps", limits.m_vco_taps, words);
}

void add_text(const char* option, const std::optional<std::string>& text, WORDS* words)
{
    if (text) {
        add(option, *text, words);
    }
}

void add_device(const DEVICE_WORDS& device, WORDS* words)
{
    add_text("--database", device.m_database, words);
    add_text("--family", device.m_family, words);
    add_text("--type", device.m_type, words);
    add_text("--part", device.m_part, words);
    add_text("--speed-grade", device.m_speed_grade, words);
    for (const std::string& other : device.m_migrate) {
        add("--migrate", other, words);
    }
}

bool is_plain(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("-_./:=,@%+").find(c) != std::string_view::npos;
}

// In single quotes where a shell would take a word for something else.
std::string quote(const std::string& word)
{
    if (!word.empty() && std::all_of(word.begin(), word.end(), is_plain)) {
        return word;
    }
    std::string text = "'";
    for (const char c : word) {
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return text + "'";
}

}  // namespace

std::vector<std::string> write_words(const advice::REQUEST& request, const DEVICE_WORDS& device)
{
    WORDS words;
    add("--in", write_mhz(request.m_input.m_frequency), &words);
    if (request.m_input2) {
        add("--in2", write_mhz(request.m_input2->m_frequency), &words);
    }
    for (const advice::OUTPUT_WISH& wish : request.m_outputs) {
        add("--out", write_output(wish), &words);
    }
    add_loop(request, &words);
    add_tolerances(request.m_tolerances, &words);
    add_limits(request.m_by_hand, &words);
    add_device(device, &words);
    return words;
}

std::string write_command(const advice::REQUEST& request, const DEVICE_WORDS& device)
{
    std::string text = "pllcalc synth";
    for (const std::string& word : write_words(request, device)) {
        text += " " + quote(word);
    }
    return text;
}
