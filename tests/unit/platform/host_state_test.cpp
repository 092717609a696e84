// Unit tests of what an operation keeps of its host: rounding mode, flags, traps and errno.
#include "platform/host_state.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <cstdlib>

using namespace pll_internal;

namespace {

constexpr int ROUNDING_MODES[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

// Computed when the program runs, in the state that it has then.
double divide(double a, double b)
{
    volatile double dividend = a;
    volatile double divisor = b;
    volatile double quotient = dividend / divisor;
    return quotient;
}

// The floating-point environment of the test, given back at its end.
class ENVIRONMENT
{
public:
    ENVIRONMENT() { std::feholdexcept(&m_environment); }
    ~ENVIRONMENT() { std::fesetenv(&m_environment); }
    ENVIRONMENT(const ENVIRONMENT&) = delete;
    ENVIRONMENT& operator=(const ENVIRONMENT&) = delete;

private:
    std::fenv_t m_environment{};
};

}  // namespace

TEST(HostState, RoundsToNearestAndGivesTheModeBack)
{
    const ENVIRONMENT environment;
    const double third = divide(1.0, 3.0);
    for (const int mode : ROUNDING_MODES) {
        SCOPED_TRACE(mode);
        std::fesetround(mode);
        const double third_of_host = divide(2.0, 3.0);
        {
            const HOST_STATE state;
            EXPECT_EQ(FE_TONEAREST, std::fegetround());
            EXPECT_EQ(third, state.keep(divide(1.0, 3.0)));
            EXPECT_EQ(0.1, std::strtod("0.1", nullptr));
        }
        EXPECT_EQ(mode, std::fegetround());
        EXPECT_EQ(third_of_host, divide(2.0, 3.0));
    }
}

TEST(HostState, LeavesTheFlagsAsTheyWere)
{
    const ENVIRONMENT environment;
    for (const int raised : {0, FE_INEXACT, FE_OVERFLOW | FE_INVALID, FE_ALL_EXCEPT}) {
        SCOPED_TRACE(raised);
        std::feclearexcept(FE_ALL_EXCEPT);
        std::feraiseexcept(raised);
        {
            const HOST_STATE state;
            divide(0.0, 0.0);
            divide(1.0, 0.0);
            divide(1.0, 3.0);
        }
        EXPECT_EQ(raised, std::fetestexcept(FE_ALL_EXCEPT));
    }
}

TEST(HostState, TellsWhatWasRaised)
{
    const ENVIRONMENT environment;
    HOST_STATE::take_raised_flags();
    {
        const HOST_STATE state;
        divide(1.0, 0.0);
    }
    EXPECT_EQ(FE_DIVBYZERO, HOST_STATE::take_raised_flags());
    EXPECT_EQ(0, HOST_STATE::take_raised_flags());
}

#ifdef __GLIBC__
TEST(HostState, SpringsNoTrapOfTheHost)
{
    const ENVIRONMENT environment;
    feenableexcept(FE_INVALID | FE_DIVBYZERO);
    {
        const HOST_STATE state;
        divide(0.0, 0.0);
        divide(1.0, 0.0);
    }
    EXPECT_EQ(FE_INVALID | FE_DIVBYZERO, fegetexcept());
    EXPECT_EQ(0, std::fetestexcept(FE_ALL_EXCEPT));
}
#endif

#ifdef __SSE2_MATH__
TEST(HostState, KeepsDenormalNumbersFromAHostThatFlushesThem)
{
    constexpr unsigned FLUSH_TO_ZERO = 0x8000;
    constexpr unsigned DENORMALS_ARE_ZERO = 0x0040;
    constexpr unsigned FLAGS = 0x003f;
    const ENVIRONMENT environment;
    const unsigned control = __builtin_ia32_stmxcsr() | FLUSH_TO_ZERO | DENORMALS_ARE_ZERO;
    __builtin_ia32_ldmxcsr(control);
    EXPECT_EQ(0.0, divide(DBL_MIN, 2.0));
    {
        const HOST_STATE state;
        EXPECT_EQ(DBL_MIN, 2.0 * state.keep(divide(DBL_MIN, 2.0)));
    }
    EXPECT_EQ(0.0, divide(DBL_MIN, 2.0));
    EXPECT_EQ(control & ~FLAGS, __builtin_ia32_stmxcsr() & ~FLAGS);
}
#endif

TEST(HostState, LeavesErrnoAlone)
{
    errno = ERANGE;
    {
        const HOST_STATE state;
        errno = ENOENT;
    }
    EXPECT_EQ(ERANGE, errno);
    errno = 0;
}

TEST(HostState, IsGivenBackByTheOutermostObjectAlone)
{
    const ENVIRONMENT environment;
    std::fesetround(FE_UPWARD);
    errno = 0;
    {
        const HOST_STATE outer;
        {
            const HOST_STATE inner;
            errno = EINTR;
        }
        EXPECT_EQ(FE_TONEAREST, std::fegetround());
        EXPECT_EQ(EINTR, errno);
    }
    EXPECT_EQ(FE_UPWARD, std::fegetround());
    EXPECT_EQ(0, errno);
    {
        const HOST_STATE again;
        EXPECT_EQ(FE_TONEAREST, std::fegetround());
    }
    EXPECT_EQ(FE_UPWARD, std::fegetround());
}
