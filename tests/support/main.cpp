// The program of every gtest suite: internal errors fail the test that causes them.
#include "error_guard.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    install_error_guard();
    return RUN_ALL_TESTS();
}
