// [[figure]] of a sheet, and below each [[figure.others]].

#include "advice/sheets/sheet_reader.h"

namespace advice {

namespace {

constexpr const char* KIND_NAMES[] = {"input",           "pfd", "vco", "output",
                                      "feedback_output", "n",   "m",   "count"};

// An other figure as written: bounds that it leaves out are the figure's.
struct RAW_OTHER : OTHER_FIGURE
{
    bool m_unlimited = false;
};

// A figure as written.
struct RAW_FIGURE : FIGURE
{
    std::vector<RAW_OTHER> m_raw_others;
};

template <class RECORD>
void read_least(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record)
{
    reader.read(node, &record->m_range.m_least.emplace());
}

template <class RECORD>
void read_most(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record)
{
    reader.read(node, &record->m_range.m_most.emplace());
}

template <class RECORD>
void read_values(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record)
{
    reader.read(node, &record->m_range.m_values);
}

void read_unlimited(SHEET_READER& reader, const SHEET_NODE& node, RAW_OTHER* other)
{
    if (node.m_kind != SHEET_NODE::KIND::BOOLEAN || node.m_number.is_zero()) {
        reader.report(node, "'unlimited' is true or left out");
    }
    other->m_unlimited = true;
}

constexpr SHEET_KEY<RAW_OTHER> OTHER_KEYS[] = {
    {"min", read_least<RAW_OTHER>},
    {"max", read_most<RAW_OTHER>},
    {"values", read_values<RAW_OTHER>},
    {"unlimited", read_unlimited},
    {"sources", read_member<RAW_OTHER, &RAW_OTHER::m_sources>, true},
    {"note", read_member<RAW_OTHER, &RAW_OTHER::m_note>},
};

void read_kind(SHEET_READER& reader, const SHEET_NODE& node, RAW_FIGURE* figure)
{
    read_name(reader, node, KIND_NAMES, &figure->m_kind);
}

void read_others(SHEET_READER& reader, const SHEET_NODE& node, RAW_FIGURE* figure)
{
    read_tables(reader, node, OTHER_KEYS, &figure->m_raw_others);
}

constexpr SHEET_KEY<RAW_FIGURE> FIGURE_KEYS[] = {
    {"what", read_kind, true},
    {"grades", read_member<RAW_FIGURE, &RAW_FIGURE::m_grades>},
    {"outputs", read_member<RAW_FIGURE, &RAW_FIGURE::m_outputs>},
    {"paths", read_member<RAW_FIGURE, &RAW_FIGURE::m_paths>},
    {"min", read_least<RAW_FIGURE>},
    {"max", read_most<RAW_FIGURE>},
    {"values", read_values<RAW_FIGURE>},
    {"sources", read_member<RAW_FIGURE, &RAW_FIGURE::m_sources>, true},
    {"note", read_member<RAW_FIGURE, &RAW_FIGURE::m_note>},
    {"others", read_others},
};

// The range of another source, with what it does not dispute.
OTHER_FIGURE complete(const RAW_OTHER& other, const FIGURE_RANGE& range)
{
    OTHER_FIGURE whole = other;
    if (!other.m_unlimited && other.m_range.m_values.empty()) {
        if (!whole.m_range.m_least) {
            whole.m_range.m_least = range.m_least;
        }
        if (!whole.m_range.m_most) {
            whole.m_range.m_most = range.m_most;
        }
    }
    return whole;
}

}  // namespace

void read_figures(SHEET_READER& reader, const SHEET_NODE& node, std::vector<FIGURE>* figures)
{
    for (const SHEET_NODE* table : reader.list_tables(node)) {
        RAW_FIGURE raw;
        read_table(reader, *table, FIGURE_KEYS, &raw);
        FIGURE& figure = figures->emplace_back(raw);
        figure.m_line = table->m_line;
        for (const RAW_OTHER& other : raw.m_raw_others) {
            figure.m_others.push_back(complete(other, figure.m_range));
        }
    }
}

}  // namespace advice
