// Unit tests of the files that traces are appended to.
#include "platform/append_file.h"

#include "temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>

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
    TRACE_STREAM full;
    full.open("/dev/full");
    full.get() << std::string(5000, 'x') << std::endl;
    EXPECT_TRUE(full.get().good());
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
