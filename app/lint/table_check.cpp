#include "app/lint/table_check.h"

#include "app/lint/plausible.h"
#include "app/lint/words.h"

#include <algorithm>

namespace {

constexpr double HZ_PER_MHZ = 1e6;
constexpr std::size_t MOST_SHOWN_VALUES = 5;
constexpr std::size_t MANY_ROWS = 3;  // of which one cause is more likely than several

// What a result column can be meant to say.
struct RESULT_RANGE
{
    const char* m_name;
    const char* m_unit;
    double m_min;
    double m_max;
};

constexpr RESULT_RANGE MARGIN = {"phase margin", "degrees", 1.0, 120.0};
constexpr RESULT_RANGE BANDWIDTH = {"bandwidth", "MHz", 0.0005, 100.0};
constexpr RESULT_RANGE PEAKING = {"jitter peaking", "dB", 0.0, 30.0};
constexpr RESULT_RANGE RESULTS[] = {MARGIN, BANDWIDTH, PEAKING};
constexpr std::size_t RESULTS_OF_CORNER = 3;
constexpr std::size_t NUMBER_OF_RESULTS = 9;
constexpr std::size_t TYPICAL = 1;  // bandwidths, counted from the first result
constexpr std::size_t FAST = 4;
constexpr std::size_t SLOW = 7;

}  // namespace

TABLE_CHECK::TABLE_CHECK(const RECORD_VIEW* type, LINT_MESSAGES* messages)
    : m_type(type), m_messages(messages)
{
    if (type == nullptr) {
        return;
    }
    const std::optional<double> m = largest_m(*type);
    const std::optional<double> post_scale = type->number(keyword("vco_post_scale_counter_max"));
    if (m && post_scale) {
        m_largest_m = *m * *post_scale;
    }
    m_low = type->number(keyword("bandwidth_low"));
    m_high = type->number(keyword("bandwidth_high"));
    m_currents = find_list(keyword("charge_pump_current"), keyword("charge_pump_current_bit"));
    m_resistors = find_list(keyword("loop_filter_resistor"), keyword("loop_filter_resistor_bit"));
    m_capacitors =
        find_list(keyword("loop_filter_capacitor"), keyword("loop_filter_capacitor_bit"));
}

TABLE_CHECK::COMPONENT_LIST TABLE_CHECK::find_list(std::size_t list, std::size_t bits) const
{
    COMPONENT_LIST result;
    const SET_VALUE* const statement = find_later(*m_type, list, bits);
    result.m_keyword = list;
    if (statement == nullptr || statement->m_state != VALUE_STATE::GIVEN) {
        return result;
    }
    result.m_values = m_type->model().list_of(*statement);
    std::sort(result.m_values.begin(), result.m_values.end());
    // Weights of zeros alone are told of elsewhere.
    const bool has_values = !result.m_values.empty() && result.m_values.back() > 0;
    result.m_statement = has_values ? statement : nullptr;
    return result;
}

void TABLE_CHECK::check_row(const TABLE_FORMAT& format, const TABLE_ROW& row,
                            const OPERAND_WATCH& watch)
{
    std::size_t column = 0;
    const auto place = [&](std::size_t index) { return watch.place_of(row.m_words[index]); };
    const auto value = [&](std::size_t index) { return static_cast<int>(row.m_values[index]); };
    if (format.m_has_capacitor) {
        if (value(0) >= 0) {
            check_component(&m_capacitors, value(0), place(0));
        }
        ++column;
    }
    const int m = value(column);
    check_m(m, place(column));
    check_component(&m_currents, value(column + 1), place(column + 1));
    check_component(&m_resistors, value(column + 2), place(column + 2));
    check_repetition(format, row, watch);
    const std::size_t first_result = column + RESULTS_OF_CORNER;
    if (format.m_has_results) {
        check_results(row, first_result, watch);
        note_bandwidths(m, row, first_result);
    }
}

void TABLE_CHECK::check_component(COMPONENT_LIST* list, int value, const SOURCE_PLACE& place)
{
    if (list->m_statement == nullptr ||
        std::binary_search(list->m_values.begin(), list->m_values.end(), value)) {
        return;
    }
    if (list->m_missing.empty()) {
        list->m_place = place;
    }
    if (list->m_missing.size() <= MOST_SHOWN_VALUES || list->m_missing.count(value) != 0) {
        ++list->m_missing[value];
    }
}

void TABLE_CHECK::check_m(int m, const SOURCE_PLACE& place)
{
    if (m == 0) {
        add_to_run(LINT_RULE::ROW_M_ZERO, place,
                   "no feedback divides by 0: the row is never taken");
        return;
    }
    const bool has_group = m > 0 && (!m_largest_m || m <= *m_largest_m);
    if (has_group) {
        return;
    }
    ++m_without_group;
    if (m_without_group < MANY_ROWS) {
        m_first_without_group.emplace_back(m, place);
    }
}

void TABLE_CHECK::check_results(const TABLE_ROW& row, std::size_t first, const OPERAND_WATCH& watch)
{
    for (std::size_t i = 0; i < NUMBER_OF_RESULTS; ++i) {
        const RESULT_RANGE& range = RESULTS[i % RESULTS_OF_CORNER];
        const double value = row.m_values[first + i];
        if (value < range.m_min || value > range.m_max) {
            add_to_run(LINT_RULE::RESULT_IMPLAUSIBLE, watch.place_of(row.m_words[first + i]),
                       short_number(value) + " " + range.m_unit + " can hardly be meant for a " +
                           range.m_name);
            return;
        }
    }
    const double typical = row.m_values[first + TYPICAL];
    const double fast = row.m_values[first + FAST];
    const double slow = row.m_values[first + SLOW];
    if (fast < typical || typical < slow) {
        const std::size_t wrong = fast < typical ? FAST : SLOW;
        add_to_run(
            LINT_RULE::CORNERS_OUT_OF_ORDER, watch.place_of(row.m_words[first + wrong]),
            std::string("the ") +
                (fast < typical ? "fast bandwidth lies below" : "slow bandwidth lies above") +
                " the typical one; the corners are typical, fast, slow");
    }
}

void TABLE_CHECK::note_bandwidths(int m, const TABLE_ROW& row, std::size_t first)
{
    const double typical = row.m_values[first + TYPICAL] * HZ_PER_MHZ;
    if (m < 1 || typical <= 0.0 || (m_largest_m && m > *m_largest_m)) {
        return;
    }
    m_bandwidths.m_min = std::min(m_bandwidths.m_min, typical);
    m_bandwidths.m_max = std::max(m_bandwidths.m_max, typical);
    m_bandwidths.m_fast_min =
        std::min(m_bandwidths.m_fast_min, row.m_values[first + FAST] * HZ_PER_MHZ);
    m_bandwidths.m_has_medium =
        m_bandwidths.m_has_medium || (m_low && m_high && typical >= *m_low && typical <= *m_high);
}

// Two rows for the same M with the same components: the second is never taken.
void TABLE_CHECK::check_repetition(const TABLE_FORMAT& format, const TABLE_ROW& row,
                                   const OPERAND_WATCH& watch)
{
    const std::size_t components = RESULTS_OF_CORNER + (format.m_has_capacitor ? 1 : 0);
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < components; ++i) {
        hash = mix_hash(hash + i,
                        static_cast<std::uint64_t>(static_cast<std::int64_t>(row.m_values[i])));
    }
    if (!m_rows.insert(hash)) {
        add_to_run(LINT_RULE::ROW_TWICE, watch.place_of(row.m_words[0]),
                   "a row above has the same M and the same components");
    }
}

void TABLE_CHECK::add_to_run(LINT_RULE rule, const SOURCE_PLACE& place, const std::string& text)
{
    RUN_OF_ROWS& run = m_runs[rule];
    const bool goes_on = run.m_last_line != 0 && place.m_line == run.m_last_line + 1;
    if (goes_on) {
        ++run.m_others;
    } else {
        if (run.m_last_line != 0) {
            m_messages->add(rule, run.m_place, run.m_text);
        }
        run = {place, text, 0, 0};
    }
    run.m_last_line = place.m_line;
}

void TABLE_CHECK::tell_of_list(const COMPONENT_LIST& list)
{
    if (list.m_missing.empty()) {
        return;
    }
    std::string values;
    std::size_t rows = 0;
    for (const auto& [value, count] : list.m_missing) {
        values += (values.empty() ? "" : ", ") + std::to_string(value);
        rows += count;
    }
    const bool has_more = list.m_missing.size() > MOST_SHOWN_VALUES;
    m_messages->add(LINT_RULE::ROW_OUTSIDE_LISTS,
                    rows == 1 ? list.m_place : list.m_statement->m_place,
                    in_quotes(get_keyword(list.m_keyword).m_name) + " does not list " + values +
                        (has_more ? " and others" : "") +
                        (rows == 1 ? ""
                                   : ", which rows of the table have, the first in line " +
                                         std::to_string(list.m_place.m_line)));
}

void TABLE_CHECK::finish()
{
    for (const auto& [rule, run] : m_runs) {
        m_messages->add(
            rule, run.m_place,
            run.m_text + (run.m_others == 0
                              ? ""
                              : "; likewise " + std::to_string(run.m_others) + " more rows below"));
    }
    tell_of_list(m_currents);
    tell_of_list(m_resistors);
    tell_of_list(m_capacitors);
    tell_of_rows_without_group();
}

// Many rows have one cause: the counter.
void TABLE_CHECK::tell_of_rows_without_group()
{
    const SET_VALUE* const counter = m_type == nullptr ? nullptr : find_largest_m(*m_type);
    const std::string largest = short_number(m_largest_m.value_or(0.0));
    if (m_without_group >= MANY_ROWS && counter != nullptr) {
        m_messages->add(LINT_RULE::ROW_WITHOUT_GROUP, counter->m_place,
                        std::to_string(m_without_group) +
                            " rows of the table are dropped: their M lies above the largest, " +
                            largest);
        return;
    }
    for (const auto& [m, place] : m_first_without_group) {
        m_messages->add(
            LINT_RULE::ROW_WITHOUT_GROUP, place,
            "the row is dropped: M is " + std::to_string(m) +
                (m < 0 ? ", less than 1"
                       : ", and vco_post_scale_counter_max x m_counter_max is " + largest));
    }
}
