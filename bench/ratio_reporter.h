// Prints the measurements as they come, and at the end what they are for: how long the library
// takes and how many times longer the lean loop took in the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

// The name under which one side of a pair is measured: "ROW/PERIOD/lean" or "ROW/PERIOD/library".
std::string lean_name(const std::string& row, int fin_period);
std::string library_name(const std::string& row, int fin_period);

struct MEASURED_PAIR
{
    std::string m_row;
    int m_fin_period;  // ps
    double m_lean_us;
    double m_library_us;

    double get_ratio() const { return m_lean_us / m_library_us; }
};

class RATIO_REPORTER : public benchmark::ConsoleReporter
{
public:
    RATIO_REPORTER() : ConsoleReporter(OO_None), m_failures(0) {}

    // Takes the shortest of the repetitions: other load only ever adds.
    void ReportRuns(const std::vector<Run>& runs) override;

    // Prints the two tables and the geometric means.
    void Finalize() override;

    // The pairs whose row begins with `work`.
    std::vector<MEASURED_PAIR> get_pairs(const std::string& work) const;

    // Measurements that were given up because of a wrong answer.
    int get_failures() const { return m_failures; }

private:
    struct PAIR
    {
        double m_lean;     // s; 0: not measured
        double m_library;  // s
    };

    void take(const Run& run);
    void print_table(const char* title, double (*cell)(const PAIR&)) const;
    void print_means() const;

    std::vector<std::string> m_rows;  // in the order of measuring
    std::map<std::string, std::map<int, PAIR>> m_pairs;
    std::map<int, bool> m_periods;
    int m_failures;
};
