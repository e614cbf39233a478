// The main function of the tests that drive widgets. They run under the offscreen platform unless
// the environment names another.
#include <gtest/gtest.h>

#include "engine/base/Log.h"
#include "ui/shell/MyNSApplication.h"

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    orrinvale::Log::setEnabled(false);
    const orrinvale::MyNSApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
