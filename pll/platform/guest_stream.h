// The host's stream while a report is written to it.
#pragma once

#include <ostream>

namespace pll_internal {

// While one lives, the stream throws nothing: what goes wrong shows in its state alone, also when
// the host asked for exceptions. Its flags, precision and locale are followed and stay.
class GUEST_STREAM
{
public:
    explicit GUEST_STREAM(std::ostream& stream)
        : m_stream(stream), m_exceptions(stream.exceptions())
    {
        m_stream.exceptions(std::ios_base::goodbit);
    }

    ~GUEST_STREAM()
    {
        try {
            m_stream.exceptions(m_exceptions);
        } catch (...) {
            // The wish is set before the stream complains of the state that it is in.
        }
    }

    GUEST_STREAM(const GUEST_STREAM&) = delete;
    GUEST_STREAM& operator=(const GUEST_STREAM&) = delete;

private:
    std::ostream& m_stream;
    std::ios_base::iostate m_exceptions;
};

}  // namespace pll_internal
