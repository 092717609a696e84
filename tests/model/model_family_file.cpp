// The model's reader of family files: one statement a line, in the order of the file.
#include "model_database.h"
#include "model_tokens.h"
#include "model_util.h"

#include <algorithm>

namespace {

constexpr std::size_t MOST_OPEN_FILES = 8;
constexpr int MOST_OPENED_FILES = 1000;
constexpr int LARGEST_POST_SCALE = 2;

template <class RECORD, class VALUE>
struct FIELD
{
    const char* m_keyword;
    VALUE RECORD::*m_field;
};

typedef MODEL_BASIC B;
typedef MODEL_TIMING T;

const FIELD<B, int> INTS[] = {
    {"m_counter_preferred_min", &B::m_m_counter_preferred_min},
    {"m_counter_preferred_max", &B::m_m_counter_preferred_max},
    {"m_counter_initial_max", &B::m_m_counter_initial_max},
    {"m_counter_phase_tap_max", &B::m_m_counter_phase_tap_max},
    {"m_counter_phase_tap_resolution", &B::m_m_counter_phase_tap_resolution},
    {"n_counter_max", &B::m_n_counter_max},
    {"output_counter_initial_max", &B::m_output_counter_initial_max},
    {"number_of_output_counters", &B::m_number_of_output_counters},
    {"output_counter_phase_tap_max", &B::m_output_counter_phase_tap_max},
    {"output_counter_phase_tap_resolution", &B::m_output_counter_phase_tap_resolution},
    {"time_delay_max", &B::m_time_delay_max},
    {"time_delay_resolution", &B::m_time_delay_resolution},
    {"charge_pump_current_default", &B::m_charge_pump_current_default},
    {"loop_filter_resistor_default", &B::m_loop_filter_resistor_default},
    {"loop_filter_capacitor_default", &B::m_loop_filter_capacitor_default},
    {"loop_filter_fixed_capacitor", &B::m_loop_filter_fixed_capacitor},
    {"valid_lock_multiplier", &B::m_valid_lock_multiplier},
    {"invalid_lock_multiplier", &B::m_invalid_lock_multiplier},
    {"gate_lock_counter_min", &B::m_gate_lock_counter_min},
    {"gate_lock_counter_max", &B::m_gate_lock_counter_max},
    {"switch_over_counter_min", &B::m_switch_over_counter_min},
    {"switch_over_counter_max", &B::m_switch_over_counter_max},
    {"ss_counter_max", &B::m_ss_counter_max},
    {"ss_charge_pump_current", &B::m_ss_charge_pump_current},
    {"feedback_duty_cycle_min", &B::m_feedback_duty_cycle_min},
    {"feedback_duty_cycle_max", &B::m_feedback_duty_cycle_max},
    {"bandwidth_pfd_min_frequency_multiplier", &B::m_bandwidth_pfd_min_frequency_multiplier},
};

const FIELD<B, double> REALS[] = {
    {"ss_bandwidth", &B::m_ss_bandwidth},
    {"ss_down_spread_min", &B::m_ss_down_spread_min},
    {"ss_down_spread_max", &B::m_ss_down_spread_max},
    {"bandwidth_low", &B::m_bandwidth_low},
    {"bandwidth_medium", &B::m_bandwidth_medium},
    {"bandwidth_high", &B::m_bandwidth_high},
    {"bandwidth_relative_tolerance", &B::m_bandwidth_relative_tolerance},
    {"phase_absolute_tolerance", &B::m_phase_absolute_tolerance},
    {"spe_ratio_constant_x", &B::m_spe_ratio_constant_x},
    {"spe_push_out_constant_a", &B::m_spe_push_out_constant_a},
    {"spe_push_out_constant_b", &B::m_spe_push_out_constant_b},
    {"spe_push_out_constant_c", &B::m_spe_push_out_constant_c},
    {"spe_pull_in_constant_d", &B::m_spe_pull_in_constant_d},
    {"spe_pull_in_constant_e", &B::m_spe_pull_in_constant_e},
    {"spe_pull_in_constant_f", &B::m_spe_pull_in_constant_f},
    {"spe_lock_fail_ratio_constant", &B::m_spe_lock_fail_ratio_constant},
};

const FIELD<B, bool> FLAGS[] = {
    {"output_counter_cascade", &B::m_output_counter_cascade},
    {"is_pfd_bandwidth_rule_an_error", &B::m_is_pfd_bandwidth_rule_an_error},
};

typedef std::vector<int> LIST;

const FIELD<B, LIST> LISTS[] = {{"charge_pump_current", &B::m_currents},
                                {"loop_filter_resistor", &B::m_resistors},
                                {"loop_filter_capacitor", &B::m_capacitors}};
const FIELD<B, LIST> BIT_LISTS[] = {{"charge_pump_current_bit", &B::m_current_bits},
                                    {"loop_filter_resistor_bit", &B::m_resistor_bits},
                                    {"loop_filter_capacitor_bit", &B::m_capacitor_bits}};

const FIELD<T, int> SCALARS[] = {
    {"pfd_min", &T::m_pfd_min},
    {"pfd_max", &T::m_pfd_max},
    {"input_min", &T::m_input_min},
    {"input_max", &T::m_input_max},
    {"output_min", &T::m_output_min},
    {"output_max", &T::m_output_max},
    {"external_output_min", &T::m_external_output_min},
    {"external_output_max", &T::m_external_output_max},
    {"ss_spread_min", &T::m_ss_spread_min},
    {"ss_spread_max", &T::m_ss_spread_max},
};

struct VCO_FIELD
{
    const char* m_keyword;
    int (T::*m_field)[3];
    bool m_is_period;
};

const VCO_FIELD VCO_FIELDS[] = {{"vco_min", &T::m_vco_min, true},
                                {"vco_max", &T::m_vco_max, true},
                                {"vco_center", &T::m_vco_center, true},
                                {"vco_gain", &T::m_vco_gain, false},
                                {"ss_vco_max", &T::m_ss_vco_max, true}};

const char* const TYPE_NAMES[] = {"ENHANCED_PLL", "FAST_PLL", "FAST_PLL_HIGH_SPEED", "VESTRA_PLL"};
const char* const RECONFIG_NAMES[] = {"none", "short", "long", "enhanced"};
const char* const COUNTER_NAMES[] = {"L0", "L1", "G0", "G1", "G2",    "G3",   "E0",
                                     "E1", "E2", "E3", "C0", "C1",    "C2",   "C3",
                                     "C4", "C5", "M",  "N",  "L0TAP", "L1TAP"};

// The place of a name among others, their number when it is none of them.
template <std::size_t SIZE>
int place_of(const std::string& name, const char* const (&names)[SIZE])
{
    int place = 0;
    while (place < static_cast<int>(SIZE) && !model_same_name(name, names[place])) {
        ++place;
    }
    return place;
}

template <class ROW, std::size_t SIZE>
const ROW* row_of(const std::string& keyword, const ROW (&rows)[SIZE])
{
    for (const ROW& row : rows) {
        if (model_same_name(keyword, row.m_keyword)) {
            return &row;
        }
    }
    return nullptr;
}

class READER
{
public:
    READER(MODEL_DATABASE* database, const std::string& path, MODEL_REPORTS& reports)
        : m_database(*database), m_path(path), m_reports(reports)
    {
    }

    bool run(const std::string& file_name);

private:
    struct OPEN_FILE
    {
        std::vector<std::string> m_lines;
        std::size_t m_next = 0;
    };

    enum class MATCH
    {
        NONE,  // the keyword is of another group
        DONE,
        ERROR
    };

    static MATCH done_if(bool is_ok) { return is_ok ? MATCH::DONE : MATCH::ERROR; }

    bool open(const std::string& name);
    MATCH run_statement(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_structure(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_include(MODEL_WORDS* words);
    MATCH run_part(MODEL_WORDS* words);
    MATCH run_type_value(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_count(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_list(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_reconfig(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_table(MODEL_WORDS* words);
    MATCH run_part_value(const std::string& keyword, MODEL_WORDS* words);
    MATCH run_vco(const VCO_FIELD& field, bool has_post_scale, MODEL_WORDS* words);
    bool has_type() const { return m_family != nullptr && m_type != MODEL_TYPES; }
    B& basic() { return m_family->m_basics[m_type]; }
    bool finish();

    MODEL_DATABASE& m_database;
    const std::string m_path;
    MODEL_REPORTS& m_reports;
    std::vector<OPEN_FILE> m_files;
    int m_opened = 0;
    MODEL_FAMILY* m_family = nullptr;
    int m_type = MODEL_TYPES;
    std::optional<std::string> m_speed_grade;
    MODEL_PART* m_part = nullptr;
    B* m_reconfig_owner = nullptr;
    std::size_t m_reconfig = 0;  // of its owner
    std::vector<std::pair<int, std::string>> m_tables;
};

bool READER::open(const std::string& name)
{
    const std::string* const text = model_find_file(m_database, m_path + "/" + name);
    if (text == nullptr) {
        return false;
    }
    m_files.push_back({model_lines(*text)});
    ++m_opened;
    return true;
}

READER::MATCH READER::run_include(MODEL_WORDS* words)
{
    if (m_files.size() >= MOST_OPEN_FILES || m_opened >= MOST_OPENED_FILES) {
        return MATCH::ERROR;
    }
    const std::optional<std::string> name = words->take_name();
    if (name) {
        open(*name);
    }
    return MATCH::DONE;
}

READER::MATCH READER::run_part(MODEL_WORDS* words)
{
    if (!has_type() || !m_speed_grade) {
        return MATCH::DONE;
    }
    const std::optional<std::string> name = words->take_name();
    m_part = nullptr;
    if (!name) {
        return MATCH::ERROR;
    }
    std::deque<std::string>& grades = m_family->m_speed_grades;
    const auto is_grade = [this](const std::string& grade) {
        return model_same_name(grade, *m_speed_grade);
    };
    auto grade = std::find_if(grades.begin(), grades.end(), is_grade);
    if (grade == grades.end()) {
        grades.push_back(*m_speed_grade);
        grade = grades.end() - 1;
    }
    for (MODEL_PART& part : m_family->m_parts) {
        if (part.m_type == m_type && model_same_name(part.m_name, *name)) {
            m_part = &part;
            return MATCH::DONE;
        }
    }
    m_family->m_parts.push_back({*name, *grade, false, m_type, MODEL_TIMING()});
    m_part = &m_family->m_parts.back();
    return MATCH::DONE;
}

READER::MATCH READER::run_structure(const std::string& keyword, MODEL_WORDS* words)
{
    if (model_same_name(keyword, "include")) {
        return run_include(words);
    }
    if (model_same_name(keyword, "part")) {
        return run_part(words);
    }
    if (model_same_name(keyword, "family")) {
        const std::optional<std::string> name = words->take_name();
        m_family = name ? model_find_or_create_family(&m_database, *name) : nullptr;
        return done_if(m_family != nullptr);
    }
    if (model_same_name(keyword, "pll")) {
        m_type = place_of(words->take_name().value_or("?"), TYPE_NAMES);
        return done_if(m_type != MODEL_TYPES);
    }
    if (!model_same_name(keyword, "speed_grade")) {
        return MATCH::NONE;
    }
    if (m_family == nullptr) {
        return MATCH::DONE;
    }
    m_speed_grade = words->take_name();
    if (!m_speed_grade) {
        return MATCH::ERROR;
    }
    std::deque<std::string>& grades = m_family->m_speed_grades;
    for (const std::string& grade : grades) {
        if (model_same_name(grade, *m_speed_grade)) {
            m_speed_grade = grade;
            return MATCH::DONE;
        }
    }
    grades.push_back(*m_speed_grade);
    return MATCH::DONE;
}

// Counts that are given whole or by halves, and the post-scale.
READER::MATCH READER::run_count(const std::string& keyword, MODEL_WORDS* words)
{
    const bool is_m_half = model_same_name(keyword, "m_counter_high_low_max");
    const bool is_output_half = model_same_name(keyword, "output_counter_high_low_max");
    const bool is_m = is_m_half || model_same_name(keyword, "m_counter_max");
    const bool is_output = is_output_half || model_same_name(keyword, "output_counter_max");
    const bool is_scale = model_same_name(keyword, "vco_post_scale_counter_max");
    if (!is_m && !is_output && !is_scale) {
        return MATCH::NONE;
    }
    if (!has_type()) {
        return MATCH::DONE;
    }
    const std::optional<int> value = words->take_number();
    if (!value) {
        return MATCH::ERROR;
    }
    if (is_scale) {
        basic().m_vco_post_scale_counter_max = *value;
        if (*value > LARGEST_POST_SCALE) {
            m_reports.push_back("m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX");
        }
        return MATCH::DONE;
    }
    const bool is_half = is_m_half || is_output_half;
    const int whole = is_half ? model_multiply(2, *value) : *value;
    (is_m ? basic().m_m_counter_max : basic().m_output_counter_max) = whole;
    (is_m ? basic().m_m_counter_high_low_max : basic().m_output_counter_high_low_max) =
        is_half ? *value : 0;
    return MATCH::DONE;
}

READER::MATCH READER::run_list(const std::string& keyword, MODEL_WORDS* words)
{
    const FIELD<B, LIST>* const list = row_of(keyword, LISTS);
    const FIELD<B, LIST>* const bits = row_of(keyword, BIT_LISTS);
    if (list == nullptr && bits == nullptr) {
        return MATCH::NONE;
    }
    if (!has_type()) {
        return MATCH::DONE;
    }
    LIST values = words->take_numbers();
    if (values.empty()) {
        return MATCH::ERROR;
    }
    if (bits != nullptr) {
        basic().*(bits->m_field) = values;
        values.erase(std::remove_if(values.begin(), values.end(), [](int v) { return v <= 0; }),
                     values.end());
    }
    std::sort(values.begin(), values.end());
    basic().*(list != nullptr ? list->m_field : LISTS[bits - BIT_LISTS].m_field) = values;
    return MATCH::DONE;
}

READER::MATCH READER::run_reconfig(const std::string& keyword, MODEL_WORDS* words)
{
    if (model_same_name(keyword, "reconfig_type")) {
        if (!has_type()) {
            return MATCH::DONE;
        }
        const int type = place_of(words->take_word().value_or("?"), RECONFIG_NAMES);
        m_reconfig_owner = nullptr;
        if (type == MODEL_RECONFIG_TYPES) {
            return MATCH::DONE;
        }
        m_reconfig_owner = &basic();
        std::vector<MODEL_RECONFIG>& records = basic().m_reconfigs;
        m_reconfig = 0;
        while (m_reconfig < records.size() && records[m_reconfig].m_type != type) {
            ++m_reconfig;
        }
        if (m_reconfig == records.size()) {
            records.push_back({type, {}});
        }
        return MATCH::DONE;
    }
    if (!model_same_name(keyword, "reconfig_scan_chain_counter_order")) {
        return MATCH::NONE;
    }
    if (m_reconfig_owner == nullptr) {
        return MATCH::DONE;
    }
    std::vector<int> counters;
    for (std::optional<std::string> name = words->take_name();
         name && !model_same_name(*name, "end"); name = words->take_name()) {
        counters.push_back(place_of(*name, COUNTER_NAMES));
    }
    if (counters.empty()) {
        return MATCH::ERROR;
    }
    m_reconfig_owner->m_reconfigs[m_reconfig].m_counters = counters;
    return MATCH::DONE;
}

READER::MATCH READER::run_table(MODEL_WORDS* words)
{
    const std::optional<std::string> name = words->take_name();
    if (!name) {
        return MATCH::ERROR;
    }
    const bool is_unused = model_same_name(*name, "unused");
    const std::string file_name = is_unused ? "unused" : m_path + "/" + *name;
    for (auto& [type, table] : m_tables) {
        if (type == m_type) {
            table = file_name;
            return MATCH::DONE;
        }
    }
    m_tables.emplace_back(m_type, file_name);
    return MATCH::DONE;
}

READER::MATCH READER::run_type_value(const std::string& keyword, MODEL_WORDS* words)
{
    const FIELD<B, int>* const integer = row_of(keyword, INTS);
    const FIELD<B, double>* const real = row_of(keyword, REALS);
    const FIELD<B, bool>* const flag = row_of(keyword, FLAGS);
    const bool is_table = model_same_name(keyword, "bandwidth_settings_table_file");
    if (integer == nullptr && real == nullptr && flag == nullptr && !is_table) {
        return MATCH::NONE;
    }
    if (!has_type()) {
        return MATCH::DONE;
    }
    if (is_table) {
        return run_table(words);
    }
    if (flag != nullptr) {
        basic().*(flag->m_field) = words->take_flag();
        return MATCH::DONE;
    }
    if (integer != nullptr) {
        const std::optional<int> value = words->take_number();
        basic().*(integer->m_field) = value.value_or(basic().*(integer->m_field));
        return done_if(value.has_value());
    }
    const std::optional<double> value = words->take_real();
    basic().*(real->m_field) = value.value_or(basic().*(real->m_field));
    return done_if(value.has_value());
}

READER::MATCH READER::run_vco(const VCO_FIELD& field, bool has_post_scale, MODEL_WORDS* words)
{
    const std::optional<int> scale = has_post_scale ? words->take_number() : std::optional<int>(-1);
    const std::optional<int> value = scale ? words->take_number() : std::nullopt;
    if (!scale || !value) {
        return MATCH::ERROR;
    }
    int(&entries)[3] = m_part->m_timing.*(field.m_field);
    if (*scale > LARGEST_POST_SCALE) {
        m_reports.push_back("vco_post_scale <= PLL_VCO_POST_SCALE_MAX");
    } else if (*scale >= 0) {
        entries[*scale] = *value;
    } else {
        entries[1] = *value;
        entries[2] = field.m_is_period ? model_multiply(2, *value) : *value;
    }
    return MATCH::DONE;
}

READER::MATCH READER::run_part_value(const std::string& keyword, MODEL_WORDS* words)
{
    for (const VCO_FIELD& field : VCO_FIELDS) {
        const bool has_scale =
            model_same_name(keyword, field.m_keyword + std::string("_post_scale"));
        if (has_scale || model_same_name(keyword, field.m_keyword)) {
            return m_part == nullptr ? MATCH::DONE : run_vco(field, has_scale, words);
        }
    }
    const bool is_not_listed = model_same_name(keyword, "not_listed");
    const FIELD<T, int>* const scalar = row_of(keyword, SCALARS);
    if (!is_not_listed && scalar == nullptr) {
        return MATCH::NONE;
    }
    if (m_part == nullptr) {
        return MATCH::DONE;
    }
    if (is_not_listed) {
        m_part->m_not_listed = words->take_flag();
        return MATCH::DONE;
    }
    const std::optional<int> value = words->take_number();
    int& place = m_part->m_timing.*(scalar->m_field);
    place = value.value_or(place);
    return done_if(value.has_value());
}

READER::MATCH READER::run_statement(const std::string& keyword, MODEL_WORDS* words)
{
    typedef MATCH (READER::*GROUP)(const std::string&, MODEL_WORDS*);
    for (const GROUP group :
         {&READER::run_structure, &READER::run_count, &READER::run_list, &READER::run_type_value,
          &READER::run_reconfig, &READER::run_part_value}) {
        const MATCH match = (this->*group)(keyword, words);
        if (match != MATCH::NONE) {
            return match;
        }
    }
    return MATCH::ERROR;
}

bool READER::finish()
{
    if (m_family == nullptr) {
        return true;
    }
    m_family->m_listed_speed_grades.clear();
    for (const MODEL_PART& part : m_family->m_parts) {
        std::vector<std::string>& listed = m_family->m_listed_speed_grades;
        const auto is_grade = [&part](const std::string& grade) {
            return model_same_name(grade, part.m_speed_grade);
        };
        if (!part.m_not_listed && std::none_of(listed.begin(), listed.end(), is_grade)) {
            listed.push_back(part.m_speed_grade);
        }
    }
    bool are_read = true;
    for (const auto& [type, name] : m_tables) {
        B& info = m_family->m_basics[type];
        if (name == "unused") {
            info.m_table.clear();
            info.m_use_bandwidth_settings_table = false;
        } else {
            are_read =
                model_read_table(&info, model_find_file(m_database, name), m_reports) && are_read;
        }
    }
    return are_read;
}

bool READER::run(const std::string& file_name)
{
    if (!open(file_name)) {
        return false;
    }
    int statements = 0;
    for (;;) {
        while (!m_files.empty() && m_files.back().m_next == m_files.back().m_lines.size()) {
            m_files.pop_back();
        }
        if (m_files.empty()) {
            return statements > 0 && finish();
        }
        OPEN_FILE& top = m_files.back();
        MODEL_WORDS words(top.m_lines[top.m_next++]);
        const std::optional<std::string> keyword = words.take_word();
        if (!keyword) {
            continue;
        }
        if (run_statement(*keyword, &words) == MATCH::ERROR) {
            return false;
        }
        ++statements;
    }
}

}  // namespace

bool model_read_family_file(MODEL_DATABASE* database, const std::string& path,
                            const std::string& file_name, MODEL_REPORTS& reports)
{
    return READER(database, path, reports).run(file_name);
}
