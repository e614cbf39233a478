// Any bytes as a user-dirs.dirs: what comes out is a plain absolute path, and the last good line
// wins.

#include "fuzz/fuzz.h"
#include "platform/linux/LinuxFolders.h"

namespace {

void check(std::string_view text) {
    const auto found = orrinvale::downloadsIn(text, "/home/u");
    if (found) {
        require(found->starts_with('/') &&
                found->size() <= text.size() + std::string_view("/home/u").size());
        require(*found == "/" || !found->ends_with('/'));
        const std::string closed = *found + '/';
        for (const std::string_view piece : {"//", "/./", "/../"})
            require(*found == "/" || closed.find(piece) == std::string::npos);
        require(found->find('\n') == std::string::npos && found->find('\0') == std::string::npos);
    }
    require(orrinvale::downloadsIn(std::string(text) + "\nXDG_DOWNLOAD_DIR=\"$HOME/last\"",
                                   "/home/u") == "/home/u/last");
}

}  // namespace

void checkAny(std::string_view text) {
    check(text);
    // The replayed inputs know no such file, so each is tried as a value too.
    check("XDG_DOWNLOAD_DIR=\"" + std::string(text) + "\"");
    check("XDG_DOWNLOAD_DIR=\"$HOME/" + std::string(text) + "\"");
}
