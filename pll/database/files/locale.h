// The numeric locale "C" for as long as an object lives, so that '.' is the decimal point.
#pragma once

namespace pll_internal {

class PLL_NUMERIC_LOCALE
{
public:
    PLL_NUMERIC_LOCALE();
    ~PLL_NUMERIC_LOCALE();
    PLL_NUMERIC_LOCALE(const PLL_NUMERIC_LOCALE&) = delete;
    PLL_NUMERIC_LOCALE& operator=(const PLL_NUMERIC_LOCALE&) = delete;

    // False when memory for the name of the locale before is exhausted; nothing was changed then.
    bool is_set() const { return m_is_set; }

private:
    bool m_is_set;
    char* m_saved_name;  // null: nothing to restore
};

}  // namespace pll_internal
