#include "program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int CANNOT_START = 127;

class PIPE
{
public:
    PIPE() { EXPECT_EQ(0, pipe(m_ends)); }
    ~PIPE()
    {
        close_end(&m_ends[0]);
        close_end(&m_ends[1]);
    }
    PIPE(const PIPE&) = delete;
    PIPE& operator=(const PIPE&) = delete;

    int get_write_end() const { return m_ends[1]; }
    void close_read_end() { close_end(&m_ends[0]); }
    void close_write_end() { close_end(&m_ends[1]); }

    std::string read_all() const
    {
        std::string text;
        char part[4096];
        ssize_t count = 0;
        while (m_ends[0] >= 0 && (count = read(m_ends[0], part, sizeof part)) > 0) {
            text.append(part, static_cast<std::size_t>(count));
        }
        return text;
    }

private:
    static void close_end(int* end)
    {
        if (*end >= 0) {
            close(*end);
        }
        *end = -1;
    }

    int m_ends[2] = {-1, -1};
};

// Without files that would switch traces on. Made before there is a child, and so removed by its
// parent.
const TEMP_DIR& empty_directory()
{
    static const TEMP_DIR DIRECTORY;
    return DIRECTORY;
}

// Runs in the child.
[[noreturn]] void start(const char* program, const std::vector<std::string>& arguments,
                        OUTPUT_TO output, int output_end, int errors_end)
{
    std::signal(SIGPIPE, SIG_DFL);
    if (output == OUTPUT_TO::FULL_DEVICE) {
        output_end = open("/dev/full", O_WRONLY);
    }
    dup2(output_end, STDOUT_FILENO);
    dup2(errors_end, STDERR_FILENO);
    if (output == OUTPUT_TO::CLOSED) {
        close(STDOUT_FILENO);
    }
    std::vector<char*> words = {const_cast<char*>("pllcalc")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    if (chdir(empty_directory().path().c_str()) == 0) {
        execv(program, words.data());
    }
    _exit(CANNOT_START);
}

const std::string DATA_MARK = "@DATA@";

}  // namespace

RUN run_program(const char* program, const std::vector<std::string>& arguments, OUTPUT_TO output)
{
    empty_directory();
    PIPE outputs;
    PIPE errors;
    if (output == OUTPUT_TO::READER_GONE) {
        outputs.close_read_end();
    }
    const pid_t child = fork();
    if (child == 0) {
        start(program, arguments, output, outputs.get_write_end(), errors.get_write_end());
    }
    outputs.close_write_end();
    errors.close_write_end();
    RUN run;
    run.m_output = outputs.read_all();
    run.m_errors = errors.read_all();
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    run.m_status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    EXPECT_NE(CANNOT_START, run.m_status) << "cannot start " << program;
    return run;
}

RUN run_pllcalc(const std::string& line)
{
    std::vector<std::string> words = split(line, ' ');
    for (std::string& word : words) {
        word = replace_all(word, DATA_MARK, PLL_DATA_DIR);
    }
    return run_program(PLLCALC, words);
}

std::string from_anywhere(std::string words)
{
    return replace_all(std::move(words), " data/", " " + DATA_MARK + "/");
}

std::string hide_data_folder(const std::string& text)
{
    return replace_all(text, PLL_DATA_DIR, DATA_MARK);
}
