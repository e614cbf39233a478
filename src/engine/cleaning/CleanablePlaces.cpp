// CleanablePlaces: see CleanablePlaces.h. The tables hold the reasons.
//
// Folders below the two system folders always stay: packages make them once, with owners and modes
// that their services rely on, and most services neither make them again nor start without them.
// Only files go.
#include "engine/cleaning/CleanablePlaces.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace orrinvale {
namespace {

using Rule = CleanablePlaces::Rule;
using Verdict = CleanablePlaces::Verdict;
using Components = std::vector<std::string_view>;

struct KeptPlace {
    std::string_view name;  // directly below the system folder
    std::string_view reason;
};

// Under the name of caches, but not to be made again by any program that runs.
constexpr std::array keptCaches{
    KeptPlace{"debconf", "the answers given when packages were set up"},
    KeptPlace{"dbconfig-common", "copies of databases made before upgrades"},
    KeptPlace{"bind", "zones and keys of the name server"},
    KeptPlace{"samba", "state of the file server, logins for times without network among it"},
    KeptPlace{"cracklib", "word lists that only a daily job makes again"},
    KeptPlace{"dictionaries-common", "word lists made when packages were set up"},
    KeptPlace{"postgresql", "word lists of the database, made when packages were set up"},
};

constexpr std::array keptLogs{
    KeptPlace{"audit", "the security record; its service stops the machine when it can not write"},
    KeptPlace{"sudo-io", "the record of what administrators did"},
};

// Kept by the programs that log people in: they write to these files, but do not make them.
constexpr std::array<std::string_view, 7> loginRecords{
    "wtmp", "btmp", "lastlog", "faillog", "tallylog", "wtmp.db", "lastlog2.db"};

constexpr Verdict mayGo{};
constexpr Verdict folderStays{Rule::ContentsOnly,
                              "the folder belongs to a package; the files in it may go"};

// False when the path climbs or stands still.
bool split(std::string_view path, Components& out) {
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        at = end + 1;
        if (component.empty()) continue;
        if (component == "." || component == "..") return false;
        out.push_back(component);
    }
    return true;
}

// What follows the root in the path; nothing when it does not lie there.
std::optional<Components> below(const std::string& root, const Components& path) {
    Components start;
    if (!split(root, start) || start.empty() || path.size() < start.size()) return std::nullopt;
    if (!std::equal(start.begin(), start.end(), path.begin())) return std::nullopt;
    return Components(path.begin() + static_cast<std::ptrdiff_t>(start.size()), path.end());
}

template <std::size_t Size>
const KeptPlace* find(const std::array<KeptPlace, Size>& places, std::string_view name) {
    const auto* const found = std::find_if(
        places.begin(), places.end(), [&](const KeptPlace& each) { return each.name == name; });
    return found == places.end() ? nullptr : found;
}

// For both folders: what is neither folder nor file was put there on purpose.
std::optional<Verdict> ofType(FileType type) {
    switch (type) {
        case FileType::Folder: return folderStays;
        case FileType::Regular: return std::nullopt;
        case FileType::SymbolicLink:
            return Verdict{Rule::Stays, "a link that an administrator or a package set"};
        default: return Verdict{Rule::Stays, "not a file"};
    }
}

Verdict ofCache(const Components& path, FileType type) {
    if (path.empty()) return {Rule::ContentsOnly, "the folder of the system's caches"};
    if (const KeptPlace* const kept = find(keptCaches, path.front()))
        return {Rule::Stays, kept->reason};
    if (const auto verdict = ofType(type)) return *verdict;
    const std::string_view name = path.back();
    if (name == "lock" || name.ends_with(".lock"))
        return {Rule::Stays, "a running program may hold it"};
    return mayGo;
}

// A journal that is closed has an "@" or a "~" in its name; the others are being written to.
bool isOpenJournal(const Components& path) {
    return path.size() > 1 && path.front() == "journal" && path.back().ends_with(".journal") &&
           path.back().find('@') == std::string_view::npos;
}

// Binary logs are not messages but the changes since the last backup, and what replicas read.
bool isBinaryLog(const Components& path) {
    const bool database = path.front() == "mysql" || path.front() == "mariadb";
    const std::string_view name = path.back();
    const std::size_t dot =
        name.rfind('.');  // "binlog.000001", "host-bin.000001", and the index of these
    if (!database || dot == std::string_view::npos) return false;
    const std::string_view ending = name.substr(dot + 1);
    const bool isNumber =
        !ending.empty() && ending.find_first_not_of("0123456789") == std::string_view::npos;
    // Rotated messages end in one or two figures, binary logs in six.
    constexpr std::size_t fewestFigures = 4;
    return (isNumber && ending.size() >= fewestFigures) || ending == "index";
}

Verdict ofLog(const Components& path, FileType type) {
    if (path.empty()) return {Rule::ContentsOnly, "the folder of the system's logs"};
    if (const KeptPlace* const kept = find(keptLogs, path.front()))
        return {Rule::Stays, kept->reason};
    if (const auto verdict = ofType(type)) return *verdict;
    if (path.size() == 1 &&
        std::find(loginRecords.begin(), loginRecords.end(), path.front()) != loginRecords.end())
        return {Rule::Stays, "the record of logins"};
    if (isOpenJournal(path)) return {Rule::Stays, "the journal is being written to it"};
    if (isBinaryLog(path)) return {Rule::Stays, "a database restores and copies itself from it"};
    return mayGo;
}

}  // namespace

CleanablePlaces::CleanablePlaces(std::string systemCaches, std::string systemLogs)
    : m_caches(std::move(systemCaches)), m_logs(std::move(systemLogs)) {}

Verdict CleanablePlaces::verdict(std::string_view path, FileType type) const {
    Components components;
    if (!path.starts_with('/') || !split(path, components))
        return {Rule::Stays, "not a plain path"};
    if (const auto relative = below(m_caches, components)) return ofCache(*relative, type);
    if (const auto relative = below(m_logs, components)) return ofLog(*relative, type);
    return mayGo;
}

}  // namespace orrinvale
