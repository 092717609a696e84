#include "platform/append_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int READ_AND_WRITE_FOR_ALL = 0666;

}  // namespace

void TRACE_BUFFER::open(const char* path)
{
    close();
    m_file = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, READ_AND_WRITE_FOR_ALL);
}

void TRACE_BUFFER::close()
{
    write_out();
    if (m_file >= 0) {
        ::close(m_file);
        m_file = -1;
    }
}

TRACE_BUFFER::int_type TRACE_BUFFER::overflow(int_type character)
{
    write_out();
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        sputc(traits_type::to_char_type(character));
    }
    return traits_type::not_eof(character);
}

int TRACE_BUFFER::sync()
{
    write_out();
    return 0;
}

void TRACE_BUFFER::write_out()
{
    const char* text = pbase();
    while (m_file >= 0 && text < pptr()) {
        const ssize_t written = ::write(m_file, text, static_cast<std::size_t>(pptr() - text));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            break;
        }
        text += written;
    }
    reset();
}
