// pll_answer_hash: one hash over the answers to random requests and over a database.
//
//   pll_answer_hash [--requests N] [--seed S] [--database DIRECTORY] [--rounding MODE]
//                   [--denormals kept|flushed] [--traps on|off] [--locale NAME] [--expect HASH]
//
// Prints the hash, the same for every build and host. MODE is nearest, up, down or zero. Ends with
// 1 when the hash is not the one expected, or when a sane request made the library divide by zero,
// overflow or compute what is no number.
#include "answer_hash.h"

#include "platform/host_state.h"

#include <cfenv>
#include <cinttypes>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <map>
#include <stdexcept>
#include <string>

using namespace pll_internal;

namespace {

struct OPTIONS
{
    std::uint64_t m_requests = 3000;
    std::uint64_t m_seed = 1;
    std::string m_database;
    std::string m_locale;
    std::string m_expected;
    HOST_SETUP m_setup = {FE_TONEAREST, false, false};
};

const std::map<std::string, int> ROUNDING_MODES = {
    {"nearest", FE_TONEAREST}, {"up", FE_UPWARD}, {"down", FE_DOWNWARD}, {"zero", FE_TOWARDZERO}};

bool read_option(const std::string& name, const std::string& value, OPTIONS* options)
{
    if (name == "--requests") {
        options->m_requests = std::strtoull(value.c_str(), nullptr, 10);
    } else if (name == "--seed") {
        options->m_seed = std::strtoull(value.c_str(), nullptr, 10);
    } else if (name == "--database") {
        options->m_database = value;
    } else if (name == "--locale") {
        options->m_locale = value;
    } else if (name == "--expect") {
        options->m_expected = value;
    } else if (name == "--denormals") {
        options->m_setup.m_flushes_denormals = value == "flushed";
    } else if (name == "--traps") {
        options->m_setup.m_traps = value == "on";
    } else if (name == "--rounding" && ROUNDING_MODES.count(value) != 0) {
        options->m_setup.m_rounding = ROUNDING_MODES.at(value);
    } else {
        return false;
    }
    return true;
}

bool read_options(int count, char** words, OPTIONS* options)
{
    for (int i = 1; i + 1 < count; i += 2) {
        if (!read_option(words[i], words[i + 1], options)) {
            return false;
        }
    }
    return count % 2 == 1;
}

CASE_KIND kind_at(std::uint64_t i)
{
    constexpr std::uint64_t KINDS = static_cast<std::uint64_t>(CASE_KIND::COUNT);
    constexpr std::uint64_t TURNS_OF_LONG_SEARCHES = 20;
    const CASE_KIND kind = static_cast<CASE_KIND>(i % KINDS);
    const bool is_long = kind == CASE_KIND::BUILT_IN || kind == CASE_KIND::HAIR;
    return is_long && i / KINDS % TURNS_OF_LONG_SEARCHES != 0 ? CASE_KIND::MIXED : kind;
}

// The locale of the C library and that of new streams; none without a name.
bool set_locale(const std::string& name)
{
    if (name.empty()) {
        return true;
    }
    try {
        std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
        return false;
    }
    return std::localeconv()->decimal_point == std::string(",");
}

// Whether the arithmetic of a request was sound.
bool report_flags(const RANDOM_CASE& random_case)
{
    const int flags = HOST_STATE::take_raised_flags() & (FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
    if (flags == 0 || !is_sane(random_case.m_kind)) {
        return true;
    }
    std::printf("%s%s%s of kind %s, seed %" PRIu64 "\n",
                (flags & FE_INVALID) != 0 ? "invalid " : "",
                (flags & FE_DIVBYZERO) != 0 ? "division by zero " : "",
                (flags & FE_OVERFLOW) != 0 ? "overflow " : "", case_kind_name(random_case.m_kind),
                random_case.m_seed);
    return false;
}

}  // namespace

int main(int count, char** words)
{
    OPTIONS options;
    if (!read_options(count, words, &options)) {
        std::fprintf(stderr, "pll_answer_hash: see the top of its source for the options\n");
        return 2;
    }
    if (!set_locale(options.m_locale)) {
        std::fprintf(stderr, "pll_answer_hash: there is no locale %s\n", options.m_locale.c_str());
        return 2;
    }
    HASH hash;
    bool is_sound = true;
    for (std::uint64_t i = 0; i < options.m_requests; ++i) {
        const RANDOM_CASE random_case = make_random_case(kind_at(i), options.m_seed + i);
        HOST_STATE::take_raised_flags();
        hash_answer(random_case, options.m_setup, &hash);
        is_sound = report_flags(random_case) && is_sound;
    }
    if (!options.m_database.empty() &&
        hash_database(options.m_database, options.m_setup, &hash) == 0) {
        std::printf("the database cannot be read\n");
        return 2;
    }
    char text[sizeof "0123456789abcdef"];
    std::snprintf(text, sizeof text, "%016" PRIx64, hash.get());
    std::printf("%s\n", text);
    if (!options.m_expected.empty() && options.m_expected != text) {
        std::printf("expected %s, as in tests/bits/answers.txt\n", options.m_expected.c_str());
        return 1;
    }
    return is_sound ? 0 : 1;
}
