#include "app/request/output_words.h"

#include "app/words/quantity.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include "pll_info.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace {

constexpr int MIN_DUTY = 1;
constexpr int MAX_DUTY = 99;

const std::vector<std::string_view> KEYS = {"ratio", "phase", "duty",
                                            "delay", "even",  "even-count"};

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
        const bool is_key = std::find(KEYS.begin(), KEYS.end(), key) != KEYS.end();
        if (is_key) {
            if (find(key) != nullptr) {
                throw USAGE_ERROR(m_argument, "'" + key + "' is given twice");
            }
            m_words.push_back({key, has_value ? text.substr(equals + 1) : "", has_value});
        } else if (has_value || text.empty() || is_letter(text.front())) {
            throw USAGE_ERROR(m_argument, "unknown word '" + text +
                                              "'; legal are a frequency, ratio=, phase=, duty=, "
                                              "delay=, even, even-count" +
                                              suggest(key, KEYS));
        } else if (m_frequency) {
            throw USAGE_ERROR(m_argument, "two frequencies, '" + *m_frequency + "' and '" + text +
                                              "'; legal is one for each --out");
        } else {
            m_frequency = text;
        }
    }

    static bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

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
    std::optional<std::string> m_frequency;
    std::vector<WORD> m_words;
};

// The ratio to the input that is asked for.
RATIONAL read_clock(const std::string& argument, const OUTPUT_WORDS& words,
                    const RATIONAL& input_frequency)
{
    const std::optional<std::string> ratio = words.find_value("ratio");
    const std::optional<std::string>& frequency = words.get_frequency();
    if (ratio.has_value() == frequency.has_value()) {
        throw USAGE_ERROR(argument, "needs one of a frequency and ratio=, such as 74.25MHz or "
                                    "ratio=11/4");
    }
    const RATIONAL asked = ratio ? read_ratio(argument + " ratio", *ratio)
                                 : read_frequency(argument, *frequency) / input_frequency;
    constexpr std::int64_t LARGEST = std::numeric_limits<int>::max();
    const bool fits =
        asked.is_valid() && asked.numerator() <= LARGEST && asked.denominator() <= LARGEST;
    if (!fits) {
        std::string problem = "its ratio to the input does not fit; ";
        if (asked.is_valid()) {
            problem = "its ratio to the input, " + asked.to_fraction() + ", does not fit; ";
        }
        throw USAGE_ERROR(argument, problem + "factor and divisor may be 1 to " +
                                        std::to_string(LARGEST) + " each");
    }
    return asked;
}

// The phase of an output in degrees of the input clock, which is how the library counts: 360 are
// one period of the input.
double phase_of_input(const OUTPUT_WISH& wish)
{
    const RATIONAL degrees = wish.m_phase / wish.m_ratio;
    return degrees.is_valid() ? degrees.to_double()
                              : wish.m_phase.to_double() / wish.m_ratio.to_double();
}

int read_duty(const std::string& argument, const std::string& text)
{
    const RATIONAL percent = read_percentage(argument, text);
    if (!percent.is_integer() || percent < RATIONAL(MIN_DUTY, 1) ||
        RATIONAL(MAX_DUTY, 1) < percent) {
        throw USAGE_ERROR(argument, "'" + text + "' is not legal; expected a whole percentage " +
                                        "from " + std::to_string(MIN_DUTY) + " to " +
                                        std::to_string(MAX_DUTY));
    }
    return static_cast<int>(percent.numerator());
}

}  // namespace

OUTPUT_WISH read_output(const std::string& argument, const std::string& text,
                        const RATIONAL& input_frequency, PLL_USER_TAP* tap)
{
    const OUTPUT_WORDS words(argument, text);
    OUTPUT_WISH wish;
    wish.m_ratio = read_clock(argument, words, input_frequency);
    tap->m_mult = static_cast<int>(wish.m_ratio.numerator());
    tap->m_div = static_cast<int>(wish.m_ratio.denominator());
    if (const auto phase = words.find_value("phase")) {
        wish.m_phase = read_phase(argument + " phase", *phase, input_frequency * wish.m_ratio,
                                  -MAX_PHASE, MAX_PHASE);
        tap->m_phase = phase_of_input(wish);
    }
    if (const auto duty = words.find_value("duty")) {
        tap->m_duty = read_duty(argument + " duty", *duty);
    }
    if (const auto delay = words.find_value("delay")) {
        tap->m_delay = read_delay(argument + " delay", *delay, MAX_DELAY_CHAIN_VALUE);
    }
    tap->m_use_even_counter_mode = words.find_flag("even");
    tap->m_use_even_counter_value = words.find_flag("even-count");
    return wish;
}
