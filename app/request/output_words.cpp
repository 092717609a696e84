#include "app/request/output_words.h"

#include "app/words/quantity.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include "pll_info.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace {

const std::vector<std::string_view> KEYS = {
    "ratio",          "phase", "to",   "duty",      "delay",           "even",
    "even-count",     "pin",   "name", "tolerance", "phase-tolerance", "duty-tolerance",
    "delay-tolerance"};

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// A letter, then letters, digits, '_', '-' and '.'.
bool is_name(std::string_view text)
{
    return !text.empty() && is_letter(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char c) {
               return is_letter(c) || is_digit(c) || c == '_' || c == '-' || c == '.';
           });
}

struct WORD
{
    std::string m_key;
    std::string m_value;
    bool m_has_value;
};

// The words of an output, each with its value, once.
class OUTPUT_WORDS
{
public:
    OUTPUT_WORDS(const std::string& argument, const std::string& text) : m_argument(argument)
    {
        std::size_t start = 0;
        while (start <= text.size()) {
            const std::size_t end = std::min(text.find(',', start), text.size());
            add(text.substr(start, end - start));
            start = end + 1;
        }
    }

    const std::optional<std::string>& get_frequency() const { return m_frequency; }
    const std::string& get_name() const { return m_name; }

    std::optional<std::string> find_value(const char* key) const
    {
        const WORD* word = find(key);
        if (word == nullptr) {
            return std::nullopt;
        }
        if (!word->m_has_value || word->m_value.empty()) {
            throw USAGE_ERROR(m_argument,
                              "'" + word->m_key + "' needs a value: " + word->m_key + "=...");
        }
        return word->m_value;
    }

    bool find_flag(const char* key) const
    {
        const WORD* word = find(key);
        if (word != nullptr && word->m_has_value) {
            throw USAGE_ERROR(m_argument, "'" + word->m_key + "' takes no value");
        }
        return word != nullptr;
    }

private:
    void add(const std::string& text)
    {
        const std::size_t equals = text.find('=');
        const std::string key = text.substr(0, equals);
        const bool has_value = equals != std::string::npos;
        const std::string value = has_value ? text.substr(equals + 1) : "";
        const bool is_key = std::find(KEYS.begin(), KEYS.end(), key) != KEYS.end();
        if (is_key) {
            add_word(key, value, has_value);
        } else if (has_value && is_named_clock(key, value)) {
            m_name = key;
            add_frequency(value);
        } else if (has_value || text.empty() || is_letter(text.front())) {
            throw USAGE_ERROR(m_argument,
                              "unknown word '" + text +
                                  "'; legal are a frequency, NAME=frequency, ratio=, phase=, to=, "
                                  "duty=, delay=, even, even-count, pin, name=, tolerance=, "
                                  "phase-tolerance=, duty-tolerance=, delay-tolerance=" +
                                  suggest(key, KEYS));
        } else {
            add_frequency(text);
        }
    }

    // "pix=148.5MHz" as the first word. A name that is nearly a key is taken for a slip.
    bool is_named_clock(const std::string& key, const std::string& value) const
    {
        const bool is_first = m_words.empty() && !m_frequency;
        const bool is_number = !value.empty() && (is_digit(value.front()) || value.front() == '.');
        return is_first && is_number && is_name(key) && !is_slip(key);
    }

    // Of the words with values; "pix" is not "pin".
    static bool is_slip(const std::string& key)
    {
        static constexpr std::string_view VALUED[] = {"ratio", "phase", "duty", "delay",
                                                      "tolerance"};
        return std::any_of(std::begin(VALUED), std::end(VALUED),
                           [&](std::string_view candidate) { return is_nearly(key, candidate); });
    }

    void add_word(const std::string& key, const std::string& value, bool has_value)
    {
        if (find(key) != nullptr) {
            throw USAGE_ERROR(m_argument, "'" + key + "' is given twice");
        }
        m_words.push_back({key, value, has_value});
    }

    // A phase may follow: "200MHz@90".
    void add_frequency(const std::string& text)
    {
        if (m_frequency) {
            throw USAGE_ERROR(m_argument, "two frequencies, '" + *m_frequency + "' and '" + text +
                                              "'; legal is one for each --out");
        }
        const std::size_t at = text.find('@');
        m_frequency = text.substr(0, at);
        if (at != std::string::npos) {
            add_word("phase", text.substr(at + 1), true);
        }
    }

    const WORD* find(const std::string& key) const
    {
        for (const WORD& word : m_words) {
            if (word.m_key == key) {
                return &word;
            }
        }
        return nullptr;
    }

    const std::string& m_argument;
    std::string m_name;
    std::optional<std::string> m_frequency;
    std::vector<WORD> m_words;
};

void read_frequency_or_ratio(const std::string& argument, const OUTPUT_WORDS& words,
                             const INPUT_CLOCK& input, OUTPUT_WISH* wish)
{
    const std::optional<std::string> ratio = words.find_value("ratio");
    const std::optional<std::string>& frequency = words.get_frequency();
    if (ratio.has_value() == frequency.has_value()) {
        throw USAGE_ERROR(argument, "needs one of a frequency and ratio=, such as 74.25MHz or "
                                    "ratio=11/4");
    }
    if (ratio) {
        wish->m_ratio = read_ratio(argument + " ratio", *ratio);
        wish->m_frequency = input.m_frequency * wish->m_ratio;
        const bool is_period = input.m_unit >= advice::FREQUENCY_UNIT::PS;
        wish->m_unit = is_period ? advice::FREQUENCY_UNIT::MHZ : input.m_unit;
        return;
    }
    const CLOCK clock = read_clock(argument, *frequency);
    wish->m_frequency = clock.m_frequency;
    wish->m_unit = clock.m_unit;
    wish->m_ratio = clock.m_frequency / input.m_frequency;
}

std::string read_name(const std::string& argument, const OUTPUT_WORDS& words)
{
    const std::optional<std::string> name = words.find_value("name");
    if (!name) {
        return words.get_name();
    }
    if (!words.get_name().empty() || !is_name(*name)) {
        throw USAGE_ERROR(argument + " name", "'" + *name +
                                                  "' is not legal; expected one name of letters, "
                                                  "digits, '_', '-' and '.', a letter first");
    }
    return *name;
}

RATIONAL read_duty(const std::string& argument, const std::string& text)
{
    constexpr int WHOLE = 100;
    const RATIONAL percent = read_percentage(argument, text);
    if (!percent.is_positive() || !(percent < RATIONAL(WHOLE))) {
        throw USAGE_ERROR(argument, "'" + text +
                                        "' is not legal; expected a percentage above 0 and below "
                                        "100");
    }
    return percent;
}

void read_own_tolerances(const std::string& argument, const OUTPUT_WORDS& words,
                         advice::OUTPUT_TOLERANCES* tolerances)
{
    if (const auto text = words.find_value("tolerance")) {
        tolerances->m_frequency =
            read_tolerance(argument + " tolerance", *text, advice::max_frequency_tolerance());
    }
    if (const auto text = words.find_value("phase-tolerance")) {
        tolerances->m_phase = read_amount(argument + " phase-tolerance", *text, "deg");
    }
    if (const auto text = words.find_value("duty-tolerance")) {
        tolerances->m_duty = read_amount(argument + " duty-tolerance", *text, "%");
    }
    if (const auto text = words.find_value("delay-tolerance")) {
        tolerances->m_delay = read_amount(argument + " delay-tolerance", *text, "ps");
    }
}

OUTPUT_WISH read_output(const std::string& argument, const OUTPUT_WORDS& words,
                        const INPUT_CLOCK& input)
{
    OUTPUT_WISH wish;
    wish.m_name = read_name(argument, words);
    read_frequency_or_ratio(argument, words, input, &wish);
    if (const auto phase = words.find_value("phase")) {
        wish.m_phase = read_phase(argument + " phase", *phase, input.m_frequency * wish.m_ratio,
                                  -MAX_PHASE, MAX_PHASE);
    }
    if (const auto duty = words.find_value("duty")) {
        wish.m_duty = read_duty(argument + " duty", *duty);
    }
    if (const auto delay = words.find_value("delay")) {
        wish.m_delay = read_delay(argument + " delay", *delay, MAX_DELAY_CHAIN_VALUE);
    }
    wish.m_even = words.find_flag("even");
    wish.m_even_count = words.find_flag("even-count");
    wish.m_pin = words.find_flag("pin");
    read_own_tolerances(argument, words, &wish.m_tolerances);
    return wish;
}

void require_different_names(const std::vector<OUTPUT_WISH>& outputs)
{
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (!outputs[i].m_name.empty() && outputs[i].m_name == outputs[j].m_name) {
                throw USAGE_ERROR("--out " + std::to_string(i + 1),
                                  "the name '" + outputs[i].m_name + "' is that of output " +
                                      std::to_string(j + 1));
            }
        }
    }
}

}  // namespace

std::vector<OUTPUT_WISH> read_outputs(const std::vector<std::string>& texts,
                                      const INPUT_CLOCK& input)
{
    std::vector<OUTPUT_WISH> outputs;
    std::vector<std::optional<std::string>> others;
    for (const std::string& text : texts) {
        const std::string argument = "--out " + std::to_string(outputs.size() + 1);
        const OUTPUT_WORDS words(argument, text);
        outputs.push_back(read_output(argument, words, input));
        others.push_back(words.find_value("to"));
    }
    require_different_names(outputs);
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (others[i]) {
            const std::string argument = "--out " + std::to_string(i + 1) + " to";
            outputs[i].m_phase_to = find_output(argument, *others[i], outputs);
        }
    }
    return outputs;
}

int find_output(const std::string& argument, const std::string& word,
                const std::vector<OUTPUT_WISH>& outputs)
{
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (word == outputs[i].m_name && !word.empty()) {
            return static_cast<int>(i);
        }
    }
    return read_integer(argument, word, 1, static_cast<int>(outputs.size())) - 1;
}
