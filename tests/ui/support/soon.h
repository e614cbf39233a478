// What becomes true while the events of a window are served.
#pragma once

#include <QTest>

/// Within ten seconds; all of them pass only where it fails.
#define EXPECT_SOON(...) EXPECT_TRUE(QTest::qWaitFor([&] { return __VA_ARGS__; }, 10'000))
#define ASSERT_SOON(...) ASSERT_TRUE(QTest::qWaitFor([&] { return __VA_ARGS__; }, 10'000))
