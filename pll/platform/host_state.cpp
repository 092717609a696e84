#include "platform/host_state.h"

#include <cerrno>
#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace pll_internal {

namespace {

bool s_is_held = false;
int s_raised_flags = 0;

#if defined(__SSE2_MATH__)
constexpr unsigned ROUND_TO_NEAREST_WITHOUT_TRAPS = _MM_MASK_MASK;
#endif

}  // namespace

#if defined(__SSE2_MATH__)

HOST_STATE::HOST_STATE()
    : m_is_outermost(!s_is_held), m_errno(0), m_control(0), m_rounding(FE_TONEAREST)
{
    if (!m_is_outermost) {
        return;
    }
    s_is_held = true;
    m_errno = errno;
    m_control = _mm_getcsr();
    m_rounding = std::fegetround();
    if (m_rounding != FE_TONEAREST) {
        std::fesetround(FE_TONEAREST);
    }
    if ((m_control & ~unsigned{_MM_EXCEPT_MASK}) != ROUND_TO_NEAREST_WITHOUT_TRAPS) {
        _mm_setcsr(ROUND_TO_NEAREST_WITHOUT_TRAPS | (m_control & _MM_EXCEPT_MASK));
    }
}

HOST_STATE::~HOST_STATE()
{
    if (!m_is_outermost) {
        return;
    }
    const unsigned control = _mm_getcsr();
    s_raised_flags |= static_cast<int>(control & ~m_control & _MM_EXCEPT_MASK);
    if (m_rounding != FE_TONEAREST) {
        std::fesetround(m_rounding);
    }
    if (control != m_control || m_rounding != FE_TONEAREST) {
        _mm_setcsr(m_control);
    }
    errno = m_errno;
    s_is_held = false;
}

#else

HOST_STATE::HOST_STATE() : m_is_outermost(!s_is_held), m_errno(0), m_environment()
{
    if (!m_is_outermost) {
        return;
    }
    s_is_held = true;
    m_errno = errno;
    std::fegetenv(&m_environment);
    std::fesetenv(FE_DFL_ENV);
}

HOST_STATE::~HOST_STATE()
{
    if (!m_is_outermost) {
        return;
    }
    s_raised_flags |= std::fetestexcept(FE_ALL_EXCEPT);
    std::fesetenv(&m_environment);
    errno = m_errno;
    s_is_held = false;
}

#endif

int HOST_STATE::take_raised_flags()
{
    const int flags = s_raised_flags;
    s_raised_flags = 0;
    return flags;
}

}  // namespace pll_internal
