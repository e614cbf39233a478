// The log of the engine: one line a message on standard error, in one write, control bytes escaped.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The full name of the operation that logs, as the interface spells it ("-[getFileList
/// stopSearch]"), with the source line of the place that named it.
struct LogOrigin {
    std::string_view method;
    std::uint32_t line;
    // Clang 14, which the static analysis runs on, has the builtin but not std::source_location.
    // NOLINTNEXTLINE(google-explicit-constructor): a call site reads Log::engine("-[x y]", ...)
    constexpr LogOrigin(const char* name, std::uint32_t where = __builtin_LINE())
        : method(name), line(where) {}
};

/// Process-wide. All operations may be called from any thread; lines never interleave.
class Log final {
public:
    using Sink = std::function<void(std::string_view line)>;

    /// True when lines are wanted. Ask before building an expensive line.
    [[nodiscard]] static bool isEnabled();
    static void setEnabled(bool enabled);

    /// The lines of engine() can be switched off by themselves: a search writes one for each file.
    [[nodiscard]] static bool isEngineEnabled();
    static void setEngineEnabled(bool enabled);

    /// Replaces standard error by a function that gets each line with no line break; an empty one
    /// restores it. For tests and for a log file. Lines are handed over one at a time.
    static void setSink(Sink sink);

    /// Writes one line as it stands, control bytes escaped.
    static void line(std::string_view text);

    /// Writes "[qrt]fun:METHOD line:LINE" followed at once by the formatted text.
    template <class... Args>
    static void engine(LogOrigin origin, fmt::format_string<Args...> format, Args&&... args) {
        if (isEngineEnabled())
            line(fmt::format("[qrt]fun:{} line:{}{}", origin.method, origin.line,
                             fmt::format(format, std::forward<Args>(args)...)));
    }
};

/// The text with every control byte (below 32, and 127) written as \n, \t or \xHH, and a backslash
/// doubled, so that a file name can not forge a line.
[[nodiscard]] std::string escapeControls(std::string_view text);

}  // namespace orrinvale
