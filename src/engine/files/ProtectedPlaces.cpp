// Two tables, by path and by identity; folders above a place stand in them as well.
#include "engine/files/ProtectedPlaces.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <system_error>

#include "engine/files/FolderNode.h"
#include "engine/files/TreeLister.h"
#include "engine/files/accounts.h"
#include "engine/files/systemPlaces.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr std::string_view mountReason = "a mount point";
constexpr std::string_view homeReason = "a home folder";
constexpr std::string_view kernelReason = "a folder of the kernel";
constexpr std::string_view systemReason = "part of the system";
constexpr std::string_view ownReason = "one of the program's own files";
constexpr int mostLinks = 40;  // as the kernel, path_resolution(7)
constexpr std::size_t mostOfUserTable = std::size_t{16} << 20U;

std::string reasonAbove(const std::string& reason) {
    return reason == mountReason ? "a folder with a mount below" : "a folder above " + reason;
}

// Read as a file, not through the C library's modules: those may ask a server that does not answer.
std::string userTable(const FileSystem& files) {
    ReadState state;
    const auto file = files.openFile(FileSystem::noParent, "/etc/passwd", Links::Follow, state);
    if (!file) return {};
    const auto seen = files.attributes(file->get());
    if (!seen || seen->type != FileType::Regular) return {};
    std::string text(std::min<std::size_t>(seen->size, mostOfUserTable), 0);
    const auto count = files.read(file->get(), std::as_writable_bytes(std::span(text)), 0, state);
    text.resize(count ? *count : 0);
    return text;
}

// passwd(5): "name:password:uid:gid:comment:home:shell"
std::string_view fieldOf(std::string_view line, int number) {
    for (int field = 0; field < number; ++field) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return {};
        line.remove_prefix(colon + 1);
    }
    return line.substr(0, line.find(':'));
}

bool isWithinAny(std::string_view path, const std::vector<std::string>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const auto& folder) { return isWithin(path, folder); });
}

}  // namespace

ProtectedPlaces ProtectedPlaces::ofThisMachine(const FileSystem& files,
                                               const std::vector<std::string>& ownFiles) {
    // What comes later gives its reason to a place that is several things.
    ProtectedPlaces places;
    const std::vector<MountPoint> mounts =
        places.learnMounts(files);  // first of all: from then on it is known what may hang
    for (const std::string_view path : systemPlaces())
        places.add(files, path, std::string(systemReason));
    for (const MountPoint& mount : mounts)
        places.protect(files, mount.path, std::string(mountReason));
    places.addHomes(files);  // accounts of the system have theirs in odd places, /dev among them
    for (const std::string& path : ownFiles) places.addOwnFile(files, path);
    places.addKernelPlaces(files);
    places.add(files, "/", "the root of the file system");
    return places;
}

std::vector<MountPoint> ProtectedPlaces::learnMounts(const FileSystem& files) {
    auto mounts = files.mountPoints();
    m_blind = !mounts || mounts->empty();
    if (m_blind) return {};
    for (const MountPoint& mount : *mounts)
        if (mount.mayHang && mount.path != "/")
            m_mayHang.push_back(mount.path);  // without its root nothing answers
    return std::move(*mounts);
}

void ProtectedPlaces::addKernelPlaces(const FileSystem& files) {
    m_kernelDevices = files.kernelDevices();
    const auto root = identityOf(files, "/");
    for (const char* const path : {"/proc", "/sys", "/dev"}) {
        add(files, path, std::string(kernelReason));
        // In a container /dev is a file system of the usual kind.
        const auto place = identityOf(files, path);
        if (place && root && place->first != root->first) m_kernelDevices.push_back(place->first);
    }
}

void ProtectedPlaces::addHomes(const FileSystem& files) {
    const std::string table = userTable(files);
    for (std::size_t at = 0; at < table.size();) {
        const std::size_t end = std::min(table.find('\n', at), table.size());
        const std::string_view line = std::string_view(table).substr(at, end - at);
        const std::string_view number = fieldOf(line, 2);
        std::uint32_t user = 0;
        (void)std::from_chars(number.data(), number.data() + number.size(), user);
        addHome(files, fieldOf(line, 5), user);
        at = end + 1;
    }
    if (const char* const home = std::getenv("HOME")) add(files, home, std::string(homeReason));
}

void ProtectedPlaces::addHome(const FileSystem& files, std::string_view home, std::uint32_t user) {
    const auto plain = plainPath(home);
    if (!plain || *plain == "/") return;
    for (const std::string& each : placesOf(files, *plain)) {
        protect(files, each, std::string(homeReason));
        if (const std::string folder = folderOf(each); isPerson(user) && folder != "/")
            m_homeFolders.insert(folder);
    }
}

void ProtectedPlaces::addOwnFile(const FileSystem& files, const std::string& path) {
    add(files, path, std::string(ownReason));
    const auto folder = openFolderByPath(files, path, Links::Keep);
    if (!folder) return;
    TreeListing listing;
    listing.entry = [&](const TreeEntry& entry) {
        add(files, joinPath(path, entry.relative), std::string(ownReason));
    };
    const std::atomic<bool> never{false};
    (void)listTree(files, folder->get(), listing, never);
}

void ProtectedPlaces::add(const FileSystem& files, std::string_view path,
                          const std::string& reason) {
    const auto plain = plainPath(path);
    if (!plain) return;
    for (const std::string& each : placesOf(files, *plain)) protect(files, each, reason);
}

// The path, and where links lead to from it: up to the place that may hang when they come by one.
std::vector<std::string> ProtectedPlaces::placesOf(const FileSystem& files,
                                                   const std::string& path) {
    std::vector<std::string> places{path};
    if (auto beyond = beyondLinks(path)) {
        places.push_back(std::move(*beyond));
    } else if (auto real = files.resolved(path); real && *real != path) {
        places.push_back(std::move(*real));
    }
    return places;
}

// The spelling of a place that may hang, when the path comes to one; from then on nobody asks for
// what is behind that link either. Followed link by link, as a look-up of the whole path might not
// come back.
std::optional<std::string> ProtectedPlaces::beyondLinks(const std::string& path) {
    if (m_mayHang.empty()) return std::nullopt;
    std::string done = "/";
    std::string rest = path;
    std::size_t unread = path.size();  // of the path itself, behind the last link
    for (int links = 0; links <= mostLinks && !rest.empty();) {
        std::string_view behind = rest;
        const std::string name(nextComponent(behind));
        rest.erase(0, rest.size() - behind.size());
        unread = std::min(unread, rest.size());
        if (name == "..") done = folderOf(done);
        if (name.empty() || name == "." || name == "..") continue;
        const std::string next = joinPath(done, name);
        if (isWithinAny(next, m_mayHang)) {
            if (links > 0) m_linksToHanging.push_back(path.substr(0, path.size() - unread));
            return plainPath(next + rest).value_or(next);
        }
        std::error_code none;
        const std::string text = std::filesystem::read_symlink(next, none).string();
        if (text.empty()) {
            done = next;
            continue;
        }
        ++links;
        if (text.front() == '/') done = "/";
        rest.insert(0, text + '/');
    }
    return std::nullopt;
}

void ProtectedPlaces::protect(const FileSystem& files, const std::string& path,
                              const std::string& reason) {
    m_byPath.insert_or_assign(path, reason);
    if (const auto identity = identityOf(files, path))
        m_byIdentity.insert_or_assign(*identity, reason);
    const std::string above = reasonAbove(reason);
    for (std::string_view rest = path; rest.size() > 1 && !splitPath(rest).folder.empty();) {
        rest = splitPath(rest).folder;
        const std::string folder(rest);
        if (!m_byPath.try_emplace(folder, above).second)
            break;  // then the folders above it are known too
        if (const auto identity = identityOf(files, folder))
            m_byIdentity.try_emplace(*identity, above);
    }
}

std::optional<ProtectedPlaces::Identity> ProtectedPlaces::identityOf(
    const FileSystem& files, const std::string& path) const {
    if (mayHang(path)) return std::nullopt;
    const auto seen = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!seen || seen->inode == 0) return std::nullopt;
    return Identity{seen->device, seen->inode};
}

bool ProtectedPlaces::mayHang(std::string_view path) const {
    return isWithinAny(path, m_mayHang) || isWithinAny(path, m_linksToHanging);
}

std::optional<std::string> ProtectedPlaces::refusal(std::string_view path,
                                                    const FileAttributes& entry) const {
    const auto plain = plainPath(path);
    if (!plain) return "not a plain absolute path";
    if (m_blind) return "what is mounted can not be told";
    if (const auto place = m_byPath.find(*plain); place != m_byPath.end()) return place->second;
    const bool mayBeHome = entry.type == FileType::Folder || entry.type == FileType::SymbolicLink;
    if (mayBeHome && m_homeFolders.contains(folderOf(*plain))) return std::string(homeReason);
    if (entry.inode != 0)
        if (const auto place = m_byIdentity.find({entry.device, entry.inode});
            place != m_byIdentity.end())
            return place->second;
    if (std::find(m_kernelDevices.begin(), m_kernelDevices.end(), entry.device) !=
        m_kernelDevices.end())
        return "in a folder of the kernel";
    return std::nullopt;
}

}  // namespace orrinvale
