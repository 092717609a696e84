#include "comma_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace {

const char SOURCE[] = "comment_char %\nescape_char /\nLC_NUMERIC\ndecimal_point \",\"\n"
                      "thousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";

}  // namespace

COMMA_LOCALE::COMMA_LOCALE() : m_previous(std::setlocale(LC_NUMERIC, nullptr))
{
    write_file(m_dir.file("comma.src"), SOURCE);
    const std::string command = "cd " + m_dir.path() +
                                " && localedef -c -i comma.src -f ANSI_X3.4-1968 ./comma"
                                " >localedef.log 2>&1";
    EXPECT_NE(-1, std::system(command.c_str()));  // warns of what the source leaves out
    setenv("LOCPATH", m_dir.path().c_str(), 1);
    setenv("LC_NUMERIC", "comma", 1);
    EXPECT_NE(nullptr, std::setlocale(LC_NUMERIC, "comma"))
        << read_file(m_dir.file("localedef.log"));
    EXPECT_STREQ(",", std::localeconv()->decimal_point);
}

COMMA_LOCALE::~COMMA_LOCALE()
{
    std::setlocale(LC_NUMERIC, m_previous.c_str());
    unsetenv("LC_NUMERIC");
    unsetenv("LOCPATH");
}

void COMMA_LOCALE::expect_unchanged()
{
    EXPECT_STREQ("comma", std::setlocale(LC_NUMERIC, nullptr));
    EXPECT_STREQ(",", std::localeconv()->decimal_point);
}
