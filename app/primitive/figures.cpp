#include "app/primitive/figures.h"

#include "app/json/numbers.h"
#include "app/output/characters.h"

namespace {

using advice::FIGURE_KIND;
using advice::FIGURE_RANGE;
using advice::JUDGED_FIGURE;
using advice::RATIONAL;

constexpr int DECIMALS = 6;
constexpr double WHOLE = 100.0;

std::string join(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}

std::string with_sources(const FIGURE_RANGE& range, const std::vector<std::string>& sources)
{
    return to_text(range) + " (" + join(sources) + ")";
}

std::string unit_behind(FIGURE_KIND kind)
{
    const std::string unit = unit_of(kind);
    return unit.empty() ? "" : " " + unit;
}

// "4 MHz below", "1.5 MHz above"; nothing where a list decides.
std::string distance(const JUDGED_FIGURE& figure)
{
    const FIGURE_RANGE& range = figure.m_figure.m_range;
    const std::string unit = unit_behind(figure.m_figure.m_kind);
    if (range.m_values.empty() && range.m_least && figure.m_value < *range.m_least) {
        return format_megahertz(*range.m_least - figure.m_value) + unit + " below ";
    }
    if (range.m_values.empty() && range.m_most && *range.m_most < figure.m_value) {
        return format_megahertz(figure.m_value - *range.m_most) + unit + " above ";
    }
    return "not of ";
}

const char* verb(bool kept)
{
    return kept ? "allowed by " : "refused by ";
}

std::string describe_others(const JUDGED_FIGURE& figure)
{
    std::string text;
    for (std::size_t i = 0; i < figure.m_by_other.size(); ++i) {
        const advice::OTHER_FIGURE& other = figure.m_figure.m_others[i];
        text += std::string(", ") + verb(figure.m_by_other[i]) +
                with_sources(other.m_range, other.m_sources);
        text += other.m_note.empty() ? "" : "; " + other.m_note;
    }
    return text;
}

const char* state_of(const JUDGED_FIGURE& figure)
{
    if (figure.sources_differ()) {
        return "sources differ";
    }
    return figure.m_kept ? "kept" : "broken";
}

JSON list_others(const JUDGED_FIGURE& figure)
{
    JSON others = JSON::array();
    for (std::size_t i = 0; i < figure.m_by_other.size(); ++i) {
        const advice::OTHER_FIGURE& other = figure.m_figure.m_others[i];
        JSON object = JSON::object();
        object["range"] = to_text(other.m_range);
        object["kept"] = static_cast<bool>(figure.m_by_other[i]);
        object["sources"] = other.m_sources;
        object["note"] = other.m_note;
        others.push_back(std::move(object));
    }
    return others;
}

JSON write_bound(const JUDGED_FIGURE& figure, const char* suffix, const JSON& limit,
                 const JSON& margin)
{
    const bool is_frequency = figure.m_figure.m_kind < FIGURE_KIND::N;
    JSON object = JSON::object();
    object["name"] = std::string(name_of(figure.m_figure.m_kind)) + suffix;
    object["unit"] = is_frequency ? "hz" : "count";
    object["limit"] = limit;
    object["value"] = write_double(figure.m_value.to_double() * (is_frequency ? HZ_PER_MHZ : 1.0));
    object["margin_percent"] = margin;
    object["source"] = join(figure.m_figure.m_sources);
    object["output"] = figure.m_output.empty() ? JSON(nullptr) : JSON(figure.m_output);
    object["device"] = figure.m_device.empty() ? JSON(nullptr) : JSON(figure.m_device);
    object["kept"] = figure.m_kept;
    object["state"] = state_of(figure);
    object["others"] = list_others(figure);
    return object;
}

void add_bound(const JUDGED_FIGURE& figure, const char* suffix, const RATIONAL& limit,
               bool is_least, JSON* list)
{
    const double scale = figure.m_figure.m_kind < FIGURE_KIND::N ? HZ_PER_MHZ : 1.0;
    const double relative = figure.m_value.to_double() / limit.to_double() - 1.0;
    const JSON margin = write_double((is_least ? relative : -relative) * WHOLE);
    list->push_back(write_bound(figure, suffix, write_double(limit.to_double() * scale), margin));
}

}  // namespace

std::string format_megahertz(const RATIONAL& value)
{
    std::string text = value.to_decimal(DECIMALS);
    const bool is_rounded = !(value * RATIONAL(HZ_PER_MHZ)).is_integer();
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return (is_rounded ? "~" : "") + text;
}

std::string describe_figure(const JUDGED_FIGURE& figure)
{
    std::string text = name_of(figure.m_figure.m_kind);
    text += (figure.m_output.empty() ? "" : " of " + make_visible(figure.m_output)) + " " +
            format_megahertz(figure.m_value) + unit_behind(figure.m_figure.m_kind);
    text += figure.m_device.empty() ? "" : " on " + figure.m_device;
    if (figure.sources_differ()) {
        return text + ": sources differ: " + verb(figure.m_kept) +
               with_sources(figure.m_figure.m_range, figure.m_figure.m_sources) +
               describe_others(figure);
    }
    return text + ": " + (figure.m_kept ? "kept, of " : "BROKEN, " + distance(figure)) +
           with_sources(figure.m_figure.m_range, figure.m_figure.m_sources);
}

JSON write_json_figures(const std::vector<JUDGED_FIGURE>& figures)
{
    JSON list = JSON::array();
    for (const JUDGED_FIGURE& figure : figures) {
        const FIGURE_RANGE& range = figure.m_figure.m_range;
        if (!range.m_values.empty()) {
            list.push_back(write_bound(figure, "_legal", JSON(range.m_values), JSON(nullptr)));
            continue;
        }
        if (range.m_least) {
            add_bound(figure, "_min", *range.m_least, true, &list);
        }
        if (range.m_most) {
            add_bound(figure, "_max", *range.m_most, false, &list);
        }
    }
    return list;
}
