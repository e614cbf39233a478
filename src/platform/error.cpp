// The words come from the C library's untranslated table, so a log reads the same on every desktop.
#include "platform/error.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace orrinvale {
namespace {

ErrorKind kindOf(int number) {
    switch (number) {
        case ENOENT: return ErrorKind::NotFound;
        case EACCES:
        case EPERM: return ErrorKind::PermissionDenied;
        case ENOTDIR: return ErrorKind::NotAFolder;
        case EISDIR:
        case ELOOP:  // an open that follows no link met one
        case ENXIO:  // an open of a pipe or a socket
            return ErrorKind::NotARegularFile;
        case ESTALE: return ErrorKind::Changed;
        case ENOSYS:
        case EOPNOTSUPP: return ErrorKind::Unsupported;
        default: return ErrorKind::Io;
    }
}

std::string_view wordsOf(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::NotFound: return "Not found";
        case ErrorKind::PermissionDenied: return "Permission denied";
        case ErrorKind::NotAFolder: return "Not a folder";
        case ErrorKind::NotARegularFile: return "Not a regular file";
        case ErrorKind::Changed: return "Changed since it was looked at";
        case ErrorKind::Unsupported: return "Not supported here";
        case ErrorKind::Io: break;
    }
    return "Input/output error";
}

}  // namespace

std::string Error::reason() const {
    if (number == 0) return std::string(wordsOf(kind));
    if (const char* const words = ::strerrordesc_np(number)) return words;
    return fmt::format("Unknown error {}", number);
}

Error systemError(std::string_view operation, std::string path, int number) {
    return Error{kindOf(number), operation, std::move(path), number};
}

}  // namespace orrinvale
