// A record is a line: token, device, inode, type, and the path with line breaks and backslashes
// escaped.
#include "engine/removal/AsideJournal.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <memory>
#include <random>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/asideName.h"
#include "engine/files/writeAll.h"
#include "engine/removal/SetAside.h"
#include "engine/removal/nameOfLink.h"
#include "engine/removal/stayReasons.h"
#include "engine/text/escapedLine.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view head = "orrinvale aside 1\n";
constexpr std::string_view extension = ".aside";
constexpr unsigned replacedMark = 16;  // beside the type, of what a link takes the name of

std::string_view takeField(std::string_view& line) {
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

template <class Number> bool readNumber(std::string_view field, Number& out) {
    const auto read = std::from_chars(field.data(), field.data() + field.size(), out);
    return !field.empty() && read.ec == std::errc{} && read.ptr == field.data() + field.size();
}

// An absolute path of plain names: nothing in it leads up or elsewhere.
bool isPlain(const std::string& path) {
    const auto plain = plainPath(path);
    return plain && *plain == path && path != "/" && path.find('\0') == std::string::npos;
}

std::optional<AsideRecord> readRecord(std::string_view line) {
    AsideRecord record;
    unsigned type = 0;
    record.token = takeField(line);
    const bool isRead = readNumber(takeField(line), record.device) &&
                        readNumber(takeField(line), record.inode) &&
                        readNumber(takeField(line), type) && type < 2 * replacedMark &&
                        type % replacedMark <= static_cast<unsigned>(FileType::BlockDevice);
    auto path = unescapedLine(line);
    if (!isRead || !path || !isPlain(*path) || !isAsideName(asideName(record.token, "x")))
        return std::nullopt;
    record.type = static_cast<FileType>(type % replacedMark);
    record.isReplaced = type >= replacedMark;
    record.path = std::move(*path);
    return record;
}

std::string linesOf(std::span<const AsideRecord> records) {
    std::string lines;
    for (const AsideRecord& each : records)
        fmt::format_to(std::back_inserter(lines), "{} {} {} {} {}\n", each.token, each.device,
                       each.inode,
                       static_cast<unsigned>(each.type) + (each.isReplaced ? replacedMark : 0),
                       escapedLine(each.path));
    return lines;
}

/// What became of one record.
struct Settling {
    enum class Found : std::uint8_t { Settled, BroughtBack, Stays, Later };
    Found found = Found::Settled;
    std::string reason;
};

// Where the volume is in, the folder went since, and what was in it with it.
Settling settleWithoutFolder(const FileSystem& files, const AsideRecord& record) {
    std::string folder = folderOf(record.path);
    auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
    for (; !seen && seen.error() == ENOENT && folder != "/"; folder = folderOf(folder))
        seen = files.attributes(FileSystem::noParent, folderOf(folder).c_str(), Links::Follow);
    return {
        seen && seen->device == record.device ? Settling::Found::Settled : Settling::Found::Later,
        {}};
}

bool isThatEntry(const FileSystem& files, const AsideRecord& record, const FileAttributes& folder,
                 const FileAttributes& now) {
    if (now.type != record.type) return false;
    // The rename gave a file of a lower layer another number.
    if (now.inode == record.inode || now.device != folder.device) return true;
    const auto passing = files.devicesOfPassingInodes();
    return std::binary_search(passing.begin(), passing.end(), now.device);
}

Settling settle(const FileSystem& files, const AsideRecord& record) {
    using Found = Settling::Found;
    const auto parent = HeldEntry::holdParentOf(files, record.path);
    if (!parent && parent.error() == ENOENT) return settleWithoutFolder(files, record);
    const auto folder = parent ? files.attributes(parent->get()) : tl::unexpected(parent.error());
    if (!folder || folder->device != record.device) return {Found::Later, {}};
    const std::string own(lastPathComponent(record.path));
    const std::string aside = asideName(record.token, own);
    const auto now = files.attributes(parent->get(), aside.c_str(), Links::Keep);
    if (!now) return {now.error() == ENOENT ? Found::Settled : Found::Later, {}};
    if (!isThatEntry(files, record, *folder, *now) && record.isReplaced &&
        removeLinkLeftAside(files, parent->get(), aside, own, record.inode))
        return {Found::BroughtBack, {}};
    if (!isThatEntry(files, record, *folder, *now))
        return {Found::Stays, "it is another entry than the one that was set aside"};
    const auto moved = giveNameBack(files, parent->get(), aside, own);
    if (moved) return {Found::BroughtBack, {}};
    if (moved.error() == EEXIST && record.isReplaced &&
        takeBackName(files, parent->get(), aside, own))
        return {Found::BroughtBack, {}};
    if (moved.error() == EEXIST) return {Found::Stays, std::string(stay::nameTaken)};
    return {Found::Later, {}};
}

void report(AsideRecovery& recovery, const AsideRecord& record, Settling settling) {
    const std::string place =
        joinPath(folderOf(record.path), asideName(record.token, lastPathComponent(record.path)));
    switch (settling.found) {
        case Settling::Found::Settled: break;
        case Settling::Found::Later: ++recovery.later; break;
        case Settling::Found::BroughtBack:
            Log::line(fmt::format(
                "Brought back {}, which a removal that ended in the middle had set aside",
                record.path));
            recovery.broughtBack.push_back(record.path);
            break;
        case Settling::Found::Stays:
            Log::line(fmt::format("Still aside: {} ({})", place, settling.reason));
            recovery.stayed.push_back({place, std::move(settling.reason), StayReason::Aside});
            break;
    }
}

/// A journal whose removal ended: locked by us, its text read. Nothing where it is not for us.
std::optional<std::string> takeOver(const std::string& path, Descriptor& file) {
    file = Descriptor(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat seen {};
    if (!file.isOpen() || ::fstat(file.get(), &seen) != 0 || !S_ISREG(seen.st_mode) ||
        seen.st_uid != ::geteuid())
        return std::nullopt;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;  // its removal still runs
    auto text = DurableFile::read(path, mostJournalBytes);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

// A volume that was out for so long does not come back, and numbers of devices are given anew at
// every start.
bool isOutdated(int journal) {
    constexpr std::int64_t days = 90;
    struct stat seen {};
    return ::fstat(journal, &seen) == 0 && std::time(nullptr) - seen.st_mtime > days * 24 * 3600;
}

void recover(const FileSystem& files, const std::string& path, AsideRecovery& recovery) {
    Descriptor file;
    const auto text = takeOver(path, file);
    if (!text) return;
    std::vector<AsideRecord> later;
    std::vector<AsideRecord> records = parseAsideJournal(*text);
    for (AsideRecord& record : records) {
        Settling settling = settle(files, record);
        const bool isForLater = settling.found == Settling::Found::Later;
        report(recovery, record, std::move(settling));
        if (isForLater) later.push_back(record);
    }
    if (later.empty() || isOutdated(file.get())) ::unlink(path.c_str());
    else if (later.size() < records.size()) (void)DurableFile::save(path, writeAsideJournal(later));
}

std::vector<std::string> journalsIn(const std::string& folder) {
    std::vector<std::string> paths;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), &::closedir);
    if (!listing) return paths;
    while (const dirent* const entry = ::readdir(listing.get()))
        if (std::string_view(entry->d_name).ends_with(extension))
            paths.push_back(joinPath(folder, entry->d_name));
    return paths;
}

}  // namespace

std::string asideJournalFolder(const std::string& stateFolder) {
    return joinPath(stateFolder, "removals");
}

std::vector<AsideRecord> parseAsideJournal(std::string_view text) {
    std::vector<AsideRecord> records;
    if (!text.starts_with(head)) return records;
    text.remove_prefix(head.size());
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        if (auto record = readRecord(text.substr(0, end))) records.push_back(std::move(*record));
        text.remove_prefix(end + 1);
    }
    return records;
}

std::string writeAsideJournal(std::span<const AsideRecord> records) {
    return std::string(head) + linesOf(records);
}

Result<AsideJournal> AsideJournal::begin(const std::string& folder) {
    if (auto made = DurableFile::makeFolder(folder); !made)
        return tl::unexpected(std::move(made.error()));
    std::string path = joinPath(folder, AsideTokens().next() + std::string(extension));
    Descriptor file(::open(path.c_str(),
                           O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return tl::unexpected(systemError("open", path, errno));
    int error = writeAll(file.get(), head);
    const Descriptor held(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (error == 0 && (!held.isOpen() || ::fsync(held.get()) != 0)) error = errno;
    if (error == 0) return AsideJournal(std::move(path), std::move(file));
    ::unlink(path.c_str());
    return tl::unexpected(systemError("write", path, error));
}

Result<void> AsideJournal::add(std::span<const AsideRecord> records) {
    int error = writeAll(m_file.get(), linesOf(records));
    if (error == 0 && ::fdatasync(m_file.get()) != 0) error = errno;
    if (error != 0) return tl::unexpected(systemError("write", m_path, error));
    return {};
}

void AsideJournal::settle() { ::unlink(m_path.c_str()); }

AsideRecovery bringBackAside(const FileSystem& files, const std::string& folder) {
    AsideRecovery recovery;
    for (const std::string& path : journalsIn(folder)) recover(files, path, recovery);
    return recovery;
}

AsideTokens::AsideTokens() {
    std::random_device chance;
    m_next = (std::uint64_t{chance()} << 32U) | (std::uint64_t{chance()} & 0xFF00'0000U);
}

std::string AsideTokens::next() { return fmt::format("{:016x}", m_next++); }

}  // namespace orrinvale
