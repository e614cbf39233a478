// StandardStreams (platform/standardStreams.h): open(2) gives the lowest free number, so that a gap
// is filled by opening until none is left.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/standardStreams.h"

namespace orrinvale {

void fillStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        // Opened the wrong way round: reading from standard input and writing to the others fail
        // with EBADF, as they did. Children get it too, since they would miss the streams in the
        // same way.
        static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

}  // namespace orrinvale
