#include "database/files/input_file.h"

#include "database/files/read_budget.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace pll_internal {

namespace {

int look_at_file(const char* name)
{
    struct stat status;
    if (stat(name, &status) != 0) {
        return errno;
    }
    return S_ISREG(status.st_mode) ? 0 : PLL_NOT_A_REGULAR_FILE;
}

// Without O_NONBLOCK a pipe that took the file's place since it was looked at would block.
int open_for_reading(const char* name)
{
    int descriptor = -1;
    do {
        descriptor = open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

}  // namespace

PLL_INPUT_FILE::PLL_INPUT_FILE()
    : m_descriptor(-1),
      m_error(0),
      m_budget(nullptr),
      m_is_outside(false),
      m_next(0),
      m_end(0),
      m_line_number(0),
      m_line_length(0),
      m_block{}
{
}

PLL_INPUT_FILE::~PLL_INPUT_FILE()
{
    close();
}

int PLL_INPUT_FILE::open(const char* name, PLL_READ_BUDGET* budget)
{
    close();
    m_budget = budget;
    if (const int reason = look_at_file(name); reason != 0) {
        return reason;
    }
    m_descriptor = open_for_reading(name);
    return m_descriptor >= 0 ? 0 : errno;
}

void PLL_INPUT_FILE::close()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
    m_descriptor = -1;
    m_error = 0;
    m_is_outside = false;
    m_next = 0;
    m_end = 0;
    m_line_number = 0;
}

bool PLL_INPUT_FILE::fill()
{
    ssize_t size = -1;
    do {
        size = ::read(m_descriptor, m_block, BLOCK_SIZE);
    } while (size < 0 && errno == EINTR);
    m_error = size < 0 ? errno : 0;
    if (size > 0 && !m_budget->take_bytes(size)) {
        m_error = PLL_OVER_BUDGET;
        size = 0;
    }
    m_next = 0;
    m_end = size > 0 ? static_cast<std::size_t>(size) : 0;
    return m_end != 0;
}

bool PLL_INPUT_FILE::is_at_end()
{
    return m_descriptor < 0 || (m_next == m_end && (m_error != 0 || !fill()));
}

bool PLL_INPUT_FILE::read_line(char* line)
{
    const std::size_t ROOM = PLL_LINE_SIZE - 1;
    std::size_t length = 0;  // of the line, the dropped characters included
    char last = '\0';        // of them
    bool is_broken = false;
    while (!is_broken && !is_at_end()) {
        const char* const start = m_block + m_next;
        const void* const line_break = std::memchr(start, '\n', m_end - m_next);
        is_broken = line_break != nullptr;
        const char* const end = is_broken ? static_cast<const char*>(line_break) : m_block + m_end;
        const std::size_t size = static_cast<std::size_t>(end - start);
        if (length < ROOM) {
            std::memcpy(line + length, start, std::min(size, ROOM - length));
        }
        last = size > 0 ? end[-1] : last;
        length += size;
        m_next += size + (is_broken ? 1 : 0);
    }
    if (is_broken && last == '\r') {
        --length;
    }
    line[std::min(length, ROOM)] = '\0';
    m_line_length = length;
    if (m_line_number < std::numeric_limits<int>::max()) {
        ++m_line_number;
    }
    return m_error == 0;
}

char* PLL_INPUT_FILE::take_block(std::size_t* size)
{
    *size = is_at_end() ? 0 : m_end - m_next;
    char* const block = m_block + m_next;
    m_next = m_end;
    return block;
}

}  // namespace pll_internal
