#include "database_comparison.h"

#include "checking_observer.h"
#include "field_compare.h"
#include "model.h"
#include "model_database_fields.h"
#include "report_gatherer.h"

#include "pll.h"
#include "pll_manager.h"
#include "temp_dir.h"

#include <filesystem>
#include <sstream>

namespace {

typedef PLL_BASIC_INFO BASIC;

// The largest search that is compared; the model visits every pair of counters.
constexpr std::int64_t LARGEST_SEARCH = 400000;

// ---- Records of the database

void compare_texts(const char* what, const char* library, const std::optional<std::string>& model,
                   std::ostream& stream)
{
    const std::optional<std::string> text =
        library == nullptr ? std::nullopt : std::optional<std::string>(library);
    if (text != model) {
        stream << what << ": library " << text.value_or("none") << ", model "
               << model.value_or("none") << '\n';
    }
}

template <class NUMBER>
void compare_list(const char* what, const NUMBER* values, int count, const std::vector<int>& model,
                  std::ostream& stream)
{
    const std::vector<int> list(values, values + (values == nullptr ? 0 : count));
    if (list != model || (values == nullptr) != model.empty()) {
        stream << what << ": library has " << count << " values, model " << model.size() << '\n';
    }
}

void compare_lists(const BASIC& basic, const MODEL_BASIC& model, std::ostream& stream)
{
    compare_list("currents", basic.m_charge_pump_currents, basic.m_number_of_charge_pump_currents,
                 model.m_currents, stream);
    compare_list("current bits", basic.m_charge_pump_current_bits,
                 basic.m_number_of_charge_pump_current_bits, model.m_current_bits, stream);
    compare_list("resistors", basic.m_loop_filter_resistors,
                 basic.m_number_of_loop_filter_resistors, model.m_resistors, stream);
    compare_list("resistor bits", basic.m_loop_filter_resistor_bits,
                 basic.m_number_of_loop_filter_resistor_bits, model.m_resistor_bits, stream);
    compare_list("capacitors", basic.m_loop_filter_capacitors,
                 basic.m_number_of_loop_filter_capacitors, model.m_capacitors, stream);
    compare_list("capacitor bits", basic.m_loop_filter_capacitor_bits,
                 basic.m_number_of_loop_filter_capacitor_bits, model.m_capacitor_bits, stream);
    if (basic.m_number_of_reconfig_infos != static_cast<int>(model.m_reconfigs.size())) {
        stream << "reconfigurations: library " << basic.m_number_of_reconfig_infos << '\n';
        return;
    }
    for (std::size_t i = 0; i < model.m_reconfigs.size(); ++i) {
        const PLL_RECONFIG_INFO& info = *basic.m_reconfig_infos[i];
        if (static_cast<int>(info.m_reconfig_type) != model.m_reconfigs[i].m_type) {
            stream << "reconfiguration " << i << ": library " << info.m_reconfig_type << '\n';
        }
        compare_list("scan chain", info.m_scan_chain_counter_orders,
                     info.m_number_of_scan_chain_counter_orders, model.m_reconfigs[i].m_counters,
                     stream);
    }
}

void compare_table(const BASIC& basic, const MODEL_BASIC& model, std::ostream& stream)
{
    const std::size_t size = model.m_table.size();
    if (basic.m_bandwidth_settings_table_size != static_cast<int>(size)) {
        stream << "table: library has " << basic.m_bandwidth_settings_table_size
               << " groups, model " << size << '\n';
        return;
    }
    FIELD_COMPARE compare = {stream};
    for (std::size_t m = 0; m < size; ++m) {
        const auto& rows = basic.m_bandwidth_settings_table[m].m_settings;
        if (rows.size() != model.m_table[m].size()) {
            stream << "group " << m << ": library has " << rows.size() << " rows, model "
                   << model.m_table[m].size() << '\n';
            continue;
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            visit_row(*rows[i], model.m_table[m][i], compare);
        }
    }
}

void compare_parts(const PLL_FAMILY_INFO& family, const MODEL_FAMILY& model, std::ostream& stream)
{
    if (family.m_number_of_parts != static_cast<int>(model.m_parts.size())) {
        stream << "parts: library " << family.m_number_of_parts << ", model "
               << model.m_parts.size() << '\n';
        return;
    }
    FIELD_COMPARE compare = {stream};
    for (std::size_t i = 0; i < model.m_parts.size(); ++i) {
        const PLL_PART_INFO& part = *family.m_parts[i];
        const MODEL_PART& expected = model.m_parts[i];
        compare_texts("part", part.m_name, expected.m_name, stream);
        compare_texts("its speed grade", part.m_speed_grade, expected.m_speed_grade, stream);
        if (part.m_not_listed != expected.m_not_listed || part.m_type != expected.m_type) {
            stream << "part " << i << ": type or flag differ\n";
        }
        visit_timing(part.m_timing_info, expected.m_timing, compare);
    }
}

template <class MODEL_NAMES>
void compare_names(const char* what, const char* const* names, int count, const MODEL_NAMES& model,
                   std::ostream& stream)
{
    if (count != static_cast<int>(model.size())) {
        stream << what << ": library " << count << ", model " << model.size() << '\n';
        return;
    }
    for (std::size_t i = 0; i < model.size(); ++i) {
        compare_texts(what, names[i], model[i], stream);
    }
}

void compare_records(const PLL_MANAGER& manager, const MODEL_DATABASE& model, std::ostream& stream)
{
    if (manager.get_number_of_families() != static_cast<int>(model.m_families.size())) {
        stream << "families: library " << manager.get_number_of_families() << ", model "
               << model.m_families.size() << '\n';
        return;
    }
    FIELD_COMPARE compare = {stream};
    for (std::size_t i = 0; i < model.m_families.size(); ++i) {
        const PLL_FAMILY_INFO& family = *manager.m_families[i];
        const MODEL_FAMILY& expected = model.m_families[i];
        compare_texts("family", family.m_name, expected.m_name, stream);
        compare_texts("its path", family.m_path, expected.m_path, stream);
        compare_texts("its file", family.m_file_name, expected.m_file_name, stream);
        compare_names("speed grades", family.m_speed_grades, family.m_number_of_speed_grades,
                      expected.m_speed_grades, stream);
        compare_names("listed speed grades", family.m_listed_speed_grades,
                      family.m_number_of_listed_speed_grades, expected.m_listed_speed_grades,
                      stream);
        compare_parts(family, expected, stream);
        for (int type = 0; type < MODEL_TYPES; ++type) {
            visit_basic(type, family.m_basic_infos[type], expected.m_basics[type], compare);
            compare_lists(family.m_basic_infos[type], expected.m_basics[type], stream);
            compare_table(family.m_basic_infos[type], expected.m_basics[type], stream);
        }
    }
}

// ---- Steps

const char* text_of(const std::optional<std::string>& text)
{
    return text ? text->c_str() : nullptr;
}

// The library's query; its names are those of `query`.
PLL_QUERY query_of(const MODEL_QUERY& query)
{
    PLL_QUERY real;
    real.m_family = query.m_own.m_family.c_str();
    real.m_part = text_of(query.m_own.m_part);
    real.m_speed_grade = text_of(query.m_own.m_speed_grade);
    real.m_type = static_cast<PLL_TYPE_ENUM>(query.m_type);
    for (const MODEL_ENTRY& entry : query.m_migration) {
        real.add_migration_part(entry.m_family.c_str(), text_of(entry.m_part),
                                text_of(entry.m_speed_grade));
    }
    return real;
}

// Both databases, and what one step gave.
class RUN
{
public:
    RUN(const RANDOM_DATABASE& database, const std::string& directory, COUNTS* counts)
        : m_database(database),
          m_directory(directory),
          m_counts(*counts),
          m_observer(m_model.m_files)
    {
        std::size_t size = 0;
        for (const auto& [name, text] : database.m_files) {
            m_model.m_files[std::filesystem::path(directory) / name] = text;
            size += text.size();
        }
        // Half of the databases are read under the eyes of an observer.
        if (size % 2 == 0) {
            m_manager.set_observer(&m_observer);
        }
    }

    void take(const RANDOM_STEP& step, std::ostream& stream);

private:
    void count(const std::string& what) { ++m_counts[what]; }
    void compare_results(const char* what, bool library, bool model, std::ostream& stream);
    void ask_observer(bool is_read, std::ostream& stream);
    void compare_counts(const std::string& family, std::ostream& stream);
    void compare_info(const MODEL_QUERY& query, const PLL_INFO& info, const MODEL_INFO& expected,
                      std::ostream& stream) const;
    void init_info(const MODEL_QUERY& query, std::ostream& stream);
    void init_pll(const MODEL_QUERY& query, std::ostream& stream);
    void synthesize(PLL* pll, MODEL_PLL* model, const MODEL_PARTS& parts, std::ostream& stream);

    const RANDOM_DATABASE& m_database;
    const std::string m_directory;
    COUNTS& m_counts;
    MODEL_DATABASE m_model;
    CHECKING_OBSERVER m_observer;
    PLL_MANAGER m_manager;
    MODEL_REPORTS m_library_reports;
    MODEL_REPORTS m_model_reports;
};

void RUN::compare_results(const char* what, bool library, bool model, std::ostream& stream)
{
    count(std::string(what) + (library ? ": true" : ": false"));
    if (library != model) {
        stream << what << ": library " << library << ", model " << model << '\n';
    }
}

void RUN::ask_observer(bool is_read, std::ostream& stream)
{
    if (m_manager.get_observer() != nullptr) {
        stream << m_observer.take_complaints(is_read);
        count("read under an observer");
    }
}

void RUN::compare_counts(const std::string& family, std::ostream& stream)
{
    const int count = m_manager.get_number_of_speed_grades(family.c_str());
    const int listed = m_manager.get_number_of_listed_speed_grades(family.c_str());
    std::size_t expected = 0;
    std::size_t expected_listed = 0;
    const MODEL_FAMILY* record = model_read_family(&m_model, family, m_model_reports);
    expected = record == nullptr ? 0 : record->m_speed_grades.size();
    record = model_read_family(&m_model, family, m_model_reports);
    expected_listed = record == nullptr ? 0 : record->m_listed_speed_grades.size();
    compare_results("speed grades", count != 0, expected != 0, stream);
    if (count != static_cast<int>(expected) || listed != static_cast<int>(expected_listed)) {
        stream << "speed grades: library " << count << " and " << listed << ", model " << expected
               << " and " << expected_listed << '\n';
    }
}

void RUN::compare_info(const MODEL_QUERY& query, const PLL_INFO& info, const MODEL_INFO& expected,
                       std::ostream& stream) const
{
    const PLL_BASIC_INFO* basic = nullptr;
    for (std::size_t i = 0; expected.m_family != nullptr && i < m_model.m_families.size(); ++i) {
        if (expected.m_family == &m_model.m_families[i]) {
            basic = &m_manager.m_families[i]->m_basic_infos[query.m_type];
        }
    }
    if (info.m_basic_info != basic) {
        stream << "the description is that of another family\n";
    }
    FIELD_COMPARE compare = {stream};
    visit_timing(info.m_timing_info, expected.m_timing, compare);
}

void RUN::init_info(const MODEL_QUERY& query, std::ostream& stream)
{
    PLL_INFO info;
    MODEL_INFO expected;
    const bool is_ok = m_manager.init_pll_info(&info, query_of(query));
    compare_results("init_pll_info", is_ok,
                    model_init_info(&m_model, query, &expected, m_model_reports), stream);
    compare_info(query, info, expected, stream);
}

void RUN::synthesize(PLL* pll, MODEL_PLL* model, const MODEL_PARTS& parts, std::ostream& stream)
{
    const std::int64_t pairs = std::int64_t{model->m_m.m_max_count} * model->m_n.m_max_count;
    if (pairs > LARGEST_SEARCH || model->m_n.m_max_count > LARGEST_SEARCH ||
        model->m_m.m_max_count > LARGEST_SEARCH) {
        count("synthesis too long to compare");
        return;
    }
    FIELD_COMPARE copy_compare = {stream};
    PLL_PROP request(0);
    const auto copy = [](const FIELD_NAME&, auto& to, const auto& from) {
        to = static_cast<std::remove_reference_t<decltype(to)>>(from);
    };
    visit_prop(request, m_database.m_request, copy);
    const bool is_met = pll->synthesize(request);
    compare_results("synthesis", is_met,
                    model_synthesize(model, m_database.m_request, parts, m_model_reports), stream);
    visit_pll(*pll, *model, copy_compare);
    if (is_met && model->m_device->m_use_bandwidth_settings_table) {
        count("synthesis with a table: true");
    }
}

void RUN::init_pll(const MODEL_QUERY& query, std::ostream& stream)
{
    const int taps = m_database.m_request.m_taps_count;
    PLL pll(taps, PLL_MAX_TAPS);
    MODEL_PLL model;
    model.m_id = pll.m_id;
    model.m_user_taps_count = taps;
    model.m_total_taps_count = taps;
    model.m_max_taps_count = PLL_MAX_TAPS;
    MODEL_COMPONENTS components;
    MODEL_INFO expected;
    const bool is_ok = m_manager.init_pll(&pll, query_of(query));
    const bool model_is_ok =
        model_init_pll(&m_model, query, &expected, &model, &components, m_model_reports);
    compare_results("init_pll", is_ok, model_is_ok, stream);
    FIELD_COMPARE compare = {stream};
    visit_pll(pll, model, compare);
    const auto compare_shared = [&stream](const char* what, const MEM_VECTOR<int>& list,
                                          const std::vector<int>& expected_list) {
        if (std::vector<int>(list.begin(), list.end()) != expected_list) {
            stream << "the shared " << what << " differ\n";
        }
    };
    compare_shared("currents", PLL::m_impl->m_charge_pump_currents, components.m_parts.m_currents);
    compare_shared("resistors", PLL::m_impl->m_resistors, components.m_parts.m_resistors);
    compare_shared("capacitors", PLL::m_impl->m_capacitors, components.m_capacitors);
    if (is_ok && model_is_ok) {
        compare_info(query, pll.m_info, expected, stream);
        count(query.m_migration.empty() ? "initialised for one device"
                                        : "initialised for several devices");
        synthesize(&pll, &model, components.m_parts, stream);
    } else if (pll.m_info.has_info()) {
        stream << "a failed initialisation left a description\n";
    }
}

void RUN::take(const RANDOM_STEP& step, std::ostream& stream)
{
    m_library_reports.clear();
    m_model_reports.clear();
    m_observer.forget();
    const REPORT_GATHERER gatherer(&m_library_reports);
    switch (step.m_kind) {
    case RANDOM_STEP::KIND::READ: {
        const bool is_read = m_manager.read(m_directory.c_str());
        compare_results("read", is_read, model_read(&m_model, m_directory), stream);
        ask_observer(is_read, stream);
        break;
    }
    case RANDOM_STEP::KIND::SPEED_GRADES:
        compare_counts(step.m_name, stream);
        break;
    case RANDOM_STEP::KIND::FAMILY_FILE: {
        const bool is_read =
            m_manager.read_family_info_from_file(m_directory.c_str(), step.m_name.c_str());
        compare_results("family file", is_read,
                        model_read_family_file(&m_model, m_directory, step.m_name, m_model_reports),
                        stream);
        ask_observer(is_read, stream);
        break;
    }
    case RANDOM_STEP::KIND::INIT_INFO:
        init_info(step.m_query, stream);
        break;
    case RANDOM_STEP::KIND::INIT_PLL:
        init_pll(step.m_query, stream);
        break;
    }
    compare_reports("step", m_library_reports, m_model_reports, stream);
    m_counts["internal errors"] += m_library_reports.size();
    compare_records(m_manager, m_model, stream);
    m_counts["findings"] += m_observer.take_count();
}

}  // namespace

std::string compare_database(const RANDOM_DATABASE& database, const std::string& directory,
                             COUNTS* counts)
{
    for (const auto& [name, text] : database.m_files) {
        const std::filesystem::path path = std::filesystem::path(directory) / name;
        std::filesystem::create_directories(path.parent_path());
        write_file(path.string(), text);
    }
    RUN run(database, directory, counts);
    std::ostringstream stream;
    for (std::size_t i = 0; i < database.m_steps.size() && stream.str().empty(); ++i) {
        run.take(database.m_steps[i], stream);
        if (!stream.str().empty()) {
            stream << "in step " << i << '\n';
        }
    }
    return stream.str();
}
