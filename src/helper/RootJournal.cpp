// The folder that only root may write, and what is asked of it before it is believed.
#include "helper/RootJournal.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "helper/Checks.h"
#include "platform/descriptor.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/paths.h"

namespace orrinvale::helper {
namespace {

/// False where what happened on the volume can not be made durable now. One that is not there any
/// more was made so when it went.
bool makeDurable(std::uint64_t device, std::string folder) {
    for (;; folder = folderOf(folder)) {
        const Descriptor held(
            ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        struct stat seen {};
        if (held.isOpen() && ::fstat(held.get(), &seen) == 0 && seen.st_dev == device)
            return ::syncfs(held.get()) == 0;
        if (folder == "/") return true;
    }
}

}  // namespace

bool RootJournal::hasFolder() const { return ::access(m_folder.c_str(), F_OK) == 0; }

// What stands in a journal is done as root, so that the way to it must be root's alone, and lead
// through no link.
std::optional<std::string> RootJournal::objectionToFolder() const {
    constexpr uid_t root = 0;
    const auto parent = openVerifiedParent(m_folder, root);
    if (!parent) return parent.error();
    struct stat seen {};
    if (::fstatat(parent->folder.get(), parent->name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0)
        return "it can not be looked at";
    if (!S_ISDIR(seen.st_mode) || seen.st_uid != root || (seen.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return "it is not root's alone";
    return std::nullopt;
}

std::optional<std::string> RootJournal::open() {
    if (m_journal) return std::nullopt;
    constexpr int attempts = 3;  // another session may take the folder away meanwhile
    std::string reason;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        (void)::mkdir(m_folder.c_str(), 0700);
        if (auto objection = objectionToFolder()) return objection;
        auto begun = AsideJournal::begin(m_folder);
        if (begun) {
            m_journal.emplace(std::move(*begun));
            return std::nullopt;
        }
        reason = begun.error().reason();
    }
    return reason;
}

std::optional<std::string> RootJournal::add(AsideRecord record) {
    if (!m_journal) return std::nullopt;
    record.token = AsideTokens().next();
    if (!m_journal->add(std::array{record})) return std::nullopt;
    return record.token;
}

void RootJournal::touched(std::uint64_t device, std::string_view path) {
    m_volumes.insert_or_assign(device, folderOf(path));
}

void RootJournal::settle() {
    if (!m_journal) return;
    const bool isDurable = std::all_of(m_volumes.begin(), m_volumes.end(), [](const auto& volume) {
        return makeDurable(volume.first, volume.second);
    });
    if (!isDurable) return;
    m_journal->settle();
    (void)::rmdir(m_folder.c_str());  // other sessions' journals keep it
}

std::vector<std::string> RootJournal::bringBack() const {
    if (auto objection = objectionToFolder())
        return {fmt::format("{} is not used: {}", m_folder, *objection)};
    std::vector<std::string> lines;
    const AsideRecovery recovery = bringBackAside(LinuxFileSystem(), m_folder);
    for (const std::string& path : recovery.broughtBack) lines.push_back("brought back: " + path);
    for (const StayedEntry& each : recovery.stayed)
        lines.push_back(fmt::format("still aside: {}: {}", each.reason, each.path));
    if (recovery.later > 0)
        lines.push_back(
            fmt::format("{} entries are aside on volumes that are not there", recovery.later));
    (void)::rmdir(m_folder.c_str());
    return lines;
}

}  // namespace orrinvale::helper
