// Times the library beside a lean loop that gives the same answers, and prints what was measured
// beside what is wanted. A wrong answer makes the program fail: a comparison of times says nothing
// when the work is not the same.
//
//   pll_bench [--benchmark_filter=...] [SECTION...]     all sections without a word
#include "sections.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

struct SECTION
{
    const char* m_name;
    void (*m_measure)(TARGET_TABLE* table);
};

constexpr SECTION SECTIONS[] = {
    {"grid", measure_grid},
    {"calls", measure_calls},
    {"worst", measure_worst_requests},
    {"crowds", measure_crowds},
    {"tables", measure_tables},
    {"ratios", measure_ratios},
    {"wide", measure_wide_counters},
    {"corners", measure_corners},
    {"files", measure_files},
    {"processes", measure_processes},
};

bool is_section(std::string_view word)
{
    return std::any_of(std::begin(SECTIONS), std::end(SECTIONS),
                       [word](const SECTION& section) { return word == section.m_name; });
}

int refuse(const char* word)
{
    std::fprintf(stderr, "pll_bench: %s is no section; there are", word);
    for (const SECTION& section : SECTIONS) {
        std::fprintf(stderr, " %s", section.m_name);
    }
    std::fprintf(stderr, "\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    const auto unknown = std::find_if_not(words.begin(), words.end(), is_section);
    if (unknown != words.end()) {
        return refuse(unknown->data());
    }
    TARGET_TABLE table;
    for (const SECTION& section : SECTIONS) {
        if (words.empty() || std::find(words.begin(), words.end(), section.m_name) != words.end()) {
            section.m_measure(&table);
        }
    }
    benchmark::Shutdown();
    table.print();
    return table.has_errors() ? 1 : 0;
}
