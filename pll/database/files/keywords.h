// The keywords of family files.
#pragma once

#include "database/files/operands.h"

#include <span>

namespace pll_internal {

class PLL_FAMILY_FILE_READER;

// What must have been said before a statement can have an effect; without it the statement is
// skipped, operands unseen.
enum class PLL_SCOPE
{
    ANYWHERE,     // nothing
    FAMILY,       // a family
    PLL_TYPE,     // a family and a PLL type
    SPEED_GRADE,  // a family, a PLL type and a speed grade
    PART,         // a part
    RECONFIG      // a reconfiguration type
};

// What a statement makes the current one for those that follow.
enum class PLL_SELECTION
{
    NOTHING,  // it stores a value
    INCLUDED_FILE,
    FAMILY,
    PLL_TYPE,
    SPEED_GRADE,
    PART,
    RECONFIG
};

// One keyword: where it may stand, what follows it and what it does.
struct PLL_KEYWORD
{
    // Carries the statement out. Returns why it has no effect or is an error, NONE when it was
    // stored; whoever listens to the reader has heard of it then, but of exhausted memory.
    typedef PLL_FINDING (*SETTER)(PLL_FAMILY_FILE_READER& reader, const PLL_OPERANDS& operands);

    const char* m_keyword;
    PLL_SCOPE m_scope;
    PLL_OPERAND_KIND m_kind;
    SETTER m_set;
    PLL_SELECTION m_selects = PLL_SELECTION::NOTHING;
};

// All keywords, in alphabetical order.
std::span<const PLL_KEYWORD> get_keywords();

// The keyword `name`, whatever its case; null when there is none.
const PLL_KEYWORD* find_keyword(const char* name);

// The keyword that selects a family, a PLL type and so on.
const char* pll_keyword_of(PLL_SELECTION selection);

}  // namespace pll_internal
