// Unit tests of the host's stream while a report is written, and of all reports on such streams.
#include "platform/guest_stream.h"

#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <functional>
#include <iomanip>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

using namespace pll_internal;

namespace {

// Takes so many characters; then nothing, or it throws.
class FULL_BUFFER : public std::streambuf
{
public:
    FULL_BUFFER(int room, bool throws) : m_room(room), m_throws(throws) {}

protected:
    int_type overflow(int_type character) override
    {
        if (m_room > 0) {
            --m_room;
            return traits_type::not_eof(character);
        }
        if (m_throws) {
            throw 1;
        }
        return traits_type::eof();
    }

private:
    int m_room;
    bool m_throws;
};

struct REPORT
{
    const char* m_name;
    std::function<void(std::ostream&)> m_write;
};

// A PLL with a result, and every report that the library writes.
struct REPORTS
{
    REPORTS() : m_box(2, 4, 2), m_result(2), m_device(4)
    {
        m_box.synthesize();
        m_result.m_fin_period = m_box.m_request.m_fin_period;
        m_result.set_properties_from_internals(m_box.m_pll);
        m_device.add_row(2, 1e6, 1.5e6);
        m_device.describe(m_box.m_pll);
    }

    std::vector<REPORT> list() const
    {
        const PLL& pll = m_box.m_pll;
        return {
            {"PLL", [&](std::ostream& s) { pll.dump(s, false, false); }},
            {"PLL with cost", [&](std::ostream& s) { pll.dump(s, true, false); }},
            {"PLL compact", [&](std::ostream& s) { pll.dump(s, false, true); }},
            {"output", [&](std::ostream& s) { pll.m_taps[0].dump(s, true, false); }},
            {"request", [&](std::ostream& s) { m_box.m_request.dump(s, true, false); }},
            {"result", [&](std::ostream& s) { m_result.dump(s, false, false); }},
            {"result compact", [&](std::ostream& s) { m_result.dump(s, false, true); }},
            {"clock", [&](std::ostream& s) { m_result.m_taps[0].dump(s, false); }},
            {"table", [&](std::ostream& s) { pll.m_info.dump_bandwidth_settings_table(s); }},
        };
    }

    SMALL_PLL m_box;
    PLL_PROP m_result;
    DEVICE m_device;
};

}  // namespace

TEST(GuestStream, ThrowsNothingUntilItsEnd)
{
    FULL_BUFFER buffer(0, true);
    std::ostream stream(&buffer);
    stream.exceptions(std::ios_base::badbit | std::ios_base::failbit);
    {
        const GUEST_STREAM guest(stream);
        EXPECT_NO_THROW(stream << "text" << std::endl);
        EXPECT_TRUE(stream.bad());
    }
    EXPECT_EQ(std::ios_base::badbit | std::ios_base::failbit, stream.exceptions());
    EXPECT_ANY_THROW(stream.clear(std::ios_base::failbit));
}

TEST(GuestStream, MayHaveFailedBefore)
{
    FULL_BUFFER buffer(100, false);
    std::ostream stream(&buffer);
    stream.setstate(std::ios_base::failbit);
    {
        const GUEST_STREAM guest(stream);
        stream << "lost";
    }
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(std::ios_base::goodbit, stream.exceptions());
}

TEST(GuestStream, TellsOfEveryReportThatCannotBeWrittenByItsStateAlone)
{
    const REPORTS reports;
    for (const REPORT& report : reports.list()) {
        for (const bool throws : {false, true}) {
            for (const int room : {0, 1, 5, 10}) {
                SCOPED_TRACE(std::string(report.m_name) +
                             (throws ? ", throws after " : ", ends after ") + std::to_string(room));
                FULL_BUFFER buffer(room, throws);
                std::ostream stream(&buffer);
                stream.exceptions(std::ios_base::badbit | std::ios_base::failbit);
                EXPECT_NO_THROW(report.m_write(stream));
                EXPECT_TRUE(stream.bad());
                EXPECT_EQ(std::ios_base::badbit | std::ios_base::failbit, stream.exceptions());
            }
        }
    }
}

TEST(GuestStream, IsLeftAsTheHostSetIt)
{
    const REPORTS reports;
    for (const REPORT& report : reports.list()) {
        SCOPED_TRACE(report.m_name);
        std::ostringstream plain;
        report.m_write(plain);
        std::ostringstream stream;
        stream << std::scientific << std::setprecision(3) << std::showpos << std::setfill('*');
        const std::ios_base::fmtflags flags = stream.flags();
        report.m_write(stream);
        EXPECT_EQ(flags, stream.flags());
        EXPECT_EQ(3, stream.precision());
        EXPECT_EQ('*', stream.fill());
        EXPECT_NE(plain.str(), stream.str()) << "the host's format is not followed";
        EXPECT_NE(std::string::npos, stream.str().find('+'));
    }
}
