// What every test begins with: the frameworks, the standard library, the calls of the system that
// tests make to set a scene, and the scenery.
#pragma once

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "support/LogLines.h"
#include "support/OwnMounts.h"
#include "support/TestTree.h"

namespace orrinvale {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Pair;

using testing::attributesOf;
using testing::bindMount;
using testing::contentOf;
using testing::isThere;
using testing::keepTimes;
using testing::LogLines;
using testing::namesIn;
using testing::runInChild;
using testing::TestTree;
using testing::unshareMounts;
using testing::WatchedFiles;
using testing::withOwnMounts;

}  // namespace orrinvale

/// What a check in a child said; "skip" and a reason skips the test.
#define EXPECT_TOLD(text, expected)                                                      \
    if (const std::string told = (text); told.starts_with("skip")) GTEST_SKIP() << told; \
    else EXPECT_EQ(told, expected)
