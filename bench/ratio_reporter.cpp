#include "ratio_reporter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

const char LEAN[] = "lean";
const char LIBRARY[] = "library";
constexpr int LABEL_WIDTH = 42;
constexpr double US_PER_S = 1e6;

std::string side_name(const std::string& row, int fin_period, const char* side)
{
    return row + '/' + std::to_string(fin_period) + '/' + side;
}

template <class PAIR>
bool is_measured(const PAIR& pair)
{
    return pair.m_lean > 0.0 && pair.m_library > 0.0;
}

// At most five figures, so that the columns of a table hold.
void print_number(double value)
{
    const int decimals = value < 10.0 ? 2 : value < 1000.0 ? 1 : 0;
    std::printf("%9.*f", decimals, value);
}

}  // namespace

std::string lean_name(const std::string& row, int fin_period)
{
    return side_name(row, fin_period, LEAN);
}

std::string library_name(const std::string& row, int fin_period)
{
    return side_name(row, fin_period, LIBRARY);
}

void RATIO_REPORTER::ReportRuns(const std::vector<Run>& runs)
{
    const Run* shortest = nullptr;
    for (const Run& run : runs) {
        if (run.error_occurred) {
            ++m_failures;
            shortest = &run;
            break;
        }
        const bool is_single = run.run_type == Run::RT_Iteration;
        if (is_single && (shortest == nullptr ||
                          run.cpu_accumulated_time / double(run.iterations) <
                              shortest->cpu_accumulated_time / double(shortest->iterations))) {
            shortest = &run;
        }
    }
    if (shortest != nullptr) {
        take(*shortest);
        ConsoleReporter::ReportRuns({*shortest});
    }
}

void RATIO_REPORTER::take(const Run& run)
{
    if (run.error_occurred) {
        return;
    }
    const std::string& name = run.run_name.function_name;
    const std::size_t side_at = name.rfind('/');
    const std::size_t period_at = name.rfind('/', side_at - 1);
    const std::string row = name.substr(0, period_at);
    const int period = std::atoi(name.c_str() + period_at + 1);
    const double seconds = run.cpu_accumulated_time / double(run.iterations);
    if (m_pairs.find(row) == m_pairs.end()) {
        m_rows.push_back(row);
    }
    PAIR& pair = m_pairs[row][period];
    (name.substr(side_at + 1) == LEAN ? pair.m_lean : pair.m_library) = seconds;
    m_periods[period] = true;
}

std::vector<MEASURED_PAIR> RATIO_REPORTER::get_pairs(const std::string& work) const
{
    std::vector<MEASURED_PAIR> pairs;
    for (const std::string& row : m_rows) {
        if (row.compare(0, work.size(), work) != 0) {
            continue;
        }
        for (const auto& [period, pair] : m_pairs.at(row)) {
            if (is_measured(pair)) {
                pairs.push_back({row, period, pair.m_lean * US_PER_S, pair.m_library * US_PER_S});
            }
        }
    }
    return pairs;
}

void RATIO_REPORTER::Finalize()
{
    ConsoleReporter::Finalize();
    print_table("Library, us", [](const PAIR& pair) { return pair.m_library * US_PER_S; });
    print_table("Times faster than the lean loop",
                [](const PAIR& pair) { return pair.m_lean / pair.m_library; });
    print_means();
    std::fflush(stdout);
}

void RATIO_REPORTER::print_table(const char* title, double (*cell)(const PAIR&)) const
{
    std::printf("\n%-*s", LABEL_WIDTH, title);
    for (const auto& period : m_periods) {
        std::printf("%6d ps", period.first);
    }
    std::printf("\n");
    for (const std::string& row : m_rows) {
        std::printf("%-*s", LABEL_WIDTH, row.c_str());
        const std::map<int, PAIR>& pairs = m_pairs.at(row);
        for (const auto& period : m_periods) {
            const auto found = pairs.find(period.first);
            if (found == pairs.end() || !is_measured(found->second)) {
                std::printf("%9s", "-");
            } else {
                print_number(cell(found->second));
            }
        }
        std::printf("\n");
    }
}

void RATIO_REPORTER::print_means() const
{
    std::map<std::string, std::vector<double>> logarithms;  // by the first word of the row
    for (const std::string& row : m_rows) {
        for (const auto& [period, pair] : m_pairs.at(row)) {
            if (is_measured(pair)) {
                const double ratio = pair.m_lean / pair.m_library;
                logarithms[row.substr(0, row.find(' '))].push_back(std::log(ratio));
            }
        }
    }
    std::printf("\n");
    for (const auto& [work, values] : logarithms) {
        double sum = 0.0;
        for (const double value : values) {
            sum += value;
        }
        const double least = *std::min_element(values.begin(), values.end());
        std::printf("%s: %.2f times in the geometric mean of %zu, %.2f at least\n", work.c_str(),
                    std::exp(sum / double(values.size())), values.size(), std::exp(least));
    }
}
