// A library to preload: one call of the system in a process fails, as PLL_FAULT in its environment
// says.
//
//   PLL_FAULT=read:3:5      the third read fails with error number 5, once
//   PLL_FAULT=read:3:short  the third read gets one byte, as a signal in the middle would have it
//   PLL_FAULT=malloc:7:0    the seventh allocation gives null; "mallocs" instead: all from then on
//   PLL_FAULT_LOG=FILE      receives how many calls of that kind there were, when the process ends
//
// The calls are open (and fopen), read, write and close (and fclose). Errors that say that nothing
// happened do nothing; close does what it is asked to and then fails, as the system's does.
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

const char FAULT_VARIABLE[] = "PLL_FAULT";
const char LOG_VARIABLE[] = "PLL_FAULT_LOG";
const char SHORT_WORD[] = "short";

enum CALL
{
    OPEN,
    READ,
    WRITE,
    CLOSE,
    MALLOC,
    MALLOCS,
    NUMBER_OF_CALLS
};

const char* const CALL_NAMES[] = {"open", "read", "write", "close", "malloc", "mallocs"};

struct PLAN
{
    CALL m_call = NUMBER_OF_CALLS;  // none fails
    long m_nth = 0;
    int m_error = 0;
    bool m_is_short = false;
    long m_count = 0;
};

// The plan is read at the first call, which comes before any constructor of this library.
PLAN& plan()
{
    static PLAN the_plan;
    static bool is_read = false;
    if (is_read) {
        return the_plan;
    }
    is_read = true;
    const char* const text = std::getenv(FAULT_VARIABLE);
    const char* const nth = text == nullptr ? nullptr : std::strchr(text, ':');
    const char* const error = nth == nullptr ? nullptr : std::strchr(nth + 1, ':');
    if (error == nullptr) {
        return the_plan;
    }
    for (int i = 0; i < NUMBER_OF_CALLS; ++i) {
        const std::size_t length = std::strlen(CALL_NAMES[i]);
        if (static_cast<std::size_t>(nth - text) == length &&
            std::strncmp(text, CALL_NAMES[i], length) == 0) {
            the_plan.m_call = static_cast<CALL>(i);
        }
    }
    the_plan.m_nth = std::atol(nth + 1);
    the_plan.m_is_short = std::strcmp(error + 1, SHORT_WORD) == 0;
    the_plan.m_error = std::atoi(error + 1);
    return the_plan;
}

// Whether this call is the one that fails.
bool has_turn(CALL call)
{
    PLAN& the_plan = plan();
    if (the_plan.m_call != call) {
        return false;
    }
    ++the_plan.m_count;
    return call == MALLOCS ? the_plan.m_count >= the_plan.m_nth
                           : the_plan.m_count == the_plan.m_nth;
}

bool fails(CALL call)
{
    if (!has_turn(call) || plan().m_is_short) {
        return false;
    }
    errno = plan().m_error;
    return true;
}

bool allocation_fails()
{
    if (!has_turn(MALLOC) && !has_turn(MALLOCS)) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

template <class FUNCTION>
FUNCTION* next(const char* name)
{
    return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}

// The log is written past the calls above.
class LOG
{
public:
    LOG() = default;
    ~LOG()
    {
        const char* const name = std::getenv(LOG_VARIABLE);
        if (name == nullptr) {
            return;
        }
        const long file = syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        char text[32];
        const int size = std::snprintf(text, sizeof text, "%ld\n", plan().m_count);
        syscall(SYS_write, file, text, size);
        syscall(SYS_close, file);
    }
    LOG(const LOG&) = delete;
    LOG& operator=(const LOG&) = delete;
};

const LOG THE_LOG;

}  // namespace

extern "C" {

int open(const char* name, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    return fails(OPEN) ? -1 : static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

int open64(const char* name, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    return open(name, flags, mode);
}

std::FILE* fopen(const char* name, const char* mode)
{
    return fails(OPEN) ? nullptr : next<std::FILE*(const char*, const char*)>("fopen")(name, mode);
}

std::FILE* fopen64(const char* name, const char* mode)
{
    return fails(OPEN) ? nullptr
                       : next<std::FILE*(const char*, const char*)>("fopen64")(name, mode);
}

ssize_t read(int file, void* buffer, std::size_t size)
{
    if (!has_turn(READ)) {
        return syscall(SYS_read, file, buffer, size);
    }
    if (plan().m_is_short) {
        return syscall(SYS_read, file, buffer, size < 1 ? size : 1);
    }
    errno = plan().m_error;
    return -1;
}

ssize_t write(int file, const void* buffer, std::size_t size)
{
    if (!has_turn(WRITE)) {
        return syscall(SYS_write, file, buffer, size);
    }
    if (plan().m_is_short) {
        return syscall(SYS_write, file, buffer, size < 1 ? size : 1);
    }
    errno = plan().m_error;
    return -1;
}

int close(int file)
{
    const int result = static_cast<int>(syscall(SYS_close, file));
    return fails(CLOSE) ? -1 : result;
}

int fclose(std::FILE* file)
{
    const int result = next<int(std::FILE*)>("fclose")(file);
    return fails(CLOSE) ? EOF : result;
}

void* malloc(std::size_t size)
{
    return allocation_fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return allocation_fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    return allocation_fails() ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return allocation_fails() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = allocation_fails() ? nullptr : __libc_memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
}
