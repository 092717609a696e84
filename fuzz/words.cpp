// A command line, a word on each line of the input. What cannot be understood is a usage error.
#include "fuzz.h"

#include "app/command/command_line.h"
#include "app/words/usage_error.h"

#include <string>
#include <string_view>
#include <vector>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> words = {"pllcalc"};
    for (std::size_t start = 0; start < input.size();) {
        const std::size_t end = std::min(input.find('\n', start), input.size());
        words.emplace_back(input.substr(start, end - start));
        start = end + 1;
    }
    std::vector<const char*> pointers;
    for (const std::string& word : words) {
        pointers.push_back(word.c_str());
    }
    pointers.push_back(nullptr);
    std::string help;
    try {
        const auto line = read_command_line(static_cast<int>(words.size()), pointers.data(), &help);
        if (line) {
            read_request(line->m_request, line->m_limits, nullptr);
        }
    } catch (const USAGE_ERROR&) {
        return 0;
    }
    return 0;
}
