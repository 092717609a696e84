#include "app/output/output.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <unistd.h>

void keep_running_without_reader()
{
    std::signal(SIGPIPE, SIG_IGN);
}

WRITE_RESULT write_output(const std::string& text, std::string* reason)
{
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (errno == EPIPE) {
            return WRITE_RESULT::READER_GONE;
        } else if (errno != EINTR) {
            *reason = std::strerror(errno);
            return WRITE_RESULT::FAILED;
        }
    }
    return WRITE_RESULT::DONE;
}

void OUTPUT_STREAM::append(std::string_view text)
{
    constexpr std::size_t PIECE = 65536;
    m_text.append(text);
    if (m_text.size() >= PIECE) {
        write();
    }
}

void OUTPUT_STREAM::write()
{
    if (m_result == WRITE_RESULT::DONE) {
        m_result = write_output(m_text, &m_reason);
    }
    m_text.clear();
}

WRITE_RESULT OUTPUT_STREAM::finish(std::string* reason)
{
    write();
    *reason = m_reason;
    return m_result;
}
