// Unit tests of the files that traces are appended to.
#include "platform/append_file.h"

#include "temp_dir.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace pll_internal;

namespace {

void append_to(const std::string& path)
{
    TRACE_STREAM trace;
    trace.open(path.c_str());
    trace.get() << "ours" << std::endl;
    EXPECT_TRUE(trace.get().good());
}

// No file grows beyond so many bytes while it lives.
class SIZE_LIMIT
{
public:
    explicit SIZE_LIMIT(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(0, getrlimit(RLIMIT_FSIZE, &m_limit));
        const rlimit limit = {bytes, m_limit.rlim_max};
        EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
    }
    ~SIZE_LIMIT()
    {
        EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &m_limit));
        std::signal(SIGXFSZ, m_handler);
    }
    SIZE_LIMIT(const SIZE_LIMIT&) = delete;
    SIZE_LIMIT& operator=(const SIZE_LIMIT&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_limit{};
};

}  // namespace

TEST(Trace, AppendsToWhatIsThere)
{
    const TEMP_DIR dir;
    const std::string path = dir.file("trace.log");
    write_file(path, "before\n");
    {
        TRACE_STREAM trace;
        trace.open(path.c_str());
        trace.get() << "M " << 12 << std::endl;
        EXPECT_EQ("before\nM 12\n", read_file(path));  // flushed with the line
        trace.get() << "no line end";
    }
    EXPECT_EQ("before\nM 12\nno line end", read_file(path));
}

TEST(Trace, WritesTheLinesOfARecordAtItsEnd)
{
    const TEMP_DIR dir;
    const std::string path = dir.file("trace.log");
    TRACE_STREAM trace;
    trace.open(path.c_str());
    {
        const TRACE_RECORD record(&trace);
        trace.get() << "M " << 12 << std::endl << "N " << 7 << std::endl;
        EXPECT_EQ("", read_file(path));
    }
    EXPECT_EQ("M 12\nN 7\n", read_file(path));
    trace.get() << "a line" << std::endl;
    EXPECT_EQ("M 12\nN 7\na line\n", read_file(path));
}

TEST(Trace, MakesAFileForAll)
{
    const TEMP_DIR dir;
    const std::string path = dir.file("trace.log");
    const mode_t mask = umask(0);
    {
        TRACE_STREAM trace;
        trace.open(path.c_str());
    }
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(0, stat(path.c_str(), &status));
    EXPECT_EQ(0666U, status.st_mode & 0777U);
}

TEST(Trace, TakesTextOfAnyLength)
{
    const TEMP_DIR dir;
    const std::string path = dir.file("trace.log");
    std::string expected;
    {
        TRACE_STREAM trace;
        trace.open(path.c_str());
        for (std::size_t length = 1000; length < 3100; length += 11) {
            const std::string text(length, static_cast<char>('a' + length % 26));
            trace.get() << text;
            expected += text;
        }
    }
    EXPECT_EQ(expected, read_file(path));
}

TEST(Trace, GoesNowhereWithoutAFile)
{
    const TEMP_DIR dir;
    TRACE_STREAM closed;
    closed.get() << std::string(5000, 'x') << std::endl;
    EXPECT_TRUE(closed.get().good());
    TRACE_STREAM unopened;
    unopened.open(dir.path().c_str());
    unopened.get() << std::string(5000, 'x') << std::endl;
    EXPECT_TRUE(unopened.get().good());
}

TEST(Trace, LosesWhatCannotBeWritten)
{
    const TEMP_DIR dir;
    const std::string path = dir.file("trace.log");
    const SIZE_LIMIT limit(1500);
    TRACE_STREAM trace;
    trace.open(path.c_str());
    trace.get() << std::string(5000, 'x') << std::endl;
    EXPECT_TRUE(trace.get().good());
    EXPECT_EQ(std::string(1500, 'x'), read_file(path));
}

TEST(Trace, FollowsNoLink)
{
    const TEMP_DIR dir;
    const std::string target = dir.file("target");
    const std::string missing = dir.file("missing");
    write_file(target, "theirs\n");
    ASSERT_EQ(0, symlink(target.c_str(), dir.file("link").c_str()));
    ASSERT_EQ(0, symlink(missing.c_str(), dir.file("dangling").c_str()));
    append_to(dir.file("link"));
    append_to(dir.file("dangling"));
    EXPECT_EQ("theirs\n", read_file(target));
    EXPECT_FALSE(file_exists(missing));

    ASSERT_EQ(0, link(target.c_str(), dir.file("second_name").c_str()));
    append_to(dir.file("second_name"));
    EXPECT_EQ("theirs\nours\n", read_file(target));
}

TEST(Trace, OpensNoFifoAndNoDevice)
{
    const TEMP_DIR dir;
    const std::string fifo = dir.file("fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR));
    append_to(fifo);  // waits for nobody who might read it

    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    append_to(fifo);
    char text[16];
    EXPECT_EQ(0, read(reader, text, sizeof text));
    close(reader);

    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(0, grantpt(terminal));
    ASSERT_EQ(0, unlockpt(terminal));
    append_to(ptsname(terminal));
    EXPECT_EQ(-1, read(terminal, text, sizeof text));  // nothing was written
    close(terminal);
}

TEST(Trace, CanBeReopened)
{
    const TEMP_DIR dir;
    TRACE_STREAM trace;
    trace.open(dir.file("first.log").c_str());
    trace.get() << "one";
    trace.open(dir.file("second.log").c_str());
    trace.get() << "two" << std::flush;
    EXPECT_EQ("one", read_file(dir.file("first.log")));
    EXPECT_EQ("two", read_file(dir.file("second.log")));
}
