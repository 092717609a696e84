#include "advice/primitive/judge.h"

#include <algorithm>

namespace advice {

namespace {

const RATIONAL EIGHTHS(8);
const RATIONAL LEAST_WITH_EIGHTHS(2);

// Judges a setting for one device.
class JUDGE
{
public:
    JUDGE(const PRIMITIVE_SETTING& setting, const CANDIDATE_DEVICE& device)
        : m_setting(setting), m_sheet(*device.m_sheet), m_grade(device.m_grade)
    {
    }

    std::vector<JUDGED_FIGURE> run()
    {
        compare(FIGURE_KIND::N, "", m_setting.m_n);
        compare(FIGURE_KIND::M, "", m_setting.m_m);
        const bool is_computed = m_setting.m_input && m_setting.m_problem.empty();
        if (is_computed) {
            compare(FIGURE_KIND::INPUT, "", *m_setting.m_input);
            compare(FIGURE_KIND::PFD, "", m_setting.m_pfd);
            compare(FIGURE_KIND::VCO, "", m_setting.m_vco);
        }
        for (const PRIMITIVE_OUTPUT& output : m_setting.m_impossible) {
            compare(FIGURE_KIND::COUNT, output.m_sheet_name, output.m_count);
        }
        for (const PRIMITIVE_OUTPUT& output : m_setting.m_outputs) {
            if (output.m_has_counter) {
                compare(FIGURE_KIND::COUNT, output.m_sheet_name, output.m_count);
            }
            if (is_computed) {
                compare_frequency(output);
            }
        }
        return m_figures;
    }

private:
    void compare_frequency(const PRIMITIVE_OUTPUT& output)
    {
        const bool has_own_figure =
            output.m_is_feedback_only &&
            m_sheet.find_figure(FIGURE_KIND::FEEDBACK_OUTPUT, m_grade, "", "") != nullptr;
        if (has_own_figure) {
            compare(FIGURE_KIND::FEEDBACK_OUTPUT, output.m_sheet_name, output.m_frequency);
        } else {
            compare(FIGURE_KIND::OUTPUT, output.m_sheet_name, output.m_frequency);
        }
    }

    // Counts are whole but where the device counts in eighths, from 2.
    bool can_be_counted(FIGURE_KIND kind, const std::string& output, const RATIONAL& value) const
    {
        if (kind < FIGURE_KIND::N || value.is_integer()) {
            return true;
        }
        const std::string counter = kind == FIGURE_KIND::M ? name_of(kind) : output;
        return kind != FIGURE_KIND::N && m_sheet.counts_eighths(counter) &&
               (value * EIGHTHS).is_integer() && LEAST_WITH_EIGHTHS <= value;
    }

    void compare(FIGURE_KIND kind, const std::string& output, const RATIONAL& value)
    {
        const FIGURE* figure = m_sheet.find_figure(kind, m_grade, output, m_setting.m_path);
        if (figure == nullptr) {
            figure = m_sheet.find_figure(kind, m_grade, "", m_setting.m_path);
        }
        if (figure == nullptr || !covers(figure->m_outputs, output)) {
            return;
        }
        JUDGED_FIGURE judged;
        judged.m_figure = *figure;
        judged.m_output = output;
        judged.m_value = value;
        const bool can_count = can_be_counted(kind, output, value);
        judged.m_kept = can_count && figure->m_range.holds(value);
        for (const OTHER_FIGURE& other : figure->m_others) {
            judged.m_by_other.push_back(can_count && other.m_range.holds(value));
        }
        m_figures.push_back(judged);
    }

    const PRIMITIVE_SETTING& m_setting;
    const SHEET& m_sheet;
    std::string m_grade;
    std::vector<JUDGED_FIGURE> m_figures;
};

LEGALITY legality_of(const std::vector<JUDGED_FIGURE>& figures)
{
    LEGALITY legality = LEGALITY::LEGAL;
    for (const JUDGED_FIGURE& figure : figures) {
        if (!figure.m_kept && !figure.depends()) {
            return LEGALITY::ILLEGAL;
        }
        if (figure.depends()) {
            legality = LEGALITY::DEPENDS;
        }
    }
    return legality;
}

// The figures that a device refuses, with its name.
void add_refusals(const CANDIDATE_DEVICE& device, const std::vector<JUDGED_FIGURE>& figures,
                  std::vector<JUDGED_FIGURE>* list)
{
    for (const JUDGED_FIGURE& figure : figures) {
        if (!figure.m_kept) {
            list->push_back(figure);
            list->back().m_device = device.m_sheet->m_name + ":" + device.m_grade;
        }
    }
}

}  // namespace

std::vector<JUDGED_FIGURE> judge_for(const PRIMITIVE_SETTING& setting,
                                     const CANDIDATE_DEVICE& device)
{
    return JUDGE(setting, device).run();
}

const char* name_of(LEGALITY legality)
{
    switch (legality) {
    case LEGALITY::LEGAL:
        return "legal";
    case LEGALITY::ILLEGAL:
        return "illegal";
    case LEGALITY::DEPENDS:
        return "depends";
    }
    return "";
}

bool JUDGED_FIGURE::sources_differ() const
{
    return std::any_of(m_by_other.begin(), m_by_other.end(),
                       [this](bool kept) { return kept != m_kept; });
}

bool JUDGED_FIGURE::depends() const
{
    return !m_kept && sources_differ();
}

// The first device tells its figures; where a later one decides otherwise, what refuses there is
// told too.
void judge(JUDGED_INSTANCE* instance)
{
    const bool is_complete = instance->m_setting.m_input && instance->m_setting.m_problem.empty();
    for (std::size_t i = 0; i < instance->m_devices.size(); ++i) {
        const CANDIDATE_DEVICE& device = instance->m_devices[i];
        std::vector<JUDGED_FIGURE> figures = judge_for(instance->m_setting, device);
        LEGALITY legality = legality_of(figures);
        if (legality == LEGALITY::LEGAL && !is_complete) {
            legality = LEGALITY::DEPENDS;
        }
        if (i == 0) {
            instance->m_legality = legality;
            instance->m_figures = std::move(figures);
        } else if (legality != instance->m_legality) {
            if (instance->m_legality == LEGALITY::LEGAL) {
                add_refusals(device, figures, &instance->m_figures);
            }
            instance->m_legality = LEGALITY::DEPENDS;
        }
    }
}

}  // namespace advice
