// standardStreams: the descriptors 0, 1 and 2, which a program may be started without, and what
// stands behind standard error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Puts something in the place of each that is closed. Otherwise the next file that is opened gets
/// its number, and what is meant for standard error is written into it. What stands in for a stream
/// fails as a closed one does: EBADF. Call it first of all in main().
void fillStandardStreams();

/// Who takes what the program was started to say on standard error.
enum class ErrorStream : std::uint8_t {
    Terminal,
    Journal,  ///< the system's, by the environment's word (JOURNAL_STREAM), which must fit
    Other     ///< nobody, another program, a file
};

/// Of the stream that the program was started with, also while a file stands in its place.
[[nodiscard]] ErrorStream standardErrorGoesTo();

/// Puts this file in the place of standard error, for appending; it is made, for this user alone,
/// where it is not there. Until it is open nothing changes, and on any failure nothing has:
/// ELOOP for a link, EINVAL for what is no regular file, EPERM for another user's, EMLINK for one
/// that has a second name. One at a time; EBUSY while another stands there.
[[nodiscard]] SysResult<void> appendStandardErrorTo(const std::string& path);

/// Takes the file out again, if there is one.
void putStandardErrorBack();

/// Says this to whoever had standard error before the file. Nothing happens where that is nobody,
/// or somebody who takes no more just now: it never waits for a reader.
void writeToStandardErrorBefore(std::string_view text);

/// This thread has descriptors of its own from now on: its standard error stays what it is,
/// whatever is put in its place later, and the two operations above would touch other files than
/// they mean.
void keepOwnStandardError();
/// False after that, on that thread.
[[nodiscard]] bool sharesStandardError();

/// All of it; false at a failure, of which errno tells.
[[nodiscard]] bool writeWhole(int descriptor, std::string_view text);

}  // namespace orrinvale
