#include "app/lint/words.h"

#include "app/output/characters.h"

#include <algorithm>

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view UTF_16_MARKS[] = {"\xFF\xFE", "\xFE\xFF"};

// Of a text in UTF-16 every second byte is a NUL, as far as its letters are plain.
bool is_utf_16(std::string_view text)
{
    constexpr std::size_t SAMPLE = 64;
    const std::string_view mark = text.substr(0, 2);
    if (mark == UTF_16_MARKS[0] || mark == UTF_16_MARKS[1]) {
        return true;
    }
    const std::string_view sample = text.substr(0, SAMPLE);
    const auto nuls = static_cast<std::size_t>(std::count(sample.begin(), sample.end(), '\0'));
    constexpr std::size_t FEW = 4;
    return nuls >= FEW && 3 * nuls > sample.size();
}

// Tells of the first byte that is no UTF-8.
void check_characters(std::uint32_t reading, std::string_view text, LINT_MESSAGES* messages)
{
    const std::size_t at = find_no_utf_8(text);
    if (at == std::string_view::npos) {
        return;
    }
    const std::string_view before = text.substr(0, at);
    TEXT_LINE line;
    line.m_number = static_cast<std::uint32_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    const std::size_t start = before.rfind('\n') + 1;  // 0 when there is none
    line.m_text = text.substr(start, text.find('\n', at) - start);
    messages->add(LINT_RULE::NO_UTF_8, place_in_line(reading, line, at - start, at - start + 1),
                  "this character is no UTF-8; the file seems to be saved as Latin-1");
}

}  // namespace

std::string in_quotes(std::string_view text)
{
    std::string words;
    words.reserve(text.size() + 2);
    return words.append("'").append(text).append("'");
}

bool check_encoding(std::uint32_t reading, std::string_view* text, LINT_MESSAGES* messages)
{
    const SOURCE_PLACE start = {reading, 1, 1, 1};
    if (is_utf_16(*text)) {
        messages->add(LINT_RULE::UTF_16, start,
                      "the file is encoded as UTF-16; files are plain text or UTF-8");
        return false;
    }
    if (text->substr(0, BYTE_ORDER_MARK.size()) == BYTE_ORDER_MARK) {
        messages->add(LINT_RULE::BYTE_ORDER_MARK, start,
                      "the file begins with a byte-order mark, which becomes part of its first "
                      "word");
        text->remove_prefix(BYTE_ORDER_MARK.size());
    }
    check_characters(reading, *text, messages);
    return true;
}

void check_line(std::uint32_t reading, const TEXT_LINE& line, LINT_MESSAGES* messages)
{
    const std::string_view text = line.m_text;
    messages->heed_comment(reading, line, comment_of(text));
    if (text.size() > LINE_MAX_CHARACTERS) {
        messages->add(LINT_RULE::LINE_CUT,
                      place_in_line(reading, line, LINE_MAX_CHARACTERS, LINE_MAX_CHARACTERS + 1),
                      "the line is cut here: it has " + std::to_string(text.size()) +
                          " characters, of which " + std::to_string(LINE_MAX_CHARACTERS) +
                          " are read");
    }
    const std::size_t nul = text.substr(0, LINE_MAX_CHARACTERS).find('\0');
    if (nul != std::string_view::npos) {
        messages->add(LINT_RULE::LINE_WITH_NUL, place_in_line(reading, line, nul, nul + 1),
                      "a NUL character ends the line here");
    }
}

SOURCE_PLACE OPERAND_WATCH::place_of(const TEXT_WORD& word) const
{
    return place_in_line(m_reading, m_line, word.m_start, word.m_end);
}

SOURCE_PLACE OPERAND_WATCH::place_behind(const TEXT_WORD& word) const
{
    return place_in_line(m_reading, m_line, word.m_end, word.m_end + 1);
}

void OPERAND_WATCH::tell(LINT_RULE rule, const TEXT_WORD& word, const std::string& text) const
{
    if (m_messages != nullptr) {
        m_messages->add(rule, place_of(word), text);
    }
}

bool OPERAND_WATCH::check_name(const TEXT_WORD& word) const
{
    if (word.m_is_quoted && !word.m_is_closed) {
        tell(LINT_RULE::QUOTE_NOT_CLOSED, word,
             "no quote closes this name: it reaches to the end of the line");
        return false;
    }
    if (!word.m_is_quoted && word.m_text.find('#') != std::string_view::npos) {
        tell(LINT_RULE::COMMENT_IN_NAME, word,
             "'#' is part of " + in_quotes(word.m_text) +
                 " and begins no comment: no blank stands before it");
        return false;
    }
    return true;
}

void OPERAND_WATCH::check_end(const TEXT_WORD& last, WORD_READER* words) const
{
    TEXT_WORD extra;
    const bool is_told = (last.m_is_quoted && !last.m_is_closed) ||
                         (!last.m_is_quoted && last.m_text.find('#') != std::string_view::npos);
    if (!is_told && words->next_name(&extra)) {
        tell(LINT_RULE::EXTRA_WORDS, extra,
             in_quotes(extra.m_text) +
                 " has no effect: it stands after the last operand; '#' begins a comment");
    }
}
