// The main function of every test binary: takes the locale from the environment, so that a run
// under LC_ALL=de_DE.UTF-8 shows numbers that stray through the C locale, and keeps the log quiet.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "engine/base/Log.h"

int main(int argc, char** argv) {
    if (std::setlocale(LC_ALL, "") == nullptr &&
        std::getenv("ORRINVALE_TEST_NEEDS_LOCALE") != nullptr) {
        std::fputs(
            "skipped: the locale that this run asks for is not there (./dev test makes it)\n",
            stderr);
        return 77;
    }
    orrinvale::Log::setEnabled(false);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
