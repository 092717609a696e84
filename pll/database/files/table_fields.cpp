#include "database/files/table_fields.h"

#include "pll_manager.h"

#include "platform/host_state.h"

#include <exception>

using namespace pll_internal;

namespace pll_internal {

std::size_t extract_format_word(std::istream& stream, char* word)
{
    const char WORD_END = ' ';
    stream.getline(word, PLL_FORMAT_WORD_SIZE, WORD_END);
    return static_cast<std::size_t>(stream.gcount() - (stream.good() ? 1 : 0));
}

}  // namespace pll_internal

// An exception is memory that a stream asked for in vain.
bool pll_read_field(std::istream& stream, int& value)
{
    const HOST_STATE state;
    try {
        stream >> value;
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}

bool pll_read_field(std::istream& stream, double& value)
{
    const HOST_STATE state;
    try {
        stream >> value;
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}

bool pll_read_field(std::istream& stream, MEM_STRING& value)
{
    try {
        char word[PLL_FORMAT_WORD_SIZE];
        value.assign(word, extract_format_word(stream, word));
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}
