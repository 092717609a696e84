#include "database/watch/path_watch.h"

#include "database/files/words.h"
#include "database/watch/tell.h"

namespace pll_internal {

PLL_PATH_WATCH::PLL_PATH_WATCH(PLL_READ_OBSERVER* observer) : m_line(observer)
{
    m_statement.m_kind = PLL_READ_KIND::PATH_LINE;
}

void PLL_PATH_WATCH::begin_line(const char* line, const PLL_INPUT_FILE& file, const char* file_name)
{
    m_line.begin(line, file, file_name);
    m_statement.m_place = m_line.place_of(line);
}

void PLL_PATH_WATCH::hear(const PLL_FAULT& fault)
{
    tell(m_line.get_observer(), m_line.finding_of(fault));
}

void PLL_PATH_WATCH::hear_of_family(const char* name, const PLL_FAMILY_INFO* family)
{
    m_statement.m_place = m_line.place_of(name);
    m_statement.m_family = family;
}

void PLL_PATH_WATCH::end_line(PLL_FINDING reason, PLL_WORDS* rest)
{
    if (reason != PLL_FINDING::NONE) {
        m_line.tell_of_file({reason}, m_statement.m_place.m_file, m_statement.m_place.m_line);
        return;
    }
    m_line.tell_of_rest(rest, PLL_READ_FINDING());
    tell(m_line.get_observer(), m_statement);
}

void PLL_PATH_WATCH::hear_of_file(const PLL_FAULT& fault, const char* file, int line)
{
    m_line.tell_of_file(fault, file, line);
}

}  // namespace pll_internal
