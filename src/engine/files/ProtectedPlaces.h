// ProtectedPlaces: what is never removed, whoever asks for it. SafeRemoval and the administrator's helper both ask here before
// anything is touched.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace orrinvale {

/// The root, mount points and folders with a mount below, home folders, the program's own files, the kernel's folders, and
/// every folder above one of these. Compared by device and inode as well as by spelling, so that neither a bind mount nor
/// another way of writing the path leads around it. A snapshot of one moment: make it anew for each removal that a person
/// confirms. Not changed after it is made, so any thread may ask.
class ProtectedPlaces final {
public:
    /// What is protected on this machine now. `ownFiles` are absolute paths of the program's own files.
    [[nodiscard]] static ProtectedPlaces ofThisMachine(const FileSystem& files,
                                                       const std::vector<std::string>& ownFiles);

    ProtectedPlaces() = default;

    /// Protects one more place and every folder above it. The reason is for people: "a home folder".
    void add(const FileSystem& files, std::string_view path, std::string reason);

    /// Why the entry may not be removed, or nothing when it may. `path` is absolute and without "." and "..".
    [[nodiscard]] std::optional<std::string> refusal(std::string_view path, const FileAttributes& entry) const;

private:
    struct Place {
        std::string path;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::string reason;
        bool above = false;  // a folder on the way to a protected place
    };
    std::vector<Place> m_places;
};

}  // namespace orrinvale
