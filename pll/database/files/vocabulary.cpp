// The words that the format knows, once: the readers look them up here, and observers list them.
#include "database/files/vocabulary.h"

#include "gen_string.h"
#include "pll_observer.h"

#include "database/files/keywords.h"

#include <algorithm>
#include <iterator>

using namespace pll_internal;

namespace {

const char* const PLL_TYPE_STRINGS[] = {"ENHANCED_PLL", "FAST_PLL", "FAST_PLL_HIGH_SPEED",
                                        "VESTRA_PLL"};
static_assert(std::size(PLL_TYPE_STRINGS) == PLL_TYPE_MAX);

const char* const RECONFIG_TYPE_STRINGS[] = {"none", "short", "long", "enhanced"};
static_assert(std::size(RECONFIG_TYPE_STRINGS) == PLL_RECONFIG_TYPE_MAX);

const char* const COUNTER_TYPE_STRINGS[] = {"L0", "L1", "G0", "G1", "G2",    "G3",   "E0",
                                            "E1", "E2", "E3", "C0", "C1",    "C2",   "C3",
                                            "C4", "C5", "M",  "N",  "L0TAP", "L1TAP"};
static_assert(std::size(COUNTER_TYPE_STRINGS) == CDB_PLL_COUNTER_TYPE_MAX);

// Flags: the first of them are true, the others false.
const char* const FLAG_STRINGS[] = {"true", "yes", "on", "false", "no", "off"};
const int NUMBER_OF_TRUE_WORDS = 3;
const int NUMBER_OF_FLAGS = static_cast<int>(std::size(FLAG_STRINGS));

// The place of `name` in `names`, their number when it is none of them.
template <std::size_t COUNT>
int find_name(const char* name, const char* const (&names)[COUNT])
{
    return static_cast<int>(
        std::find_if(std::begin(names), std::end(names),
                     [name](const char* other) { return gen_stricmp(name, other) == 0; }) -
        std::begin(names));
}

template <std::size_t COUNT>
const char* word_at(const char* const (&words)[COUNT], int index)
{
    return index >= 0 && index < static_cast<int>(COUNT) ? words[index] : nullptr;
}

const char* keyword_at(int index)
{
    const std::span<const PLL_KEYWORD> keywords = get_keywords();
    return index >= 0 && index < static_cast<int>(keywords.size())
               ? keywords[static_cast<std::size_t>(index)].m_keyword
               : nullptr;
}

}  // namespace

namespace pll_internal {

PLL_FLAG pll_find_flag(const char* word)
{
    const int place = word == nullptr ? NUMBER_OF_FLAGS : find_name(word, FLAG_STRINGS);
    if (place == NUMBER_OF_FLAGS) {
        return PLL_FLAG::UNKNOWN;
    }
    return place < NUMBER_OF_TRUE_WORDS ? PLL_FLAG::IS_TRUE : PLL_FLAG::IS_FALSE;
}

PLL_TYPE_ENUM pll_find_type(const char* name)
{
    return name == nullptr ? PLL_TYPE_MAX
                           : static_cast<PLL_TYPE_ENUM>(find_name(name, PLL_TYPE_STRINGS));
}

PLL_RECONFIG_TYPE_ENUM pll_find_reconfig_type(const char* name)
{
    return name == nullptr
               ? PLL_RECONFIG_TYPE_MAX
               : static_cast<PLL_RECONFIG_TYPE_ENUM>(find_name(name, RECONFIG_TYPE_STRINGS));
}

CDB_PLL_COUNTER_TYPE_ENUM pll_find_counter_type(const char* name)
{
    return name == nullptr
               ? CDB_PLL_COUNTER_TYPE_MAX
               : static_cast<CDB_PLL_COUNTER_TYPE_ENUM>(find_name(name, COUNTER_TYPE_STRINGS));
}

}  // namespace pll_internal

const char* pll_get_word(PLL_VOCABULARY vocabulary, int index)
{
    switch (vocabulary) {
    case PLL_VOCABULARY::NONE:
        return nullptr;
    case PLL_VOCABULARY::KEYWORDS:
        return keyword_at(index);
    case PLL_VOCABULARY::PLL_TYPES:
        return word_at(PLL_TYPE_STRINGS, index);
    case PLL_VOCABULARY::RECONFIG_TYPES:
        return word_at(RECONFIG_TYPE_STRINGS, index);
    case PLL_VOCABULARY::COUNTERS:
        return word_at(COUNTER_TYPE_STRINGS, index);
    case PLL_VOCABULARY::FLAGS:
        return word_at(FLAG_STRINGS, index);
    }
    return nullptr;
}
