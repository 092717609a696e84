#include "random_database.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <sstream>

namespace {

const char* const FAMILY_NAMES[] = {"Alpha", "beta 2", "GAMMA"};
const char* const PART_NAMES[] = {"P1", "p 2", "LARGE", "P1s"};
const char* const GRADES[] = {"6", "C7", "8"};
const char* const TYPE_NAMES[] = {"ENHANCED_PLL", "FAST_PLL", "FAST_PLL_HIGH_SPEED", "VESTRA_PLL"};

// Statements that nothing of the synthesis depends on.
const char* const OTHER_NUMBERS[] = {"m_counter_initial_max",
                                     "m_counter_phase_tap_max",
                                     "m_counter_phase_tap_resolution",
                                     "output_counter_initial_max",
                                     "output_counter_phase_tap_max",
                                     "output_counter_phase_tap_resolution",
                                     "time_delay_max",
                                     "time_delay_resolution",
                                     "valid_lock_multiplier",
                                     "invalid_lock_multiplier",
                                     "gate_lock_counter_min",
                                     "gate_lock_counter_max",
                                     "switch_over_counter_min",
                                     "switch_over_counter_max",
                                     "feedback_duty_cycle_min",
                                     "feedback_duty_cycle_max"};
const char* const OTHER_REALS[] = {
    "ss_down_spread_min",       "ss_down_spread_max",          "bandwidth_relative_tolerance",
    "phase_absolute_tolerance", "spe_push_out_constant_a",     "spe_push_out_constant_b",
    "spe_push_out_constant_c",  "spe_pull_in_constant_d",      "spe_pull_in_constant_e",
    "spe_pull_in_constant_f",   "spe_lock_fail_ratio_constant"};
const char* const OTHER_PART_NUMBERS[] = {
    "input_max",           "output_min",    "output_max",   "external_output_min",
    "external_output_max", "ss_spread_min", "ss_spread_max"};

// Statements that are errors, or that other statements must not be touched by.
const char* const ODD_LINES[] = {
    "frob 1",
    "m_counter_max",
    "m_counter_max -1",
    "ss_bandwidth 0",
    "ss_bandwidth nan",
    "vco_min_post_scale 3 7",
    "vco_min_post_scale 0 7",
    "vco_post_scale_counter_max 3",
    "charge_pump_current x",
    "loop_filter_resistor_bit 0 0",
    "reconfig_type other",
    "reconfig_scan_chain_counter_order",
    "include nowhere.txt",
    "include",
    "family",
    "family \"beta 2\"",
    "pll slow_pll",
    "part",
    "speed_grade",
    "pfd_min 2147483647",
    "pfd_max 2147483649",
    "vco_center 4294967295",
    "not_listed yes",
    "bandwidth_settings_table_file nowhere.txt",
    "bandwidth_settings_table_file UNUSED",
    "m_counter_max 65536",
    "vco_gain 0",
};

template <std::size_t SIZE>
std::string pick(const char* const (&texts)[SIZE], RANDOM* random)
{
    return texts[random->between(0, static_cast<int>(SIZE) - 1)];
}

// A name as it may stand in a file or be asked for: in any case.
std::string any_case(std::string text, RANDOM* random)
{
    if (random->chance(20)) {
        for (char& c : text) {
            if (c >= 'a' && c <= 'z' && random->chance(50)) {
                c = static_cast<char>(c - 'a' + 'A');
            }
        }
    }
    return text;
}

std::string in_quotes(const std::string& name, RANDOM* random)
{
    const bool needs_them = name.find_first_of(" #") != std::string::npos || name.empty();
    return needs_them || random->chance(20) ? '"' + name + '"' : name;
}

class WRITER
{
public:
    WRITER(RANDOM_DATABASE* made, const RANDOM_CASE& random_case, RANDOM* random)
        : m_made(*made), m_case(random_case), m_random(*random)
    {
    }

    void run();

private:
    void say(const std::string& keyword, const std::string& operands);
    void say_number(const std::string& keyword, int value) { say(keyword, std::to_string(value)); }
    void say_real(const std::string& keyword, double value);
    void say_list(const std::string& keyword, const std::vector<int>& values);
    int near(int value);
    void write_family(int family);
    void write_type(int type, const std::string& directory);
    void write_counters();
    void write_components();
    void write_bandwidths();
    void write_table_file(const std::string& directory);
    void write_others();
    void write_part(int type);
    void write_vco(const std::string& keyword, const int (&values)[3]);
    void write_includes(const std::string& directory);
    std::string text_of_lines();
    void write_path_file();
    MODEL_ENTRY make_entry(bool is_own);
    void make_steps();

    RANDOM_DATABASE& m_made;
    const RANDOM_CASE& m_case;
    RANDOM& m_random;
    int m_type = 0;  // the one that queries are about
    std::vector<std::string> m_lines;
    std::string m_directories[std::size(FAMILY_NAMES)];  // empty, or with a slash at its end
};

void WRITER::say(const std::string& keyword, const std::string& operands)
{
    if (m_random.chance(2)) {
        return;
    }
    std::string line = m_random.chance(10) ? "\t " : "";
    line += any_case(keyword, &m_random) + (m_random.chance(10) ? "\t " : " ") + operands;
    if (m_random.chance(5)) {
        line += m_random.chance(50) ? " # a note" : " more";
    }
    m_lines.push_back(line + (m_random.chance(5) ? "\r" : ""));
    if (m_random.between(0, 999) < 4) {
        m_lines.push_back(pick(ODD_LINES, &m_random));
    }
}

void WRITER::say_real(const std::string& keyword, double value)
{
    std::ostringstream stream;
    stream.precision(m_random.chance(80) ? 17 : 3);
    stream << value;
    say(keyword, stream.str());
}

void WRITER::say_list(const std::string& keyword, const std::vector<int>& values)
{
    std::vector<int> shuffled = values;
    for (std::size_t i = 1; i < shuffled.size(); ++i) {
        std::swap(shuffled[i],
                  shuffled[static_cast<std::size_t>(m_random.between(0, static_cast<int>(i)))]);
    }
    std::string operands;
    for (const int value : shuffled) {
        operands += std::to_string(value) + " ";
    }
    say(keyword + (m_random.chance(30) ? "_bit" : ""),
        operands + (m_random.chance(5) ? "x 3" : ""));
}

// The value itself, or one not far from it.
int WRITER::near(int value)
{
    if (m_random.chance(90)) {
        return value;
    }
    const int room = std::abs(value / 20) + 2;
    const std::int64_t moved = std::int64_t{value} + m_random.between(-room, room);
    return static_cast<int>(std::clamp<std::int64_t>(moved, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

void WRITER::write_counters()
{
    const MODEL_PLL& pll = m_case.m_pll;
    say_number("number_of_output_counters", pll.m_max_taps_count);
    if (m_random.chance(50)) {
        say_number("m_counter_max", near(pll.m_m.m_max_count));
    } else {
        say_number("m_counter_high_low_max", (pll.m_m.m_max_count + 1) / 2);
    }
    say_number("n_counter_max", near(pll.m_n.m_max_count));
    say_number("vco_post_scale_counter_max", std::max(1, pll.m_max_vco_post_scale));
    if (m_random.chance(4)) {
        say_number("output_counter_max", 2 * pll.m_taps[0].m_max_count);
    } else {
        say_number("output_counter_high_low_max", pll.m_taps[0].m_max_count);
    }
    say("output_counter_cascade", pll.m_output_counter_cascade ? "yes" : "no");
    say_number("ss_counter_max", m_random.chance(90) ? 32768 : 50);
    if (m_case.m_has_device) {
        const MODEL_DEVICE& device = m_case.m_device;
        say_number("bandwidth_pfd_min_frequency_multiplier",
                   device.m_bandwidth_pfd_min_frequency_multiplier);
        say("is_pfd_bandwidth_rule_an_error",
            device.m_is_pfd_bandwidth_rule_an_error ? "on" : "off");
        if (device.m_m_counter_preferred_min >= 0) {
            say_number("m_counter_preferred_min", device.m_m_counter_preferred_min);
        }
        if (device.m_m_counter_preferred_max >= 0) {
            say_number("m_counter_preferred_max", device.m_m_counter_preferred_max);
        }
        if (device.m_spe_ratio_constant_x < 10.0) {
            say_real("spe_ratio_constant_x", device.m_spe_ratio_constant_x);
        }
    }
}

void WRITER::write_components()
{
    const MODEL_PLL& pll = m_case.m_pll;
    say_list("charge_pump_current", m_case.m_parts.m_currents);
    say_list("loop_filter_resistor", m_case.m_parts.m_resistors);
    say_list("loop_filter_capacitor", {5, 10, 15, 20});
    say_number("charge_pump_current_default", static_cast<int>(pll.m_i));
    say_number("loop_filter_resistor_default", static_cast<int>(pll.m_r));
    say_number("loop_filter_capacitor_default", static_cast<int>(pll.m_c_high));
    say_number("loop_filter_fixed_capacitor", static_cast<int>(pll.m_c_fixed));
    say_number("ss_charge_pump_current", std::max(0, pll.m_ss_charge_pump_current));
}

void WRITER::write_bandwidths()
{
    const MODEL_PLL& pll = m_case.m_pll;
    say_real("ss_bandwidth", pll.m_ss_bandwidth);
    say_real("bandwidth_low", pll.m_low_bandwidth);
    say_real("bandwidth_medium", pll.m_medium_bandwidth);
    say_real("bandwidth_high", pll.m_high_bandwidth);
}

void WRITER::write_table_file(const std::string& directory)
{
    if (!m_case.m_device.m_use_bandwidth_settings_table && !m_random.chance(15)) {
        if (m_random.chance(30)) {
            say("bandwidth_settings_table_file", "unused");
        }
        return;
    }
    const std::string name = m_random.chance(80) ? "table.txt" : "my table.txt";
    say("bandwidth_settings_table_file", in_quotes(name, &m_random));
    const int size = m_case.m_pll.m_m.m_max_count * std::max(1, m_case.m_pll.m_max_vco_post_scale);
    m_made.m_files[directory + name] = make_table_text(m_case.m_device, size + 1, &m_random);
}

void WRITER::write_others()
{
    for (int left = m_random.between(0, 3); left > 0; --left) {
        say_number(pick(OTHER_NUMBERS, &m_random), m_random.between(0, 1000));
        say_real(pick(OTHER_REALS, &m_random), m_random.fraction() + 0.001);
    }
    if (m_random.chance(30)) {
        const char* const KINDS[] = {"none", "short", "LONG", "enhanced", "what"};
        say("reconfig_type", pick(KINDS, &m_random));
        say("reconfig_scan_chain_counter_order",
            m_random.chance(50) ? "C0 c1 \"M\" n end" : "L0TAP odd G3");
    }
}

void WRITER::write_vco(const std::string& keyword, const int (&values)[3])
{
    if (m_random.chance(50)) {
        say_number(keyword, near(std::max(0, values[1])));
    }
    for (int p = 1; p <= 2; ++p) {
        if (m_random.chance(70)) {
            say(keyword + "_post_scale",
                std::to_string(p) + " " + std::to_string(std::max(0, near(values[p]))));
        }
    }
}

void WRITER::write_part(int type)
{
    const MODEL_PLL& pll = m_case.m_pll;
    say("speed_grade", pick(GRADES, &m_random));
    say("part", in_quotes(any_case(pick(PART_NAMES, &m_random), &m_random), &m_random));
    if (m_random.chance(20)) {
        say("not_listed", m_random.chance(50) ? "true" : "no");
    }
    if (type != m_type && m_random.chance(50)) {
        return;
    }
    write_vco("vco_min", pll.m_vco_min_period);
    write_vco("vco_max", pll.m_vco_max_period);
    write_vco("vco_center", pll.m_vco_center_period);
    write_vco("ss_vco_max", pll.m_ss_vco_max_period);
    const int gains[] = {0, static_cast<int>(pll.m_kvco[1]), static_cast<int>(pll.m_kvco[2])};
    write_vco("vco_gain", gains);
    say_number("pfd_min", std::max(0, near(pll.m_pfd_min_period)));
    say_number("pfd_max", std::max(0, near(pll.m_pfd_max_period)));
    say_number("input_min", std::max(0, near(pll.m_fin_min_period)));
    for (int left = m_random.between(0, 4); left > 0; --left) {
        say_number(pick(OTHER_PART_NUMBERS, &m_random), m_random.between(0, 5000));
    }
}

void WRITER::write_type(int type, const std::string& directory)
{
    say("pll", any_case(TYPE_NAMES[type], &m_random));
    write_counters();
    write_components();
    write_bandwidths();
    if (type == m_type || m_random.chance(10)) {
        write_table_file(directory);
    }
    write_others();
    for (int left = m_random.between(m_random.chance(5) ? 0 : 1, 4); left > 0; --left) {
        write_part(type);
    }
}

// Moves some lines into a file of their own.
void WRITER::write_includes(const std::string& directory)
{
    if (m_lines.size() < 4 || !m_random.chance(20)) {
        return;
    }
    const int lines = static_cast<int>(m_lines.size());
    const int first = m_random.between(0, lines - 1);
    const int count = m_random.between(1, lines - first);
    std::string included;
    for (int i = first; i < first + count; ++i) {
        included += m_lines[static_cast<std::size_t>(i)] + "\n";
    }
    m_lines.erase(m_lines.begin() + first, m_lines.begin() + first + count);
    m_lines.insert(m_lines.begin() + first, "include \"inc 1.txt\"");
    m_made.m_files[directory + "inc 1.txt"] = included;
}

std::string WRITER::text_of_lines()
{
    std::string text = m_random.chance(30) ? "# a random family\n\n" : "";
    for (const std::string& line : m_lines) {
        text += line + "\n";
    }
    if (m_random.chance(8)) {
        damage_text(&text, &m_random);
    }
    return text;
}

void WRITER::write_family(int family)
{
    const char* const DIRECTORIES[] = {"", "", "sub/", "sub/x y/"};
    m_directories[family] = pick(DIRECTORIES, &m_random);
    m_lines.clear();
    say("family", in_quotes(FAMILY_NAMES[family], &m_random));
    for (int type = 0; type < MODEL_TYPES; ++type) {
        if (type == m_type || m_random.chance(15)) {
            write_type(type, m_directories[family]);
        }
    }
    write_includes(m_directories[family]);
    m_made.m_files[m_directories[family] + "family " + std::to_string(family)] = text_of_lines();
}

void WRITER::write_path_file()
{
    std::string text;
    for (std::size_t i = 0; i < std::size(FAMILY_NAMES); ++i) {
        const std::string directory = m_directories[i].empty() ? "." : m_directories[i];
        text += in_quotes(FAMILY_NAMES[i], &m_random) + " " + in_quotes(directory, &m_random);
        text += m_random.chance(98) ? " \"family " + std::to_string(i) + "\"" : "";
        text += m_random.chance(10) ? " # a family\n" : "\n";
    }
    if (m_random.chance(5)) {
        damage_text(&text, &m_random);
    }
    if (m_random.chance(99)) {
        m_made.m_files["ddb_pll_path.txt"] = text;
    }
}

MODEL_ENTRY WRITER::make_entry(bool is_own)
{
    MODEL_ENTRY entry;
    entry.m_family = any_case(pick(FAMILY_NAMES, &m_random), &m_random);
    if (m_random.chance(2)) {
        entry.m_family = "unknown";
    }
    if (m_random.chance(is_own ? 25 : 40)) {
        entry.m_part = any_case(pick(PART_NAMES, &m_random), &m_random);
    }
    if (m_random.chance(15)) {
        entry.m_speed_grade = pick(GRADES, &m_random);
    }
    return entry;
}

void WRITER::make_steps()
{
    typedef RANDOM_STEP::KIND KIND;
    m_made.m_steps.push_back({KIND::READ, "", {}});
    for (int left = m_random.between(1, 4); left > 0; --left) {
        RANDOM_STEP step;
        const int kind = m_random.between(0, 99);
        const int family = m_random.between(0, static_cast<int>(std::size(FAMILY_NAMES)) - 1);
        if (kind < 15) {
            step.m_kind = KIND::SPEED_GRADES;
            step.m_name = any_case(FAMILY_NAMES[family], &m_random);
        } else if (kind < 20) {
            step.m_kind = KIND::FAMILY_FILE;
            step.m_name = m_directories[family] + "family " + std::to_string(family);
        } else if (kind < 22) {
            step.m_kind = KIND::READ;
        } else {
            step.m_kind = kind < 45 ? KIND::INIT_INFO : KIND::INIT_PLL;
            step.m_query.m_type = m_random.chance(95) ? m_type : m_random.between(0, MODEL_TYPES);
            step.m_query.m_own = make_entry(true);
            for (int entries = m_random.chance(50) ? 0 : m_random.between(1, 4); entries > 0;
                 --entries) {
                step.m_query.m_migration.push_back(make_entry(false));
            }
        }
        m_made.m_steps.push_back(step);
    }
}

void WRITER::run()
{
    m_type = m_random.between(0, MODEL_TYPES - 1);
    for (int family = 0; family < static_cast<int>(std::size(FAMILY_NAMES)); ++family) {
        write_family(family);
    }
    write_path_file();
    make_steps();
    m_made.m_request = m_case.m_request;
}

}  // namespace

RANDOM_DATABASE make_random_database(std::uint64_t seed)
{
    constexpr CASE_KIND KINDS[] = {CASE_KIND::SMALL,    CASE_KIND::EDGE,  CASE_KIND::PHASE,
                                   CASE_KIND::TABLE,    CASE_KIND::TABLE, CASE_KIND::FILTER,
                                   CASE_KIND::FEEDBACK, CASE_KIND::MIXED, CASE_KIND::CASCADE,
                                   CASE_KIND::SPREAD};
    RANDOM_DATABASE made;
    made.m_seed = seed;
    RANDOM random(seed);
    const CASE_KIND kind = KINDS[random.between(0, static_cast<int>(std::size(KINDS)) - 1)];
    const RANDOM_CASE random_case = make_random_case(kind, random.next() >> 16U);
    WRITER(&made, random_case, &random).run();
    return made;
}

std::string describe_database(const RANDOM_DATABASE& database)
{
    std::ostringstream stream;
    stream << "database: --seed " << database.m_seed << " --databases 1\n";
    for (const auto& [name, text] : database.m_files) {
        stream << "==== " << name << '\n' << text;
    }
    stream << "==== steps\n";
    const auto print = [&stream](const MODEL_ENTRY& entry) {
        stream << " [" << entry.m_family << ", " << entry.m_part.value_or("any part") << ", "
               << entry.m_speed_grade.value_or("any grade") << ']';
    };
    for (const RANDOM_STEP& step : database.m_steps) {
        stream << "kind " << static_cast<int>(step.m_kind) << ' ' << step.m_name << " type "
               << step.m_query.m_type;
        print(step.m_query.m_own);
        for (const MODEL_ENTRY& entry : step.m_query.m_migration) {
            print(entry);
        }
        stream << '\n';
    }
    return stream.str();
}
