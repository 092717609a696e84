#include "database/watch/tell.h"

using namespace pll_internal;

PLL_READ_OBSERVER::~PLL_READ_OBSERVER() = default;

namespace pll_internal {

void tell(PLL_READ_OBSERVER* observer, const PLL_READ_FINDING& finding) noexcept
{
    try {
        observer->on_finding(finding);
    } catch (...) {
        return;
    }
}

void tell(PLL_READ_OBSERVER* observer, const PLL_READ_STATEMENT& statement) noexcept
{
    try {
        observer->on_statement(statement);
    } catch (...) {
        return;
    }
}

}  // namespace pll_internal
