// pll_model_compare: sets the library against the plain model on random requests.
//
//   pll_model_compare [--requests N] [--seed S] [--kind K] [--debug on|off]
//
// Request i of kind K is made of seed S + i. Without --kind the kinds take turns; those whose
// searches are long, BUILT_IN and HAIR, do less often. Every tenth request is made once more with
// debugging on, in a directory of its own, and the trace compared; with --debug on each is, and
// only that way. Ends with 1 at the first difference, after printing the case in a form that can be
// run again.
#include "comparison.h"
#include "comparison_run.h"

#include "temp_dir.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

constexpr std::uint64_t RATIOS_EVERY = 7;
constexpr std::uint64_t COPY_EVERY = 5;
constexpr std::uint64_t DEBUG_EVERY = 10;
constexpr std::uint64_t TURNS_OF_BUILT_IN = 5;
constexpr std::uint64_t TURNS_OF_HAIR = 100;

struct OPTIONS
{
    std::uint64_t m_requests = 20000;
    std::uint64_t m_seed = 1;
    CASE_KIND m_kind = CASE_KIND::COUNT;  // COUNT: all in turn
    bool m_debug = false;
};

bool read_options(int argc, char** argv, OPTIONS* options)
{
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        if (name == "--requests") {
            options->m_requests = std::strtoull(argv[i + 1], nullptr, 10);
        } else if (name == "--seed") {
            options->m_seed = std::strtoull(argv[i + 1], nullptr, 10);
        } else if (name == "--debug") {
            options->m_debug = std::strcmp(argv[i + 1], "on") == 0;
        } else if (name == "--kind") {
            options->m_kind = find_case_kind(argv[i + 1]);
            if (options->m_kind == CASE_KIND::COUNT) {
                return false;
            }
        } else {
            return false;
        }
    }
    return argc % 2 == 1 && options->m_requests > 0;
}

CASE_KIND kind_at(const OPTIONS& options, std::uint64_t i)
{
    if (options.m_kind != CASE_KIND::COUNT) {
        return options.m_kind;
    }
    constexpr std::uint64_t KINDS = static_cast<std::uint64_t>(CASE_KIND::COUNT);
    const CASE_KIND kind = static_cast<CASE_KIND>(i % KINDS);
    const std::uint64_t turn = i / KINDS;
    const bool waits = (kind == CASE_KIND::BUILT_IN && turn % TURNS_OF_BUILT_IN != 0) ||
                       (kind == CASE_KIND::HAIR && turn % TURNS_OF_HAIR != 0);
    return waits ? CASE_KIND::MIXED : kind;
}

void count(const RANDOM_CASE& random_case, const COMPARISON& comparison, COUNTS* counts)
{
    const MODEL_PROP& request = random_case.m_request;
    ++(*counts)[std::string("kind ") + case_kind_name(random_case.m_kind)];
    if (comparison.m_met) {
        ++(*counts)[comparison.m_has_relative_error ? "met within a thousandth" : "met exactly"];
    } else {
        ++(*counts)["not met, error " + std::to_string(comparison.m_error)];
    }
    const auto count_if = [counts](bool condition, const char* name) {
        (*counts)[name] += condition ? 1U : 0U;
    };
    count_if(request.m_down_spread != 0.0, "with spread spectrum");
    count_if(random_case.m_has_device && random_case.m_device.m_use_bandwidth_settings_table,
             "with a bandwidth table");
    count_if(request.m_feedback_tap >= 0, "with a feedback output");
    count_if(request.m_fin2_period > 0, "with a second input");
    count_if(random_case.m_pll.m_output_counter_cascade, "with cascades allowed");
    count_if(request.m_vco_mult > 0 && request.m_vco_div > 0, "with a VCO ratio");
    count_if(comparison.m_reports > 0, "with internal errors");
    count_if(comparison.m_met && !is_sane(random_case.m_kind), "hostile and met");
}

bool order_is_free(const RANDOM_CASE& random_case)
{
    const bool rule =
        random_case.m_has_device && random_case.m_device.m_is_pfd_bandwidth_rule_an_error;
    return is_sane(random_case.m_kind) && random_case.m_request.m_feedback_tap < 0 &&
           !random_case.m_pll.m_output_counter_cascade && !rule;
}

bool widening_is_safe(const RANDOM_CASE& random_case)
{
    return is_sane(random_case.m_kind) && !random_case.m_has_device &&
           random_case.m_request.m_bandwidth_type == 3 &&
           random_case.m_request.m_down_spread == 0.0;
}

// What is wrong with one case; empty when nothing is.
std::string run_case(const RANDOM_CASE& random_case, std::uint64_t i, COUNTS* counts)
{
    const COMPARISON comparison = compare_case(random_case);
    std::string findings = comparison.m_difference;
    if (!comparison.m_refusal.empty()) {
        findings += "the verifier objects:\n" + comparison.m_refusal;
    }
    count(random_case, comparison, counts);
    if (i % RATIOS_EVERY == 0 && random_case.m_kind != CASE_KIND::BUILT_IN) {
        findings += compare_ratios(random_case);
        ++(*counts)["checked: listings of ratios"];
    }
    if (i % COPY_EVERY == 0) {
        findings += check_copy(random_case);
        ++(*counts)["checked: copies"];
    }
    if (i % COPY_EVERY == 1 && order_is_free(random_case)) {
        findings += check_order(random_case);
        ++(*counts)["checked: order of outputs"];
    }
    if (i % DEBUG_EVERY == DEBUG_EVERY - 1) {
        findings += compare_debugging(random_case);
        ++(*counts)["checked: debugging"];
    }
    if (i % COPY_EVERY == 2 && widening_is_safe(random_case)) {
        findings += check_wider_limits(random_case);
        ++(*counts)["checked: wider limits"];
    }
    return findings;
}

bool run_all(const OPTIONS& options, COUNTS* counts)
{
    const std::string defaults = check_defaults();
    if (!defaults.empty()) {
        std::cout << "defaults:\n" << defaults;
        return false;
    }
    const PLL anchor(0, PLL_MAX_TAPS);  // keeps the shared lists alive between the cases
    for (std::uint64_t i = 0; i < options.m_requests; ++i) {
        const RANDOM_CASE random_case = make_random_case(kind_at(options, i), options.m_seed + i);
        const std::string findings =
            options.m_debug ? compare_debugging(random_case) : run_case(random_case, i, counts);
        if (!findings.empty()) {
            std::cout << findings << describe_case(random_case);
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    OPTIONS options;
    if (!read_options(argc, argv, &options)) {
        std::cerr
            << "usage: pll_model_compare [--requests N] [--seed S] [--kind K] [--debug on|off]\n";
        return 2;
    }
    const TEMP_WORKING_DIR traces;
    return run_comparison({options.m_seed, options.m_requests}, "requests",
                          [&](COUNTS* counts) { return run_all(options, counts); });
}
