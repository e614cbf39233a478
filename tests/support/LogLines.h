// The lines of the log while a test looks at them.
#pragma once

#include <string>
#include <vector>

#include "engine/base/Log.h"

namespace orrinvale::testing {

/// Takes the log for as long as it lives. Of one thread at a time.
class LogLines final {
public:
    LogLines() {
        Log::setSink([this](std::string_view line) { lines.emplace_back(line); });
        Log::setEnabled(true);
    }
    ~LogLines() {
        Log::setEnabled(m_wasEnabled);
        Log::setSink({});
    }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    /// Takes no more, so that what other threads write does not matter, and tells what it has.
    std::vector<std::string> stop() {
        Log::setSink({});
        return lines;
    }

    std::vector<std::string> lines;

private:
    const bool m_wasEnabled = Log::isEnabled();
};

}  // namespace orrinvale::testing
