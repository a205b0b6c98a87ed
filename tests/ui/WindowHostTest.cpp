// The SDL2 window host, run as a separate program on a display: under
// xvfb-run when it is installed, else on the DISPLAY at hand; skipped without
// either.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

bool haveProgram(const char* name) {
    std::string probe = std::string("command -v ") + name + " > /dev/null 2>&1";
    return std::system(probe.c_str()) == 0;
}

TEST(WindowHost, OpensDrawsAndClosesOnARealDisplay) {
    std::string command;
    if (haveProgram("xvfb-run"))
        command = std::string("xvfb-run -a ") + MORVANE_WINDOW_SMOKE;
    else if (std::getenv("DISPLAY"))
        command = MORVANE_WINDOW_SMOKE;
    else
        GTEST_SKIP() << "no DISPLAY and no xvfb-run";
    int status = std::system(command.c_str());
    EXPECT_EQ(status, 0) << command;
}

} // namespace
