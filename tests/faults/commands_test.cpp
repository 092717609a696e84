// Commands of pllcalc while the system fails in the middle of them: whatever fails, the answer is
// the one that was asked for or a message and exit status 4, never another answer.
//
// PLL_EVERY_POSITION=1 in the environment lets each single allocation fail; else it is the first
// ones and a sample of the others.
#include "program.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const int IO_FAILED = 4;

const char* const COMMANDS[] = {
    "synth --in 27MHz --out 148.5MHz --out 74.25MHz,phase=90,duty=40",
    "synth --database @DATA@/sample --family Chervil --part CH30-6 --in 100MHz --out 80MHz",
    "synth --in 100MHz --out 33.333MHz --spread 0.5% --spread-rate 30kHz",
    "ratios --in 100MHz --format csv",
    "steps --in 100MHz --out 80MHz",
    "dump --in 100MHz --out 80MHz",
    "errors",
    "devices --database @DATA@/sample",
    "device --database @DATA@/sample --family Lovage --type FAST_PLL --format json",
    "table --database @DATA@/sample --family Chervil --part CH30-6 --m 12",
};

class Command : public testing::TestWithParam<const char*>
{
protected:
    Command() { m_good = run_pllcalc(GetParam()); }

    // Runs the command with a fault; `calls` receives how many calls of that kind there were.
    RUN run_with(const std::string& fault, long* calls = nullptr)
    {
        const std::string log = m_dir.file("log");
        unlink(log.c_str());
        setenv("LD_PRELOAD", PLL_FAULTY_SYSTEM, 1);
        setenv("PLL_FAULT", fault.c_str(), 1);
        setenv("PLL_FAULT_LOG", log.c_str(), 1);
        const RUN run = run_pllcalc(GetParam());
        unsetenv("LD_PRELOAD");
        if (calls != nullptr) {
            *calls = 0;
            std::ifstream(log) >> *calls;
        }
        return run;
    }

    bool is_good(const RUN& run) const
    {
        return run.m_status == m_good.m_status && run.m_output == m_good.m_output &&
               run.m_errors == m_good.m_errors;
    }

    static bool is_told(const RUN& run, int error)
    {
        return run.m_status == IO_FAILED &&
               run.m_errors.find(std::strerror(error)) != std::string::npos;
    }

    void fail_each(const std::string& call, int error)
    {
        long calls = 0;
        run_with(call + ":0:0", &calls);
        EXPECT_TRUE(calls > 0 || (call == "write" && m_good.m_output.empty())) << call;
        for (long nth = 1; nth <= calls; ++nth) {
            const RUN run =
                run_with(call + ":" + std::to_string(nth) + ":" + std::to_string(error));
            EXPECT_TRUE(is_good(run) || is_told(run, error))
                << call << " " << nth << " of " << calls << ": " << std::strerror(error)
                << "\nstatus " << run.m_status << "\n"
                << run.m_output << run.m_errors;
        }
    }

    void disturb_each(const std::string& call, const std::string& how)
    {
        long calls = 0;
        run_with(call + ":0:0", &calls);
        for (long nth = 1; nth <= calls; ++nth) {
            const RUN run = run_with(call + ":" + std::to_string(nth) + ":" + how);
            EXPECT_TRUE(is_good(run)) << call << " " << nth << " of " << calls << ": " << how
                                      << "\nstatus " << run.m_status << "\n"
                                      << run.m_output << run.m_errors;
        }
    }

    TEMP_DIR m_dir;
    RUN m_good;
};

TEST_P(Command, IsNotFooledByACallThatFails)
{
    fail_each("write", EIO);
    fail_each("write", ENOSPC);
    if (std::strstr(GetParam(), "@DATA@") != nullptr) {
        for (const int error : {EIO, EMFILE, EACCES, ENOMEM}) {
            fail_each("open", error);
        }
        fail_each("read", EIO);
        fail_each("close", EIO);
    }
}

TEST_P(Command, AnswersThroughInterruptionsAndShortCounts)
{
    const std::string interruption = std::to_string(EINTR);
    disturb_each("write", interruption);
    disturb_each("write", "short");
    disturb_each("read", interruption);
    disturb_each("read", "short");
    disturb_each("open", interruption);
    disturb_each("close", interruption);
}

TEST_P(Command, EndsWhenMemoryDoes)
{
    const long FIRST = 20;
    const long STEP = 397;
    const bool takes_all = std::getenv("PLL_EVERY_POSITION") != nullptr;
    long calls = 0;
    run_with("malloc:0:0", &calls);
    ASSERT_LT(0, calls);
    long positions = 0;
    for (long nth = 1; nth <= calls; nth += takes_all || nth < FIRST ? 1 : STEP) {
        for (const char* const how : {"malloc:", "mallocs:"}) {
            const RUN run = run_with(how + std::to_string(nth) + ":0");
            const bool has_ended = run.m_status == IO_FAILED &&
                                   run.m_errors.find("out of memory") != std::string::npos;
            EXPECT_TRUE(has_ended || is_good(run))
                << how << nth << " of " << calls << "\nstatus " << run.m_status << "\n"
                << run.m_output << run.m_errors;
        }
        ++positions;
    }
    RecordProperty("allocations", std::to_string(calls));
    RecordProperty("positions", std::to_string(positions));
}

std::string name_of(const testing::TestParamInfo<const char*>& info)
{
    const std::string words = info.param;
    return words.substr(0, words.find(' ')) + std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(Faults, Command, testing::ValuesIn(COMMANDS), name_of);

}  // namespace
