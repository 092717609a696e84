// The library's objects of a random case, and its text.
#include "model_fields.h"
#include "random_request.h"

#include <iomanip>
#include <limits>
#include <sstream>

namespace {

// Copies the second record's field into the first's.
struct COPY
{
    template <class A, class B>
    void operator()(const FIELD_NAME&, A& to, const B& from) const
    {
        to = static_cast<A>(from);
    }
};

struct PRINT
{
    std::ostream& m_stream;

    template <class A>
    void operator()(const FIELD_NAME& field, const A& value, const A& usual)
    {
        if (value == usual) {
            return;
        }
        m_stream << field.m_record;
        if (field.m_index >= 0) {
            m_stream << '[' << field.m_index << ']';
        }
        m_stream << '.' << field.m_name << " = " << value << '\n';
    }
};

void print_list(std::ostream& stream, const char* name, const std::vector<int>& values)
{
    stream << name << " =";
    for (const int value : values) {
        stream << ' ' << value;
    }
    stream << '\n';
}

void build_table(PLL_BASIC_INFO* info, const MODEL_DEVICE& device)
{
    COPY copy;
    const std::size_t size = device.m_table.size();
    if (size == 0) {
        return;
    }
    PLL_BANDWIDTH_SETTING_GROUP* table = new PLL_BANDWIDTH_SETTING_GROUP[size];
    for (std::size_t m = 0; m < size; ++m) {
        for (const MODEL_ROW& row : device.m_table[m]) {
            PLL_BANDWIDTH_SETTING* setting = new PLL_BANDWIDTH_SETTING;
            visit_row(*setting, row, copy);
            table[m].m_settings.push_back(setting);
        }
    }
    info->set_bandwidth_settings_table(static_cast<int>(size), table);
}

}  // namespace

REAL_CASE::REAL_CASE(const RANDOM_CASE& random_case) : m_pll(0, PLL_MAX_TAPS), m_request(0)
{
    COPY copy;
    const int id = m_pll.m_id;
    visit_pll(m_pll, random_case.m_pll, copy);
    m_pll.m_id = id;
    visit_prop(m_request, random_case.m_request, copy);
    m_pll.clear_rci();
    for (const int current : random_case.m_parts.m_currents) {
        PLL::add_i(current);
    }
    for (const int resistor : random_case.m_parts.m_resistors) {
        PLL::add_r(resistor);
    }
    PLL::add_c(10);
    if (random_case.m_has_device) {
        visit_device(m_basic_info, random_case.m_device, copy);
        build_table(&m_basic_info, random_case.m_device);
        m_pll.m_info.m_basic_info = &m_basic_info;
    }
}

std::string describe_case(const RANDOM_CASE& random_case)
{
    std::ostringstream stream;
    stream << std::setprecision(std::numeric_limits<double>::max_digits10);
    stream << "case: --kind " << case_kind_name(random_case.m_kind) << " --seed "
           << random_case.m_seed << " --requests 1\n";
    PRINT print = {stream};
    const MODEL_PLL usual_pll;
    const MODEL_PROP usual_request;
    visit_pll(random_case.m_pll, usual_pll, print);
    visit_prop(random_case.m_request, usual_request, print);
    print_list(stream, "currents", random_case.m_parts.m_currents);
    print_list(stream, "resistors", random_case.m_parts.m_resistors);
    if (random_case.m_has_device) {
        const MODEL_DEVICE usual_device;
        const MODEL_ROW usual_row;
        stream << "device with a table of " << random_case.m_device.m_table.size() << " groups\n";
        visit_device(random_case.m_device, usual_device, print);
        for (const std::vector<MODEL_ROW>& rows : random_case.m_device.m_table) {
            for (const MODEL_ROW& row : rows) {
                visit_row(row, usual_row, print);
            }
        }
    }
    return stream.str();
}
