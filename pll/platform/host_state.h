// The floating-point state and errno of the host, while an exported operation works in its own.
//
// Every exported operation that computes with real numbers, converts them from or to text, or asks
// the system for something holds one of these. What it computes then depends on no rounding mode,
// no flushing of denormal numbers and no trap that the host has set, and leaves no trace in the
// flags or in errno.
#pragma once

#include <cfenv>

namespace pll_internal {

class HOST_STATE
{
public:
    // Rounds to nearest, with denormal numbers and without traps, from now on.
    HOST_STATE();

    // Gives everything back as it was. An object that was made while another lives does nothing, so
    // that operations may call each other.
    ~HOST_STATE();

    HOST_STATE(const HOST_STATE&) = delete;
    HOST_STATE& operator=(const HOST_STATE&) = delete;

    // A number that is computed before the state is given back, whatever order a compiler prefers
    // that knows nothing of rounding modes.
    template <class NUMBER>
    NUMBER keep(NUMBER value) const
    {
        asm volatile("" : "+m"(value));
        return value;
    }

    // Which flags the operations raised since the last call, of those that the host did not hold
    // raised: for tests, which see what the host never does.
    static int take_raised_flags();

private:
    bool m_is_outermost;
    int m_errno;
#if defined(__SSE2_MATH__)
    // The whole environment costs a hundred times as much to save as these two.
    unsigned m_control;
    int m_rounding;  // of what the C library reads when it converts texts
#else
    std::fenv_t m_environment;
#endif
};

}  // namespace pll_internal
