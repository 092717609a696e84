// Messages on the files of a database: filtered by what the user allows, put in order, counted and
// handed to a printer while the files are read.
#pragma once

#include "app/lint/rules.h"
#include "app/source/hash_set.h"
#include "app/source/lines.h"
#include "app/source/readings.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

struct LINT_MESSAGE
{
    LINT_RULE m_rule;
    LINT_SEVERITY m_severity;
    SOURCE_PLACE m_place;
    std::string m_text;
};

// What was looked at and what was found.
struct LINT_SUMMARY
{
    std::array<std::size_t, 3> m_counts = {0, 0, 0};  // of messages, by severity
    std::size_t m_not_shown = 0;                      // of those, beyond the most that are wanted
    std::size_t m_files = 0;
    std::size_t m_families = 0;
    std::size_t m_parts = 0;
    std::size_t m_statements = 0;
    std::size_t m_rows = 0;
    bool m_is_unreadable = false;  // something could not be looked at
    int m_exit_status = 0;         // of the program

    std::size_t count(LINT_SEVERITY severity) const
    {
        return m_counts[static_cast<std::size_t>(severity)];
    }
};

class LINT_PRINTER
{
public:
    LINT_PRINTER() = default;
    virtual ~LINT_PRINTER();
    LINT_PRINTER(const LINT_PRINTER&) = delete;
    LINT_PRINTER& operator=(const LINT_PRINTER&) = delete;

    virtual void begin() = 0;
    virtual void print(const LINT_MESSAGE& message) = 0;
    virtual void end(const LINT_SUMMARY& summary) = 0;
};

// Which messages the user wants.
struct LINT_FILTER
{
    std::bitset<NUMBER_OF_LINT_RULES> m_disabled;
    std::bitset<NUMBER_OF_LINT_RULES> m_errors;  // count as errors, whatever they are
    std::size_t m_most = std::numeric_limits<std::size_t>::max();  // that are shown
    std::string m_only_file;                                       // empty: every file
};

class LINT_MESSAGES
{
public:
    // Without a printer, messages are counted alone.
    LINT_MESSAGES(const READINGS* readings, LINT_FILTER filter, LINT_PRINTER* printer);

    // A message of a file that is read several times is taken once for each place and rule.
    void add(LINT_RULE rule, const SOURCE_PLACE& place, std::string text);

    // Heeds "# lint: allow RULE, ..." in a comment: in its line, and where nothing stands before
    // it, in the next line too.
    void heed_comment(std::uint32_t reading, const TEXT_LINE& line, std::string_view comment);

    // Takes no message of a rule on the files of a folder.
    void allow_in_folder(const std::string& folder, LINT_RULE rule);

    // How many messages came, those included that nobody wants.
    std::size_t count_all() const { return m_number_of_messages; }

    // Prints what is kept back.
    void finish();

    // Messages come in the order of files as they were met, of lines and of columns, as long as
    // there are fewer than this; then that many are put in order at a time.
    static constexpr std::size_t MOST_KEPT = 65536;

    LINT_SUMMARY m_summary;

private:
    typedef std::bitset<NUMBER_OF_LINT_RULES> RULES;

    bool is_wanted(LINT_RULE rule, const SOURCE_PLACE& place);
    bool is_allowed_in_folder(LINT_RULE rule, const SOURCE_PLACE& place) const;
    bool is_repeated(LINT_RULE rule, const SOURCE_PLACE& place);
    void allow(std::uint32_t reading, const TEXT_LINE& line, std::string_view word, bool is_alone);
    std::uint64_t line_key(std::uint32_t reading, std::uint32_t line) const;
    void print_kept();

    const READINGS& m_readings;
    LINT_FILTER m_filter;
    LINT_PRINTER* m_printer;
    std::size_t m_number_of_messages = 0;
    std::vector<LINT_MESSAGE> m_kept;
    std::unordered_map<std::uint64_t, RULES> m_allowed;  // by file and line
    std::map<std::string, RULES> m_allowed_in_folders;
    HASH_SET m_repeatable;  // hashes of messages
};
