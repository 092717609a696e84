#include "platform/append_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pll_internal {

namespace {

constexpr int READ_AND_WRITE_FOR_ALL = 0666;

// Opening a device may already do something, so its name is looked at before.
bool may_be_opened(const char* path)
{
    struct stat status;
    return lstat(path, &status) != 0 ? errno == ENOENT : S_ISREG(status.st_mode);
}

bool is_regular(int file)
{
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// Whatever takes the name since it was looked at is not followed, waited for or kept.
int open_for_appending(const char* path)
{
    constexpr int APPEND = O_WRONLY | O_APPEND | O_CREAT;
    constexpr int NOTHING_BUT_A_FILE = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    if (!may_be_opened(path)) {
        return -1;
    }
    const int file = open(path, APPEND | NOTHING_BUT_A_FILE, READ_AND_WRITE_FOR_ALL);
    if (file >= 0 && !is_regular(file)) {
        close(file);
        return -1;
    }
    return file;
}

}  // namespace

void TRACE_BUFFER::open(const char* path)
{
    close();
    m_file = open_for_appending(path);
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
    if (!m_is_in_record) {
        write_out();
    }
    return 0;
}

void TRACE_BUFFER::end_record()
{
    m_is_in_record = false;
    write_out();
}

void TRACE_BUFFER::write_out()
{
    // A signal of the host may cut a write short; what a full disk refuses is lost.
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

}  // namespace pll_internal
