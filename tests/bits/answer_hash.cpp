#include "answer_hash.h"

#include "model_database_fields.h"
#include "model_fields.h"

#include "msg_internal_error.h"
#include "pll.h"
#include "pll_manager.h"
#include "pll_prop.h"

#include <bit>
#include <cfenv>
#include <cmath>
#include <memory>
#include <sstream>

namespace {

constexpr std::uint64_t FNV_PRIME = 0x100000001b3U;
constexpr int BITS_OF_A_BYTE = 8;
constexpr std::uint64_t RATIOS_EVERY = 50;
constexpr int DIGITS = 17;

struct FIELD_HASHER
{
    HASH* m_hash;

    template <class A, class B>
    void operator()(const FIELD_NAME&, const A& a, const B&)
    {
        if constexpr (std::is_same_v<A, double>) {
            m_hash->add(a);
        } else {
            m_hash->add(static_cast<std::int64_t>(a));
        }
    }
};

void add_fields(const PLL& pll, HASH* hash)
{
    FIELD_HASHER hasher = {hash};
    visit_pll(pll, pll, hasher);
}

void add_fields(const PLL_PROP& prop, HASH* hash)
{
    FIELD_HASHER hasher = {hash};
    visit_prop(prop, prop, hasher);
}

void add_report(const char* condition, const char* component, const char*, int, void* context)
{
    HASH* const hash = static_cast<HASH*>(context);
    hash->add(std::string(condition));
    hash->add(std::string(component));
}

void add_dumps(const PLL& pll, const PLL_PROP& prop, HASH* hash)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(DIGITS);
    pll.dump(stream, false, false);
    pll.dump(stream, false, true);
    prop.dump(stream, false, false);
    prop.dump(stream, false, true);
    hash->add(stream.str());
}

void add_queries(const PLL& pll, int taps, int period, HASH* hash)
{
    hash->add(pll.get_phase_ps_resolution(period));
    hash->add(pll.get_m_over_n());
    for (int i = 0; i < taps && i < PLL_MAX_TAPS; ++i) {
        for (const double answer :
             {pll.get_phase_ps_min(i, period), pll.get_next_phase_ps(i, period),
              pll.get_prev_phase_ps(i, period), pll.get_next_sclkout_phase_ps(i, period),
              pll.get_prev_sclkout_phase_degree(i), pll.get_duty_cycle_resolution(i),
              pll.get_duty_cycle_min(i), pll.get_duty_cycle_max(i), pll.find_duty_cycle(i)}) {
            hash->add(answer);
        }
    }
}

void add_ratios(PLL* pll, int period, HASH* hash)
{
    int* mults = nullptr;
    int* divs = nullptr;
    const int count = pll->find_vco_mult_div_values(&mults, &divs, period);
    for (int i = 0; i < count; ++i) {
        hash->add(std::int64_t{mults[i]});
        hash->add(std::int64_t{divs[i]});
    }
}

void synthesize(PLL* pll, const PLL_PROP& request, HASH* hash)
{
    hash->add(std::int64_t{pll->synthesize(request)});
    add_fields(*pll, hash);
    PLL_PROP achieved(request.m_taps_count);
    achieved.m_fin_period = request.m_fin_period;
    achieved.set_properties_from_internals(*pll);
    add_fields(achieved, hash);
    add_dumps(*pll, achieved, hash);
    add_queries(*pll, request.m_taps_count, request.m_fin_period, hash);
}

// The library's objects know no float, so the environment is kept by whoever uses one.
std::fenv_t* environment_of(void* environment)
{
    return static_cast<std::fenv_t*>(environment);
}

void hash_device(PLL_MANAGER* manager, const PLL_QUERY& query, HASH* hash)
{
    constexpr int FIN_PERIOD = 37037;  // ps
    PLL pll(1, PLL_MAX_TAPS);
    hash->add(std::int64_t{manager->init_pll(&pll, query)});
    PLL_PROP request(1);
    request.m_fin_period = FIN_PERIOD;
    request.m_taps[0].m_mult = 11;
    request.m_taps[0].m_div = 2;
    synthesize(&pll, request, hash);
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(DIGITS);
    pll.m_info.dump_bandwidth_settings_table(stream);
    hash->add(stream.str());
}

}  // namespace

void HASH::add_byte(unsigned char byte)
{
    m_hash = (m_hash ^ byte) * FNV_PRIME;
}

void HASH::add(std::int64_t value)
{
    const std::uint64_t bits = static_cast<std::uint64_t>(value);
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        add_byte(static_cast<unsigned char>(bits >> (BITS_OF_A_BYTE * i)));
    }
}

void HASH::add(double value)
{
    add(std::isnan(value) ? std::int64_t{-1} : std::bit_cast<std::int64_t>(value));
}

void HASH::add(const std::string& text)
{
    add(static_cast<std::int64_t>(text.size()));
    for (const char c : text) {
        add_byte(static_cast<unsigned char>(c));
    }
}

HOST_SETTING::HOST_SETTING(const HOST_SETUP& setup) : m_environment(new std::fenv_t)
{
    std::fegetenv(environment_of(m_environment));
    std::fesetround(setup.m_rounding);
    std::feclearexcept(FE_ALL_EXCEPT);
#ifdef __SSE2_MATH__
    constexpr unsigned FLUSH = 0x8040;
    if (setup.m_flushes_denormals) {
        __builtin_ia32_ldmxcsr(__builtin_ia32_stmxcsr() | FLUSH);
    }
#endif
#ifdef __GLIBC__
    if (setup.m_traps) {
        feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
    }
#endif
}

HOST_SETTING::~HOST_SETTING()
{
    std::fenv_t* const environment = environment_of(m_environment);
    std::fesetenv(environment);
    delete environment;
}

void hash_answer(const RANDOM_CASE& random_case, const HOST_SETUP& setup, HASH* hash)
{
    MSG_INTERNAL_ERROR::set_handler(add_report, hash);
    {
        REAL_CASE real(random_case);
        const HOST_SETTING setting(setup);
        synthesize(&real.m_pll, real.m_request, hash);
        if (random_case.m_seed % RATIOS_EVERY == 0 && random_case.m_kind != CASE_KIND::BUILT_IN &&
            random_case.m_kind != CASE_KIND::HAIR) {
            add_ratios(&real.m_pll, real.m_request.m_fin_period, hash);
        }
    }
    MSG_INTERNAL_ERROR::set_handler(nullptr, nullptr);
}

int hash_database(const std::string& path, const HOST_SETUP& setup, HASH* hash)
{
    MSG_INTERNAL_ERROR::set_handler(add_report, hash);
    const HOST_SETTING setting(setup);
    PLL_MANAGER manager;
    int devices = 0;
    if (!manager.read(path.c_str())) {
        return 0;
    }
    for (int f = 0; f < manager.get_number_of_families(); ++f) {
        const char* const name = manager.get_family(f);
        const PLL_FAMILY_INFO* const family = manager.read_family_info(name);
        for (int p = 0; family != nullptr && p < family->m_number_of_parts; ++p) {
            const PLL_PART_INFO& part = *family->m_parts[p];
            PLL_QUERY query;
            query.m_family = name;
            query.m_type = part.m_type;
            query.m_part = part.m_name;
            query.m_speed_grade = part.m_speed_grade;
            hash_device(&manager, query, hash);
            ++devices;
        }
    }
    MSG_INTERNAL_ERROR::set_handler(nullptr, nullptr);
    return devices;
}
