// ProtectedPlaces: what is never removed, whoever asks for it. SafeRemoval and the administrator's
// helper both ask here before anything is touched.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The root, mount points and folders with a mount below, home folders, the program's own files,
/// the kernel's folders with all that is in them, systemPlaces(), and every folder above one of
/// these. Compared by device and inode as well as by spelling, so that neither a bind mount nor
/// another way of writing the path leads around it. A snapshot of one moment: make it anew for each
/// removal that a person confirms. Not changed after it is made, so any thread may ask.
class ProtectedPlaces final {
public:
    /// What is protected on this machine now. `ownFiles` are absolute paths of the program's own
    /// files; of a folder among them all that it holds. When the system does not tell what is
    /// mounted, everything is refused.
    [[nodiscard]] static ProtectedPlaces ofThisMachine(const FileSystem& files,
                                                       const std::vector<std::string>& ownFiles);

    ProtectedPlaces() = default;

    /// Protects one more place and every folder above it; where links lead there, also where they
    /// lead to. The reason is for people: "a home folder". A place that is not there is protected
    /// by its spelling alone.
    void add(const FileSystem& files, std::string_view path, const std::string& reason);

    /// Protects a home folder; when it is a person's, every folder and link beside it as well:
    /// there are the homes of people whom only a directory service knows.
    void addHome(const FileSystem& files, std::string_view home, std::uint32_t user);

    /// Why the entry may not be removed, or nothing when it may. `path` is absolute and without
    /// ".."; others are refused.
    [[nodiscard]] std::optional<std::string> refusal(std::string_view path,
                                                     const FileAttributes& entry) const;

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;  // device, inode

    [[nodiscard]] std::vector<MountPoint> learnMounts(const FileSystem& files);
    void addKernelPlaces(const FileSystem& files);
    void addHomes(const FileSystem& files);
    void addOwnFile(const FileSystem& files, const std::string& path);
    void protect(const FileSystem& files, const std::string& path, const std::string& reason);
    [[nodiscard]] std::optional<Identity> identityOf(const FileSystem& files,
                                                     const std::string& path) const;
    [[nodiscard]] std::vector<std::string> placesOf(const FileSystem& files,
                                                    const std::string& path);
    [[nodiscard]] std::optional<std::string> beyondLinks(const std::string& path);
    [[nodiscard]] bool mayHang(std::string_view path) const;

    std::map<std::string, std::string, std::less<>> m_byPath;  // to the reason
    std::set<std::string> m_homeFolders;  // folders in which people's homes are
    std::map<Identity, std::string> m_byIdentity;
    std::vector<std::uint64_t> m_kernelDevices;
    std::vector<std::string>
        m_mayHang;  // mount points that are not asked, since the answer may never come
    std::vector<std::string> m_linksToHanging;  // nor what is behind these
    bool m_blind = false;                       // nothing is known about the mounts
};

}  // namespace orrinvale
