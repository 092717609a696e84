#include "app/lint/print.h"

#include "app/lint/sources.h"
#include "app/output/characters.h"
#include "app/output/json_text.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

// "1 error", "2 errors"
std::string counted(std::size_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string looked_at(const LINT_SUMMARY& summary)
{
    std::string text = counted(summary.m_files, "file");
    if (summary.m_families > 0) {
        text += ", " + std::to_string(summary.m_families) +
                (summary.m_families == 1 ? " family" : " families");
    }
    if (summary.m_parts > 0) {
        text += ", " + counted(summary.m_parts, "part");
    }
    if (summary.m_statements > 0) {
        text += ", " + counted(summary.m_statements, "statement");
    }
    if (summary.m_rows > 0) {
        text += ", " + counted(summary.m_rows, "table row");
    }
    return text;
}

// ---- Text

class TEXT_PRINTER : public LINT_PRINTER
{
public:
    TEXT_PRINTER(bool carets, const READINGS* readings, OUTPUT_STREAM* output)
        : m_carets(carets), m_readings(*readings), m_output(output)
    {
    }

    void begin() override {}
    void print(const LINT_MESSAGE& message) override;
    void end(const LINT_SUMMARY& summary) override;

private:
    void show_source(const SOURCE_PLACE& place);
    void show_namers(std::uint32_t reading);

    bool m_carets;
    const READINGS& m_readings;
    OUTPUT_STREAM* m_output;
    LINT_SOURCES m_sources;
    std::uint32_t m_file = READINGS::NONE;  // of the message before
    std::string m_shown_file;
};

void TEXT_PRINTER::print(const LINT_MESSAGE& message)
{
    const SOURCE_PLACE& place = message.m_place;
    if (m_readings.file_of(place.m_reading) != m_file) {
        m_file = m_readings.file_of(place.m_reading);
        m_shown_file = make_visible(m_readings.name_of(place.m_reading));
    }
    std::string text = m_shown_file;
    text.append(":").append(std::to_string(place.m_line));
    text.append(":").append(std::to_string(place.m_column)).append(": ");
    text.append(name_of(message.m_severity)).append(": ").append(make_visible(message.m_text));
    text.append(" [").append(describe(message.m_rule).m_name).append("]\n");
    m_output->append(text);
    if (m_carets) {
        show_source(place);
    }
    show_namers(place.m_reading);
}

void TEXT_PRINTER::show_namers(std::uint32_t reading)
{
    while (m_readings.kind_of(reading) != READING_KIND::TOP) {
        const bool is_table = m_readings.kind_of(reading) == READING_KIND::TABLE;
        const SOURCE_PLACE& namer = m_readings.namer_of(reading);
        m_output->append(std::string(is_table ? "  table of " : "  included from ") +
                         make_visible(m_readings.name_of(namer.m_reading)) + ":" +
                         std::to_string(namer.m_line) + "\n");
        reading = namer.m_reading;
    }
}

// The characters of a long line around a column.
std::string_view cut_out(std::string_view line, std::size_t column, std::size_t* first)
{
    constexpr std::size_t WIDTH = 100;
    constexpr std::size_t BEFORE = 60;
    *first = column > WIDTH ? column - BEFORE : 0;
    const std::size_t start = byte_of_character(line, *first);
    return line.substr(start, byte_of_character(line, *first + WIDTH) - start);
}

// The line, and a caret with tildes below the word; tabs stay tabs, so that it stands there.
void TEXT_PRINTER::show_source(const SOURCE_PLACE& place)
{
    std::string_view line = m_sources.line(m_readings.name_of(place.m_reading), place.m_line);
    const std::size_t column = place.m_column - 1;
    std::size_t first = 0;
    line = cut_out(line, column, &first);
    std::string shown = "  ";
    std::string marks = "  ";
    std::size_t at = first;
    for (std::size_t i = 0; i < line.size(); ++at) {
        const std::size_t end = byte_of_character(line.substr(i), 1) + i;
        const std::string character(line.substr(i, end - i));
        const bool is_tab = character == "\t";
        const std::string visible = is_tab ? character : make_visible(character);
        const std::size_t width = is_tab ? 1 : width_of_text(visible);
        const bool is_marked = at >= column && at < column + place.m_length;
        shown += visible;
        if (at < column) {
            marks += is_tab ? visible : std::string(width, ' ');
        } else if (is_marked) {
            marks += std::string(at == column ? "^" : "") +
                     std::string(width - std::min<std::size_t>(width, at == column ? 1 : 0), '~');
        }
        i = end;
    }
    marks += at <= column ? "^" : "";
    m_output->append(shown + "\n" + marks + "\n");
}

void TEXT_PRINTER::end(const LINT_SUMMARY& summary)
{
    std::string text;
    for (const LINT_SEVERITY severity :
         {LINT_SEVERITY::ERROR, LINT_SEVERITY::WARNING, LINT_SEVERITY::NOTE}) {
        const std::size_t count = summary.count(severity);
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + counted(count, name_of(severity));
        }
    }
    if (summary.m_not_shown > 0) {
        text += ", of which " + std::to_string(summary.m_not_shown) + " are not shown";
    }
    m_output->append((text.empty() ? "nothing wrong" : text) + " in " + looked_at(summary) + "\n");
}

// ---- JSON

class JSON_PRINTER : public LINT_PRINTER
{
public:
    JSON_PRINTER(const READINGS* readings, OUTPUT_STREAM* output)
        : m_readings(*readings), m_output(output)
    {
    }

    void begin() override { m_output->append("{\n  \"messages\": ["); }
    void print(const LINT_MESSAGE& message) override;
    void end(const LINT_SUMMARY& summary) override;

private:
    const READINGS& m_readings;
    OUTPUT_STREAM* m_output;
    bool m_has_message = false;
};

void JSON_PRINTER::print(const LINT_MESSAGE& message)
{
    const SOURCE_PLACE& place = message.m_place;
    std::string text = m_has_message ? "," : "";
    m_has_message = true;
    text.append("\n    {\n      \"file\": ").append(json_text(m_readings.name_of(place.m_reading)));
    text.append(",\n      \"line\": ").append(std::to_string(place.m_line));
    text.append(",\n      \"column\": ").append(std::to_string(place.m_column));
    text.append(",\n      \"length\": ").append(std::to_string(place.m_length));
    text.append(",\n      \"severity\": \"").append(name_of(message.m_severity));
    text.append("\",\n      \"name\": \"").append(describe(message.m_rule).m_name);
    text.append("\",\n      \"text\": ").append(json_text(message.m_text));
    const char* separator = ",\n      \"included_from\": [";
    std::uint32_t reading = place.m_reading;
    for (; m_readings.kind_of(reading) != READING_KIND::TOP;
         reading = m_readings.namer_of(reading).m_reading) {
        const SOURCE_PLACE& namer = m_readings.namer_of(reading);
        text.append(separator).append("{\"file\": ");
        text.append(json_text(m_readings.name_of(namer.m_reading)));
        text.append(", \"line\": ").append(std::to_string(namer.m_line)).append("}");
        separator = ", ";
    }
    text += reading == place.m_reading ? "" : "]";
    m_output->append(text + "\n    }");
}

void JSON_PRINTER::end(const LINT_SUMMARY& summary)
{
    const auto entry = [](const char* key, std::size_t count) {
        return std::string("\"") + key + "\": " + std::to_string(count);
    };
    m_output->append(
        std::string(m_has_message ? "\n  " : "") + "],\n  " +
        entry("errors", summary.count(LINT_SEVERITY::ERROR)) + ",\n  " +
        entry("warnings", summary.count(LINT_SEVERITY::WARNING)) + ",\n  " +
        entry("notes", summary.count(LINT_SEVERITY::NOTE)) + ",\n  " +
        entry("not_shown", summary.m_not_shown) + ",\n  \"looked_at\": {" +
        entry("files", summary.m_files) + ", " + entry("families", summary.m_families) + ", " +
        entry("parts", summary.m_parts) + ", " + entry("statements", summary.m_statements) + ", " +
        entry("rows", summary.m_rows) + "}\n}\n");
}

}  // namespace

std::unique_ptr<LINT_PRINTER> make_lint_printer(LINT_FORMAT format, bool carets,
                                                const READINGS* readings, OUTPUT_STREAM* output)
{
    switch (format) {
    case LINT_FORMAT::TEXT:
        return std::make_unique<TEXT_PRINTER>(carets, readings, output);
    case LINT_FORMAT::JSON:
        return std::make_unique<JSON_PRINTER>(readings, output);
    case LINT_FORMAT::SARIF:
        return make_sarif_printer(readings, output);
    }
    return nullptr;
}
