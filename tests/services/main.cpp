// The main function of the tests that need an event loop but no window.
#include <gtest/gtest.h>

#include <QCoreApplication>

#include "engine/base/Log.h"

int main(int argc, char** argv) {
    orrinvale::Log::setEnabled(false);
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
