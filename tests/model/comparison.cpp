#include "comparison.h"

#include "field_compare.h"
#include "model.h"
#include "report_gatherer.h"

#include "verifier.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

MODEL_PLL start_of(const RANDOM_CASE& random_case, const REAL_CASE& real)
{
    MODEL_PLL pll = random_case.m_pll;
    pll.m_id = real.m_pll.m_id;
    pll.m_device = random_case.m_has_device ? &random_case.m_device : nullptr;
    return pll;
}

bool synthesize(REAL_CASE* real, MODEL_REPORTS* reports)
{
    const REPORT_GATHERER gatherer(reports);
    return real->m_pll.synthesize(real->m_request);
}

void compare_properties(const RANDOM_CASE& random_case, const REAL_CASE& real,
                        const MODEL_PLL& model, std::ostream& stream)
{
    MODEL_REPORTS library_reports;
    MODEL_REPORTS model_reports;
    PLL_PROP achieved(0);
    achieved.m_taps_count = random_case.m_request.m_taps_count;
    achieved.m_fin_period = random_case.m_request.m_fin_period;
    MODEL_PROP expected;
    expected.m_taps_count = achieved.m_taps_count;
    expected.m_fin_period = achieved.m_fin_period;
    {
        const REPORT_GATHERER gatherer(&library_reports);
        achieved.set_properties_from_internals(real.m_pll);
    }
    model_set_properties(&expected, model, model_reports);
    FIELD_COMPARE compare = {stream};
    visit_prop(achieved, expected, compare);
    compare_reports("properties", library_reports, model_reports, stream);
}

bool is_approximate(const RANDOM_CASE& random_case, const PLL& pll)
{
    const MODEL_PROP& request = random_case.m_request;
    for (int i = 0; i < request.m_taps_count && i < MODEL_MAX_TAPS; ++i) {
        const double asked = static_cast<double>(request.m_taps[i].m_mult) * pll.m_n.m_count *
                             pll.get_combined_count(i);
        const int feedback = pll.m_feedback_tap;
        const double m = static_cast<double>(pll.m_m.m_count) *
                         pll.get_combined_count(feedback < 0 ? -1 : feedback);
        if (asked != m * request.m_taps[i].m_div) {
            return true;
        }
    }
    return false;
}

std::string refusal_of(const RANDOM_CASE& random_case, const REAL_CASE& result)
{
    const REAL_CASE before(random_case);
    std::string text;
    for (const std::string& objection :
         verify_result(before.m_request, before.m_pll, result.m_pll).m_objections) {
        text += objection + '\n';
    }
    return text;
}

// "M" and "N" of the candidates in "debug.log", each on a line of its own.
std::string read_traced_candidates()
{
    std::ifstream log("debug.log");
    std::string candidates;
    for (std::string line; std::getline(log, line);) {
        if (line.rfind("----------Best Candidate", 0) == 0) {
            break;
        }
        if (line.rfind("M limit", 0) != 0 &&
            (line.rfind("M ", 0) == 0 || line.rfind("N ", 0) == 0)) {
            candidates += line + '\n';
        }
    }
    return candidates;
}

std::string text_of(const std::vector<MODEL_VISIT>& visits)
{
    std::string text;
    for (const MODEL_VISIT& visit : visits) {
        text += "M " + std::to_string(visit.m_m) + "\nN " + std::to_string(visit.m_n) + '\n';
    }
    return text;
}

}  // namespace

std::string compare_debugging(const RANDOM_CASE& random_case)
{
    std::ostringstream stream;
    REAL_CASE real(random_case);
    MODEL_PLL model = start_of(random_case, real);
    real.m_pll.m_debug = true;
    model.m_debug = true;
    MODEL_REPORTS
    library_reports;  // the trace shows candidates as users see them, and reports more
    MODEL_REPORTS model_reports;
    std::vector<MODEL_VISIT> visits;
    std::remove("debug.log");
    const bool met = synthesize(&real, &library_reports);
    if (met != model_synthesize(&model, random_case.m_request, random_case.m_parts, model_reports,
                                &visits)) {
        stream << "result with debugging on: library " << met << '\n';
    }
    FIELD_COMPARE compare = {stream};
    visit_pll(real.m_pll, model, compare);
    if (read_traced_candidates() != text_of(visits)) {
        stream << "the trace is not that of " << visits.size() << " candidates in order\n";
    }
    return stream.str();
}

COMPARISON compare_case(const RANDOM_CASE& random_case)
{
    COMPARISON comparison;
    std::ostringstream stream;
    REAL_CASE real(random_case);
    MODEL_PLL model = start_of(random_case, real);
    MODEL_REPORTS library_reports;
    MODEL_REPORTS model_reports;
    comparison.m_met = synthesize(&real, &library_reports);
    const bool model_met =
        model_synthesize(&model, random_case.m_request, random_case.m_parts, model_reports);
    if (comparison.m_met != model_met) {
        stream << "result: library " << comparison.m_met << ", model " << model_met << '\n';
    }
    FIELD_COMPARE compare = {stream};
    visit_pll(real.m_pll, model, compare);
    if (real.m_pll.m_info.m_basic_info !=
        (random_case.m_has_device ? &real.m_basic_info : nullptr)) {
        stream << "the device description was exchanged\n";
    }
    compare_reports("synthesis", library_reports, model_reports, stream);
    compare_properties(random_case, real, model, stream);
    comparison.m_difference = stream.str();
    comparison.m_error = static_cast<int>(real.m_pll.m_error);
    comparison.m_reports = static_cast<int>(library_reports.size());
    if (comparison.m_met && is_sane(random_case.m_kind)) {
        comparison.m_has_relative_error = is_approximate(random_case, real.m_pll);
        comparison.m_refusal = refusal_of(random_case, real);
    }
    return comparison;
}

std::string compare_ratios(const RANDOM_CASE& random_case)
{
    std::ostringstream stream;
    REAL_CASE real(random_case);
    const MODEL_PLL model = start_of(random_case, real);
    MODEL_REPORTS library_reports;
    MODEL_REPORTS model_reports;
    int* mults = nullptr;
    int* divs = nullptr;
    std::size_t count = 0;
    {
        const REPORT_GATHERER gatherer(&library_reports);
        count = static_cast<std::size_t>(
            real.m_pll.find_vco_mult_div_values(&mults, &divs, random_case.m_request.m_fin_period));
    }
    const std::vector<MODEL_RATIO> expected =
        model_list_ratios(model, random_case.m_request.m_fin_period, model_reports);
    if (count != expected.size()) {
        stream << "ratios: library " << count << ", model " << expected.size() << '\n';
        return stream.str();
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (mults[i] != expected[i].m_mult || divs[i] != expected[i].m_div) {
            stream << "ratio " << i << ": library " << mults[i] << '/' << divs[i] << ", model "
                   << expected[i].m_mult << '/' << expected[i].m_div << '\n';
        }
    }
    compare_reports("ratios", library_reports, model_reports, stream);
    return stream.str();
}

std::string check_copy(const RANDOM_CASE& random_case)
{
    std::ostringstream stream;
    REAL_CASE real(random_case);
    PLL copy(0, PLL_MAX_TAPS);
    copy = real.m_pll;
    MODEL_REPORTS reports;
    MODEL_REPORTS copy_reports;
    const bool met = synthesize(&real, &reports);
    bool copy_met = false;
    {
        const REPORT_GATHERER gatherer(&copy_reports);
        copy_met = copy.synthesize(real.m_request);
    }
    if (met != copy_met) {
        stream << "result: original " << met << ", copy " << copy_met << '\n';
    }
    FIELD_COMPARE compare = {stream};
    visit_pll(real.m_pll, copy, compare);
    compare_reports("copy", reports, copy_reports, stream);
    return stream.str();
}

std::string check_order(const RANDOM_CASE& random_case)
{
    RANDOM_CASE turned = random_case;
    const int taps = random_case.m_request.m_taps_count;
    for (int i = 0; i < taps; ++i) {
        turned.m_request.m_taps[i] = random_case.m_request.m_taps[taps - 1 - i];
        turned.m_pll.m_taps[i] = random_case.m_pll.m_taps[taps - 1 - i];
    }
    MODEL_REPORTS reports;
    REAL_CASE one(random_case);
    const bool met = synthesize(&one, &reports);
    REAL_CASE other(turned);
    const bool turned_met = synthesize(&other, &reports);
    return met == turned_met ? "" : "listing the outputs backwards changes the result\n";
}

std::string check_wider_limits(const RANDOM_CASE& random_case)
{
    MODEL_REPORTS reports;
    REAL_CASE narrow(random_case);
    if (!synthesize(&narrow, &reports)) {
        return "";
    }
    RANDOM random(random_case.m_seed);
    RANDOM_CASE wider = random_case;
    MODEL_PLL& pll = wider.m_pll;
    pll.m_m.m_max_count += random.between(0, 20);
    pll.m_n.m_max_count += random.between(0, 20);
    pll.m_pfd_min_period -= random.between(0, 300);
    pll.m_pfd_max_period += random.between(0, 3000);
    pll.m_max_vco_post_scale = random.between(pll.m_max_vco_post_scale, 2);
    for (int scale = 0; scale <= MODEL_MAX_POST_SCALE; ++scale) {
        pll.m_vco_min_period[scale] -= random.between(0, 300);
        pll.m_vco_max_period[scale] += random.between(0, 300);
    }
    for (MODEL_TAP& tap : pll.m_taps) {
        tap.m_max_count += random.between(0, 5);
    }
    REAL_CASE wide(wider);
    return synthesize(&wide, &reports) ? "" : "wider limits lose a request that was met\n";
}

std::string check_defaults()
{
    std::ostringstream stream;
    FIELD_COMPARE compare = {stream};
    PLL pll(0, 0);
    MODEL_PLL usual_pll;
    usual_pll.m_id = pll.m_id;
    for (int i = 0; i < MODEL_MAX_TAPS; ++i) {
        usual_pll.m_taps[i].m_max_count = 512;
    }
    visit_pll(pll, usual_pll, compare);
    PLL_PROP prop(0);
    MODEL_PROP usual_prop;
    visit_prop(prop, usual_prop, compare);
    const MODEL_PARTS parts;
    const auto same = [](const MEM_VECTOR<int>& list, const std::vector<int>& usual) {
        return std::vector<int>(list.begin(), list.end()) == usual;
    };
    if (!same(PLL::m_impl->m_charge_pump_currents, parts.m_currents) ||
        !same(PLL::m_impl->m_resistors, parts.m_resistors)) {
        stream << "the built-in component lists differ\n";
    }
    return stream.str();
}
