// Messages as SARIF 2.1.0, which build servers and editors read.
#include "app/lint/print.h"

#include "app/output/json_text.h"

#include <string>
#include <string_view>

namespace {

// A file name as a reference: relative ones stay relative.
std::string uri_of(const std::string& file)
{
    constexpr std::string_view LEGAL = "-._~/";
    constexpr char DIGITS[] = "0123456789ABCDEF";
    constexpr int BITS_OF_DIGIT = 4;
    constexpr unsigned LAST_DIGIT = 15;
    std::string uri = file.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : file) {
        const unsigned code = static_cast<unsigned char>(c);
        const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (is_letter || (c >= '0' && c <= '9') || LEGAL.find(c) != std::string_view::npos) {
            uri += c;
        } else {
            uri += '%';
            uri += DIGITS[code >> BITS_OF_DIGIT];
            uri += DIGITS[code & LAST_DIGIT];
        }
    }
    return uri;
}

std::string text_object(std::string_view text)
{
    return "{\"text\": " + json_text(text) + "}";
}

class SARIF_PRINTER : public LINT_PRINTER
{
public:
    SARIF_PRINTER(const READINGS* readings, OUTPUT_STREAM* output)
        : m_readings(*readings), m_output(output)
    {
    }

    void begin() override;
    void print(const LINT_MESSAGE& message) override;
    void end(const LINT_SUMMARY& summary) override;

private:
    std::string location(const SOURCE_PLACE& place, bool has_region) const;
    std::string related_locations(std::uint32_t reading) const;

    const READINGS& m_readings;
    OUTPUT_STREAM* m_output;
    bool m_has_result = false;
};

void SARIF_PRINTER::begin()
{
    m_output->append("{\n  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
                     "  \"version\": \"2.1.0\",\n  \"runs\": [{\n    \"tool\": {\"driver\": {\n"
                     "      \"name\": \"pllcalc\",\n      \"version\": \"" PLLCALC_VERSION
                     "\",\n      \"rules\": [");
    const char* separator = "\n";
    for (std::size_t i = 0; i < NUMBER_OF_LINT_RULES; ++i) {
        const LINT_RULE_TEXT& rule = describe(static_cast<LINT_RULE>(i));
        m_output->append(std::string(separator) + "        {\"id\": " + json_text(rule.m_name) +
                         ", \"shortDescription\": " + text_object(rule.m_description) +
                         ",\n         \"fullDescription\": " +
                         text_object(std::string(rule.m_description) + " " + rule.m_cause) +
                         ",\n         \"help\": " + text_object(rule.m_cure) +
                         ",\n         \"defaultConfiguration\": {\"level\": \"" +
                         name_of(rule.m_severity) + "\"}}");
        separator = ",\n";
    }
    m_output->append("\n      ]}},\n    \"columnKind\": \"unicodeCodePoints\",\n"
                     "    \"results\": [");
}

std::string SARIF_PRINTER::location(const SOURCE_PLACE& place, bool has_region) const
{
    std::string text = "{\"physicalLocation\": {\"artifactLocation\": {\"uri\": \"" +
                       uri_of(m_readings.name_of(place.m_reading)) +
                       "\"}, \"region\": {\"startLine\": " + std::to_string(place.m_line);
    if (has_region) {
        text += ", \"startColumn\": " + std::to_string(place.m_column) +
                ", \"endColumn\": " + std::to_string(place.m_column + place.m_length);
    }
    return text + "}}";
}

std::string SARIF_PRINTER::related_locations(std::uint32_t reading) const
{
    std::string text;
    for (; m_readings.kind_of(reading) != READING_KIND::TOP;
         reading = m_readings.namer_of(reading).m_reading) {
        const bool is_table = m_readings.kind_of(reading) == READING_KIND::TABLE;
        text += (text.empty() ? ",\n       \"relatedLocations\": [" : ", ") +
                location(m_readings.namer_of(reading), false) +
                ", \"message\": " + text_object(is_table ? "table of" : "included from") + "}";
    }
    return text + (text.empty() ? "" : "]");
}

void SARIF_PRINTER::print(const LINT_MESSAGE& message)
{
    const LINT_RULE_TEXT& rule = describe(message.m_rule);
    m_output->append(
        std::string(m_has_result ? "," : "") + "\n      {\"ruleId\": \"" + rule.m_name +
        "\", \"ruleIndex\": " + std::to_string(static_cast<std::size_t>(message.m_rule)) +
        ", \"level\": \"" + name_of(message.m_severity) +
        "\", \"message\": " + text_object(message.m_text) + ",\n       \"locations\": [" +
        location(message.m_place, true) + "}]" + related_locations(message.m_place.m_reading) +
        "}");
    m_has_result = true;
}

void SARIF_PRINTER::end(const LINT_SUMMARY& summary)
{
    const bool has_errors = summary.count(LINT_SEVERITY::ERROR) > 0;
    m_output->append(std::string(m_has_result ? "\n    " : "") +
                     "],\n    \"invocations\": [{\"executionSuccessful\": " +
                     (summary.m_is_unreadable ? "false" : "true") + ", \"exitCode\": " +
                     std::to_string(summary.m_exit_status) + "}],\n    \"properties\": " +
                     "{\"hasErrors\": " + (has_errors ? "true" : "false") +
                     ", \"notShown\": " + std::to_string(summary.m_not_shown) +
                     ", \"files\": " + std::to_string(summary.m_files) + "}\n  }]\n}\n");
}

}  // namespace

std::unique_ptr<LINT_PRINTER> make_sarif_printer(const READINGS* readings, OUTPUT_STREAM* output)
{
    return std::make_unique<SARIF_PRINTER>(readings, output);
}
