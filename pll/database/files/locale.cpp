#include "database/files/locale.h"

#include "database/memory.h"

#include <clocale>
#include <cstring>

namespace pll_internal {

// The name is copied, since setlocale gives a pointer into a text that its next call overwrites.
PLL_NUMERIC_LOCALE::PLL_NUMERIC_LOCALE() : m_is_set(true), m_saved_name(nullptr)
{
    const char* const name = std::setlocale(LC_NUMERIC, nullptr);
    if (name == nullptr || std::strcmp(name, "C") == 0) {
        return;
    }
    m_saved_name = manager_join(name);
    m_is_set = m_saved_name != nullptr;
    if (m_is_set) {
        std::setlocale(LC_NUMERIC, "C");
    }
}

PLL_NUMERIC_LOCALE::~PLL_NUMERIC_LOCALE()
{
    if (m_saved_name != nullptr) {
        std::setlocale(LC_NUMERIC, m_saved_name);
        manager_release(m_saved_name);
    }
}

}  // namespace pll_internal
