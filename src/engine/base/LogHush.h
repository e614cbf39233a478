// LogHush: for work whose every name would otherwise stand in the log.
#pragma once

namespace orrinvale {

/// While one lives, Log::line() writes nothing on its thread unless the engine's lines are wanted.
class [[nodiscard]] LogHush final {
public:
    LogHush();
    ~LogHush();
    LogHush(const LogHush&) = delete;
    LogHush& operator=(const LogHush&) = delete;
};

}  // namespace orrinvale
