#include "database/watch/statement_watch.h"

#include "database/watch/tell.h"

namespace pll_internal {

PLL_STATEMENT_WATCH::PLL_STATEMENT_WATCH(const PLL_FAMILY_FILE_READER& reader,
                                         PLL_READ_OBSERVER* observer)
    : m_reader(reader), m_line(observer)
{
}

void PLL_STATEMENT_WATCH::begin_line(const char* line, const PLL_INPUT_FILE& file,
                                     const char* file_name)
{
    m_line.begin(line, file, file_name);
}

void PLL_STATEMENT_WATCH::hear_of_file(const PLL_FAULT& fault, const char* file, int line)
{
    m_line.tell_of_file(fault, file, line);
}

PLL_READ_FINDING PLL_STATEMENT_WATCH::finding() const
{
    const PLL_KEYWORD* const keyword = m_reader.statement().m_keyword;
    PLL_READ_FINDING event;
    event.m_keyword = keyword == nullptr ? "" : keyword->m_keyword;
    event.m_family = m_reader.m_family;
    event.m_type = m_reader.m_type;
    event.m_part = m_reader.m_part;
    return event;
}

void PLL_STATEMENT_WATCH::hear(const PLL_FAULT& fault)
{
    const PLL_READ_FINDING shared = finding();
    PLL_READ_FINDING event = m_line.finding_of(fault);
    event.m_vocabulary = vocabulary_of(fault.m_finding);
    event.m_keyword = shared.m_keyword;
    event.m_family = shared.m_family;
    event.m_type = shared.m_type;
    event.m_part = shared.m_part;
    tell(m_line.get_observer(), event);
}

// The words that would have been right.
PLL_VOCABULARY PLL_STATEMENT_WATCH::vocabulary_of(PLL_FINDING finding) const
{
    struct ROW
    {
        PLL_FINDING m_finding;
        PLL_VOCABULARY m_vocabulary;
    };
    const ROW ROWS[] = {
        {PLL_FINDING::UNKNOWN_KEYWORD, PLL_VOCABULARY::KEYWORDS},
        {PLL_FINDING::UNKNOWN_PLL_TYPE, PLL_VOCABULARY::PLL_TYPES},
        {PLL_FINDING::UNKNOWN_RECONFIG_TYPE, PLL_VOCABULARY::RECONFIG_TYPES},
        {PLL_FINDING::QUOTED_RECONFIG_TYPE, PLL_VOCABULARY::RECONFIG_TYPES},
        {PLL_FINDING::UNKNOWN_COUNTER, PLL_VOCABULARY::COUNTERS},
        {PLL_FINDING::UNKNOWN_FLAG, PLL_VOCABULARY::FLAGS},
    };
    for (const ROW& row : ROWS) {
        if (row.m_finding == finding) {
            return row.m_vocabulary;
        }
    }
    const PLL_KEYWORD* const keyword = m_reader.statement().m_keyword;
    const bool takes_counters = keyword != nullptr && keyword->m_kind == PLL_OPERAND_KIND::COUNTERS;
    return finding == PLL_FINDING::LIST_EMPTY && takes_counters ? PLL_VOCABULARY::COUNTERS
                                                                : PLL_VOCABULARY::NONE;
}

void PLL_STATEMENT_WATCH::end_line(PLL_FINDING reason, PLL_WORDS* rest)
{
    PLL_READ_STATEMENT event = statement();
    event.m_reason = reason;
    event.m_result = reason == PLL_FINDING::NONE ? PLL_READ_RESULT::STORED
                     : pll_is_read_error(reason) ? PLL_READ_RESULT::FAILED
                                                 : PLL_READ_RESULT::SKIPPED;
    if (reason == PLL_FINDING::OUT_OF_MEMORY) {
        hear({reason, m_reader.statement().m_word});
    } else if (event.m_result != PLL_READ_RESULT::FAILED && m_reader.statement().m_is_in_scope) {
        m_line.tell_of_rest(rest, finding());
    }
    tell(m_line.get_observer(), event);
}

PLL_READ_STATEMENT PLL_STATEMENT_WATCH::statement() const
{
    const PLL_STATEMENT& statement = m_reader.statement();
    PLL_READ_STATEMENT event;
    event.m_place = m_line.place_of(statement.m_word);
    if (statement.m_keyword != nullptr) {
        event.m_keyword = statement.m_keyword->m_keyword;
    }
    if (statement.m_is_in_scope) {
        add_records(*statement.m_keyword, &event);
    }
    return event;
}

void PLL_STATEMENT_WATCH::add_records(const PLL_KEYWORD& keyword, PLL_READ_STATEMENT* event) const
{
    switch (keyword.m_scope) {
    case PLL_SCOPE::ANYWHERE:
        if (keyword.m_selects == PLL_SELECTION::PLL_TYPE) {
            event->m_type = m_reader.m_type;
        } else if (keyword.m_selects == PLL_SELECTION::FAMILY) {
            event->m_family = m_reader.m_family;
        }
        break;
    case PLL_SCOPE::FAMILY:
        event->m_family = m_reader.m_family;
        event->m_speed_grade = m_reader.m_speed_grade;
        break;
    case PLL_SCOPE::PLL_TYPE:
        event->m_family = m_reader.m_family;
        event->m_type = m_reader.m_type;
        break;
    case PLL_SCOPE::SPEED_GRADE:
        event->m_family = m_reader.m_family;
        event->m_type = m_reader.m_type;
        event->m_speed_grade = m_reader.m_speed_grade;
        event->m_part = m_reader.m_part;
        break;
    case PLL_SCOPE::PART:
        event->m_family = m_reader.m_part_owner.m_family;
        event->m_type = m_reader.m_part_owner.m_type;
        event->m_part = m_reader.m_part;
        event->m_speed_grade = m_reader.m_part->m_speed_grade;
        break;
    case PLL_SCOPE::RECONFIG:
        event->m_family = m_reader.m_reconfig_owner.m_family;
        event->m_type = m_reader.m_reconfig_owner.m_type;
        break;
    }
}

}  // namespace pll_internal
