#include "database/files/include_stack.h"

#include "database/memory.h"

namespace pll_internal {

PLL_INCLUDE_STACK::PLL_INCLUDE_STACK() : m_depth(0), m_opened_files(0), m_names() {}

PLL_INCLUDE_STACK::~PLL_INCLUDE_STACK()
{
    for (int i = 0; i < m_depth; ++i) {
        manager_release(m_names[i]);
    }
}

PLL_FINDING PLL_INCLUDE_STACK::refuse_file() const
{
    if (m_depth >= MAX_DEPTH) {
        return PLL_FINDING::INCLUDE_TOO_DEEP;
    }
    return m_opened_files >= MAX_OPENED_FILES ? PLL_FINDING::TOO_MANY_FILES : PLL_FINDING::NONE;
}

int PLL_INCLUDE_STACK::open(char* name, PLL_READ_BUDGET* budget, bool is_outside)
{
    const int error = m_files[m_depth].open(name, budget);
    if (error != 0) {
        manager_release(name);
        return error;
    }
    m_files[m_depth].set_outside(is_outside);
    m_names[m_depth] = name;
    ++m_depth;
    ++m_opened_files;
    return 0;
}

// A file that failed stays on top, so that it can be named.
bool PLL_INCLUDE_STACK::read_line(char* line)
{
    while (m_depth > 0 && m_files[m_depth - 1].is_at_end()) {
        if (get_error() != 0) {
            return false;
        }
        --m_depth;
        m_files[m_depth].close();
        manager_release(m_names[m_depth]);
    }
    return m_depth > 0 && m_files[m_depth - 1].read_line(line);
}

}  // namespace pll_internal
