// Files that traces are appended to. Nothing is taken from the heap, and nothing of the host's
// locale shows in them.
#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>

namespace pll_internal {

// Collects text and appends it to a file whenever the stream is flushed, or at the end of a record.
// What cannot be written is lost in silence.
class TRACE_BUFFER : public std::streambuf
{
public:
    TRACE_BUFFER() : m_file(-1), m_is_in_record(false) { reset(); }
    ~TRACE_BUFFER() override { close(); }
    // A copy would write the same text twice.
    TRACE_BUFFER(const TRACE_BUFFER&) = delete;
    TRACE_BUFFER& operator=(const TRACE_BUFFER&) = delete;

    // Opens `path` for appending, made with permissions 0666 where there is none. A symbolic link,
    // fifo or device of that name is left alone: what is written then is lost.
    void open(const char* path);
    // Writes what is left. Closing twice does nothing.
    void close();

    // Between the two, flushes wait for the end.
    void begin_record() { m_is_in_record = true; }
    void end_record();

protected:
    // The stream asks for room; nothing is refused, so that a full disk stops no synthesis.
    int_type overflow(int_type character) override;
    int sync() override;

private:
    // Many lines of a trace, so that most records are written in one go.
    static constexpr std::size_t SIZE = 4096;

    // Goes on after a signal; gives the rest up when the system takes no more.
    void write_out();
    void reset() { setp(m_text, m_text + SIZE); }

    // -1 while nothing is open, and where the file could not be opened.
    int m_file;
    bool m_is_in_record;
    char m_text[SIZE];
};

// An output stream on such a file, in the classic locale; closed with the object.
class TRACE_STREAM
{
public:
    TRACE_STREAM() : m_stream(&m_buffer) { m_stream.imbue(std::locale::classic()); }

    // As of the buffer. The stream stays good, whatever becomes of its text.
    void open(const char* path) { m_buffer.open(path); }
    std::ostream& get() { return m_stream; }
    TRACE_BUFFER& buffer() { return m_buffer; }

private:
    TRACE_BUFFER m_buffer;
    std::ostream m_stream;
};

// The lines of one record, written together when the object goes: one system call instead of one a
// line, which would take most of the time of a trace.
class TRACE_RECORD
{
public:
    explicit TRACE_RECORD(TRACE_STREAM* trace) : m_buffer(trace->buffer())
    {
        m_buffer.begin_record();
    }
    ~TRACE_RECORD() { m_buffer.end_record(); }
    TRACE_RECORD(const TRACE_RECORD&) = delete;
    TRACE_RECORD& operator=(const TRACE_RECORD&) = delete;

private:
    TRACE_BUFFER& m_buffer;
};

}  // namespace pll_internal
