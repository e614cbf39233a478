// What a caller sees of a system error: its kind and its words.
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/error.h"

namespace orrinvale {
namespace {

TEST(Error, KindAndWordsFollowFromTheNumber) {
    const struct {
        int number;
        ErrorKind kind;
        const char* reason;
    } cases[] = {
        {ENOENT, ErrorKind::NotFound, "No such file or directory"},
        {EACCES, ErrorKind::PermissionDenied, "Permission denied"},
        {EPERM, ErrorKind::PermissionDenied, "Operation not permitted"},
        {ENOTDIR, ErrorKind::NotAFolder, "Not a directory"},
        {ELOOP, ErrorKind::NotARegularFile, "Too many levels of symbolic links"},
        {EOPNOTSUPP, ErrorKind::Unsupported, "Operation not supported"},
        {EIO, ErrorKind::Io, "Input/output error"},
        {99999, ErrorKind::Io, "Unknown error 99999"},
    };
    for (const auto& each : cases) {
        const Error error = systemError("open", "/a", each.number);
        EXPECT_EQ(error.kind, each.kind) << each.number;
        EXPECT_EQ(error.reason(), each.reason);
        EXPECT_EQ(error.number, each.number);
    }
    EXPECT_EQ((Error{ErrorKind::Changed, "remove", "/a", 0}.reason()),
              "Changed since it was looked at");
}

}  // namespace
}  // namespace orrinvale
