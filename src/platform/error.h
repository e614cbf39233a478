// Error and Result: how a failure is handed up. What throws says so at its name; see also
// engine/base/Log.h.
#pragma once

#include <string>
#include <string_view>
#include <tl/expected.hpp>

namespace orrinvale {

/// What went wrong, in terms that a caller can act on without knowing errno values.
enum class ErrorKind {
    NotFound,
    PermissionDenied,
    NotAFolder,
    NotARegularFile,
    Changed,
    Unsupported,
    Io
};

/// A failure: its kind, the operation that failed (a constant such as "open"), the path concerned
/// (exact bytes) and the system's error number, 0 where no system call failed.
struct Error {
    ErrorKind kind = ErrorKind::Io;
    std::string_view operation;
    std::string path;
    int number = 0;

    /// The reason alone, in the system's English words ("Permission denied"), independent of the
    /// locale.
    [[nodiscard]] std::string reason() const;
};

/// Makes an Error from an errno value; the kind follows from the number.
[[nodiscard]] Error systemError(std::string_view operation, std::string path, int number);

template <class T> using Result = tl::expected<T, Error>;

}  // namespace orrinvale
