// The record comes first, so that no entry is ever in the trash without one.
#include "engine/files/TrashFolder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <random>
#include <span>
#include <utility>

#include "engine/files/TrashRecord.h"
#include "engine/files/shortenedName.h"
#include "engine/files/writeAll.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Failure = TrashFolder::Failure;

constexpr std::string_view replacedReason = "another entry came into its place";
constexpr std::string_view recordExtension = ".trashinfo";
// Numbers one after another up to here, so that people see a series; from there on by chance, since
// ten thousand entries of one name must not take ten thousand attempts each.
constexpr std::uint64_t mostInSeries = 20;
constexpr std::uint64_t mostAttempts = 200;

std::string folderReason(int error) { return systemError("move", {}, error).reason(); }

std::uint64_t numberOf(std::uint64_t attempt) {
    if (attempt < mostInSeries) return attempt;
    std::random_device chance;
    return std::uniform_int_distribution<std::uint64_t>(mostInSeries, 4'294'967'295U)(chance);
}

bool isSame(const FileAttributes& a, const FileAttributes& b) {
    return a.device == b.device && a.inode == b.inode && a.type == b.type;
}

bool isUntouched(const TrashFolder::Trashed& entry, const FileAttributes& now) {
    const FileAttributes& seen = entry.attributes;
    if (entry.inodePasses ? seen.type != now.type : !isSame(seen, now)) return false;
    return seen.type != FileType::Regular ||
           (seen.size == now.size && seen.modified == now.modified);
}

SysResult<Descriptor> openMade(const FileSystem& files, int parent, const char* name) {
    if (::mkdirat(parent, name, 0700) != 0 && errno != EEXIST) return tl::unexpected(errno);
    return files.openInside(parent, name);
}

/// Nothing, with the reason, for a folder of another user: what is moved there would be his.
tl::expected<Descriptor, std::string> openMadeOwn(const FileSystem& files, int parent,
                                                  const char* name, uid_t user) {
    auto opened = openMade(files, parent, name);
    if (!opened) return tl::unexpected(folderReason(opened.error()));
    struct stat seen {};
    if (::fstat(opened->get(), &seen) != 0) return tl::unexpected(folderReason(errno));
    if (seen.st_uid != user)
        return tl::unexpected(std::string("the trash there is another user's"));
    return std::move(*opened);
}

}  // namespace

std::string nameInTrash(std::string_view name, std::uint64_t attempt) {
    const std::string number = attempt < 2 ? std::string() : fmt::format(" {}", attempt);
    return shortenedName(name, number, longestName - recordExtension.size());
}

bool isNameInTrash(std::string_view name, std::string_view trashed) {
    if (trashed == nameInTrash(name, 1)) return true;
    for (std::size_t at = trashed.find(' '); at != std::string_view::npos;
         at = trashed.find(' ', at + 1)) {
        std::uint64_t number = 0;
        const auto digits = trashed.substr(at + 1);
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (read.ec == std::errc() && number > 1 && trashed == nameInTrash(name, number))
            return true;
    }
    return false;
}

tl::expected<TrashFolder, std::string> TrashFolder::open(const FileSystem& files, int parent,
                                                         const std::string& name, uid_t user) {
    const auto opened = openMadeOwn(files, parent, name.c_str(), user);
    if (!opened) return tl::unexpected(opened.error());
    TrashFolder trash(files);
    for (auto [folder, inner] :
         {std::pair{&trash.m_entries, "files"}, std::pair{&trash.m_records, "info"}}) {
        auto made = openMadeOwn(files, opened->get(), inner, user);
        if (!made) return tl::unexpected(std::move(made.error()));
        *folder = std::move(*made);
    }
    const auto entries = files.attributes(trash.m_entries.get());
    const auto records = files.attributes(trash.m_records.get());
    if (!entries || !records)
        return tl::unexpected(folderReason(!entries ? entries.error() : records.error()));
    trash.m_entriesSeen = *entries;
    trash.m_recordsSeen = *records;
    trash.m_place = files.placeOf(trash.m_entries.get()).value_or("");
    return trash;
}

tl::expected<std::string, Failure> TrashFolder::take(const HeldEntry& held, const Leaving& from,
                                                     const LastLook& lastLook,
                                                     Records records) const {
    if (auto reason = objection(held, from.attributes))
        return tl::unexpected(Failure{std::move(*reason)});
    const auto entry = m_files->holdEntry(held.parent.get(), held.name.c_str());
    const auto now = entry ? m_files->attributes(entry->get()) : tl::unexpected(entry.error());
    if (!now) return tl::unexpected(Failure{folderReason(now.error())});
    if (!isSame(*now, held.attributes)) return tl::unexpected(Failure{std::string(replacedReason)});
    const std::string record = recordOf(joinPath(from.place, held.name));
    for (std::uint64_t attempt = 1; attempt <= mostAttempts; ++attempt) {
        const std::string name = nameInTrash(held.name, numberOf(attempt));
        if (const int error = writeRecord(name, record, records); error == EEXIST) continue;
        else if (error != 0) return tl::unexpected(Failure{folderReason(error)});
        const auto moved =
            m_files->moveEntry(held.parent.get(), held.name.c_str(), m_entries.get(), name.c_str());
        if (moved) {
            if (auto failure = check(held, entry->get(), name, lastLook))
                return tl::unexpected(std::move(*failure));
            return joinPath(m_place, name);
        }
        dropRecord(name);
        if (moved.error() == EEXIST) continue;  // left there by something that writes no records
        if (moved.error() == EINVAL) return tl::unexpected(Failure{"the trash is in it"});
        return tl::unexpected(Failure{folderReason(moved.error()), moved.error() == EXDEV});
    }
    return tl::unexpected(Failure{folderReason(EEXIST)});
}

SysResult<Descriptor> TrashFolder::holdRecords() const {
    return m_files->openFolder(m_records.get(), ".", Links::Keep);
}

SysResult<std::vector<TrashFolder::Trashed>> TrashFolder::list() const {
    const auto folder = m_files->openFolder(m_entries.get(), ".", Links::Keep);
    if (!folder) return tl::unexpected(folder.error());
    std::vector<Trashed> found;
    CatalogBatch batch;
    for (auto more = m_files->readFolder(folder->get(), batch); !more || *more;
         more = m_files->readFolder(folder->get(), batch)) {
        if (!more) return tl::unexpected(more.error());
        m_files->readAttributes(folder->get(), batch.entries);
        for (const CatalogEntry& each : batch.entries)
            if (each.error == 0) found.push_back({each.name, each.attributes, false});
    }
    return found;
}

SysResult<FileAttributes> TrashFolder::attributesOf(const std::string& name) const {
    return m_files->attributes(m_entries.get(), name.c_str(), Links::Keep);
}

std::string TrashFolder::placeOf(const std::string& name) const {
    return joinPath(m_files->placeOf(m_entries.get()).value_or(""), name);
}

std::optional<std::string> TrashFolder::origin(const std::string& name) const {
    ReadState state;
    const auto file = m_files->openFile(
        m_records.get(), (name + std::string(recordExtension)).c_str(), Links::Keep, state);
    const auto seen = file ? m_files->attributes(file->get()) : tl::unexpected(file.error());
    if (!seen || seen->type != FileType::Regular || seen->size > longestTrashRecord)
        return std::nullopt;
    if (seen->size == 0) return std::string();
    std::string text(static_cast<std::size_t>(seen->size), '\0');
    const auto count = m_files->read(
        file->get(), std::as_writable_bytes(std::span(text.data(), text.size())), 0, state);
    if (!count) return std::nullopt;
    auto path = pathInTrashRecord(std::string_view(text).substr(0, *count));
    if (!path || path->starts_with('/')) return path;
    if (m_root.empty()) return std::nullopt;
    return joinPath(m_root, *path);
}

// The name is all that a rename knows: what stands in its place is looked for before it, and what
// came there since is moved back at once.
std::optional<TrashFolder::NotBack> TrashFolder::giveBack(const Trashed& entry, int folder,
                                                          const std::string& name) const {
    const auto there = attributesOf(entry.name);
    if (!there) return NotBack{folderReason(there.error())};
    if (!isUntouched(entry, *there)) return NotBack{std::string(replacedReason)};
    const auto moved =
        m_files->moveEntry(m_entries.get(), entry.name.c_str(), folder, name.c_str());
    if (!moved)
        return NotBack{moved.error() == EEXIST ? std::string("its name is taken by now")
                                               : folderReason(moved.error())};
    const auto back = m_files->attributes(folder, name.c_str(), Links::Keep);
    if (back && isUntouched(entry, *back)) {
        dropRecord(entry.name);
        return std::nullopt;
    }
    if (m_files->moveEntry(folder, name.c_str(), m_entries.get(), entry.name.c_str()))
        return NotBack{std::string(replacedReason)};
    return NotBack{fmt::format("{}, and left the trash with its name: {}", replacedReason,
                               joinPath(m_files->placeOf(folder).value_or(std::string()), name)),
                   true};
}

// What is there already, and the records themselves.
std::optional<std::string> TrashFolder::objection(const HeldEntry& held,
                                                  const FileAttributes& parent) const {
    if (isSame(m_entriesSeen, parent)) return "it is in the trash";
    if (isSame(m_recordsSeen, parent) || isSame(m_recordsSeen, held.attributes))
        return "it is a part of the trash";
    return std::nullopt;
}

std::string TrashFolder::recordOf(const std::string& place) const {
    std::string_view path = place;
    if (!m_root.empty() && isWithin(place, m_root))
        path.remove_prefix(m_root == "/" ? 1 : m_root.size() + 1);
    return trashRecordOf(path);
}

// What is moved while its record is not on the disk stays a whole entry in the trash if the power
// goes, and who moves many of them has noted where they were. A served file system may tell of a
// full disk as late as the file is closed.
int TrashFolder::writeRecord(const std::string& name, const std::string& text,
                             Records records) const {
    const std::string full = name + std::string(recordExtension);
    Descriptor file(::openat(m_records.get(), full.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen()) return errno;
    int error = writeAll(file.get(), text);
    if (records == Records::Now) {
        if (error == 0 && ::fsync(file.get()) != 0) error = errno;
        if (error == 0 && ::fsync(m_records.get()) != 0)
            error = errno;  // an entry without a record can not be put back
    }
    if (::close(file.release()) != 0 && errno != EINTR && error == 0) error = errno;
    if (error != 0) dropRecord(name);
    return error;
}

void TrashFolder::dropRecord(const std::string& name) const {
    (void)m_files->removeEntry(m_records.get(), (name + std::string(recordExtension)).c_str(),
                               FileType::Regular);
}

// A name was moved, and only now is it certain what stood behind it. Layers give a file another
// number as they copy it up for the move; the entry that was held from before shows that one too.
std::optional<Failure> TrashFolder::check(const HeldEntry& held, int entry, const std::string& name,
                                          const LastLook& lastLook) const {
    const auto now = attributesOf(name);
    bool isThat = now && isSame(*now, held.attributes);
    if (now && !isThat) {
        const auto moved = m_files->attributes(entry);
        isThat = moved && isSame(*now, *moved);
    }
    auto reason = isThat ? std::nullopt : std::optional(std::string(replacedReason));
    if (!reason && lastLook) reason = lastLook(*now);
    if (!reason) return std::nullopt;
    if (m_files->moveEntry(m_entries.get(), name.c_str(), held.parent.get(), held.name.c_str()))
        dropRecord(name);
    else return Failure{*reason + ", and it stays in the trash: " + placeOf(name), false, true};
    return Failure{std::move(*reason)};
}

}  // namespace orrinvale
