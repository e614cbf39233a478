// What is listed, and what a switch changes. addedEntry.cpp makes new entries.
#include "engine/loginitems/AutostartItems.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <set>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "engine/loginitems/entryKeys.h"
#include "platform/FileUrl.h"
#include "platform/descriptor.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// The names of entries in a folder, in the order of their bytes; 0 or the error.
int namesIn(const std::string& folder, std::set<std::string>& names) {
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(folder.c_str()), &::closedir);
    if (!opened) return errno == ENOENT ? 0 : errno;
    while (const dirent* const entry = ::readdir(opened.get()))
        if (std::string name(entry->d_name); isEntryName(name)) names.insert(std::move(name));
    return 0;
}

bool isThere(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// The entry itself, and not what a link leads to.
std::optional<FileAttributes> seenOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    const auto nanoseconds = [](const timespec& time) {
        return (std::int64_t{time.tv_sec} * 1'000'000'000) + time.tv_nsec;
    };
    FileAttributes seen;
    seen.type = S_ISREG(status.st_mode)   ? FileType::Regular
                : S_ISLNK(status.st_mode) ? FileType::SymbolicLink
                                          : FileType::Unknown;
    seen.size = static_cast<std::uint64_t>(status.st_size);
    seen.device = status.st_dev;
    seen.inode = status.st_ino;
    seen.modified = nanoseconds(status.st_mtim);
    seen.changed = nanoseconds(status.st_ctim);
    return seen;
}

}  // namespace

Result<EntryText> readEntry(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return tl::unexpected(systemError("open", path, errno));
    if (!S_ISREG(status.st_mode)) return tl::unexpected(systemError("open", path, EBADMSG));
    EntryText read{{}, status.st_mode};
    std::array<char, 16384> piece{};
    while (read.text.size() <= kAutostartEntryLimit) {
        const ssize_t count = ::read(file.get(), piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return tl::unexpected(systemError("read", path, errno));
        if (count == 0) return read;
        read.text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return tl::unexpected(systemError("read", path, EFBIG));
}

bool isEntryName(std::string_view name) {
    constexpr std::string_view ending = ".desktop";
    return name.size() > ending.size() && name.ends_with(ending) &&
           name.find('/') == std::string_view::npos;
}

std::string overrideText(const std::string& name) {
    AutostartEntry entry;
    entry.setRaw("Type", "Application");
    entry.setText("Name", name);
    entry.setRaw("Hidden", "true");
    entry.setRaw(entryKey::switchedOff, "true");
    return entry.print();
}

std::vector<LoginItemRecord> AutostartItems::list(std::int32_t& status) const {
    std::set<std::string> persons;
    std::set<std::string> systems;
    status = namesIn(m_folders.persons, persons) == 0 ? 0 : errLoginItemIO;
    if (status != 0) return {};
    for (const std::string& folder : m_folders.systems) static_cast<void>(namesIn(folder, systems));
    std::vector<LoginItemRecord> records;
    records.reserve(persons.size() + systems.size());
    for (const std::string& name : persons) records.push_back(recordOf(name, true));
    // Places in the list are those of the items, and of the rest behind them.
    std::stable_partition(records.begin(), records.end(), isItem);
    for (const std::string& name : systems)
        if (!persons.contains(name)) records.push_back(recordOf(name, false));
    return records;
}

std::optional<std::string> AutostartItems::systemsFile(const std::string& fileName) const {
    for (const std::string& folder : m_folders.systems)
        if (std::string path = joinPath(folder, fileName); isThere(path)) return path;
    return std::nullopt;
}

LoginItemRecord AutostartItems::recordOf(const std::string& fileName, bool isPersons) const {
    LoginItemRecord record;
    const auto systems = systemsFile(fileName);
    record.fileName = fileName;
    record.isPersons = isPersons;
    record.isSystems = systems.has_value();
    record.file = isPersons ? joinPath(m_folders.persons, fileName) : systems.value_or("");
    record.name = fileName.substr(0, fileName.rfind('.'));
    // Before it is read, so that what is written meanwhile shows as another one.
    record.seen = seenOf(record.file);
    const auto read = readEntry(record.file);
    const auto entry = read ? AutostartEntry::parse(read->text) : std::nullopt;
    if (!entry) {
        const bool isGarbage = read || read.error().number == EBADMSG;
        record.fault = isGarbage ? "it is no entry that starts a program" : read.error().reason();
        return record;
    }
    readInto(record, *entry);
    // What only puts an entry of the system out need not say what that is.
    if (!record.isDeleted || !isPersons || !systems) return record;
    const auto below = readEntry(*systems);
    const auto original = below ? AutostartEntry::parse(below->text) : std::nullopt;
    if (!original) return record;
    LoginItemRecord shown = record;
    readInto(shown, *original);
    shown.isDeleted = true;
    shown.starts = false;
    shown.isOurs = record.isOurs;
    return shown;
}

void AutostartItems::readInto(LoginItemRecord& record, const AutostartEntry& entry) const {
    if (auto name = entry.text("Name", m_folders.languages); !name.empty())
        record.name = std::move(name);
    record.command = entry.text("Exec");
    record.icon = entry.text("Icon", m_folders.languages);
    record.onlyIn = entry.list("OnlyShowIn");
    record.isDeleted = entry.flag("Hidden");
    record.startsHidden = entry.flag(entryKey::startHidden);
    record.isOurs = entry.raw(entryKey::path).has_value();
    record.path = programOf(entry);
    record.fault.clear();
    if (record.command.empty()) record.fault = "it names no program";
    else if (record.path.empty()) record.fault = "its program is gone";
    record.isForThisDesktop = isForThisDesktop(entry);
    record.starts = record.fault.empty() && !record.isDeleted && record.isForThisDesktop &&
                    entry.raw(entryKey::gnomeEnabled) != "false";
}

// Empty where it is gone.
std::string AutostartItems::programOf(const AutostartEntry& entry) const {
    if (const std::string wanted = entry.text("TryExec"); !wanted.empty() && found(wanted).empty())
        return {};
    const auto words = commandWords(entry.text("Exec"));
    if (words.empty()) return {};
    std::string program = found(words.front());
    if (program.empty()) return {};
    const auto own = pathOfFileUrl(entry.text(entryKey::path));
    if (!own) return program;
    struct stat status {};
    return ::stat(own->c_str(), &status) == 0 ? *own : std::string();
}

std::string AutostartItems::found(const std::string& program) const {
    if (program.starts_with('/')) return ::access(program.c_str(), X_OK) == 0 ? program : "";
    for (const std::string& folder : m_folders.programs)
        if (std::string path = joinPath(folder, program); ::access(path.c_str(), X_OK) == 0)
            return path;
    return {};
}

bool AutostartItems::isForThisDesktop(const AutostartEntry& entry) const {
    const auto names = [&](std::string_view key) {
        const auto list = entry.list(key);
        return std::ranges::any_of(list, [&](const std::string& each) {
            return std::ranges::find(m_folders.desktops, each) != m_folders.desktops.end();
        });
    };
    if (entry.raw("OnlyShowIn")) return names("OnlyShowIn");
    return !names("NotShowIn");
}

// A writer at a time: the file is read once it is this one's turn. `change` tells whether anything
// is to be written.
Result<void> AutostartItems::change(const std::string& fileName, bool mayCopy,
                                    const std::function<bool(AutostartEntry&)>& change) {
    const std::string path = joinPath(m_folders.persons, fileName);
    if (!isEntryName(fileName)) return tl::unexpected(systemError("open", path, EINVAL));
    if (auto made = DurableFile::makeFolder(m_folders.persons); !made) return made;
    auto file = DurableFile::begin(path);
    if (!file) return tl::unexpected(file.error());
    auto read = readEntry(path);
    if (!read && mayCopy && read.error().kind == ErrorKind::NotFound && !isThere(path))
        read = readEntry(systemsFile(fileName).value_or(path));
    if (!read) return tl::unexpected(read.error());
    auto entry = AutostartEntry::parse(read->text);
    if (!entry) return tl::unexpected(systemError("read", path, EBADMSG));
    if (!change(*entry)) return {};
    return file->commit(entry->print(), {.mode = read->mode, .givesWayAsLink = true});
}

Result<void> AutostartItems::setStarts(const std::string& fileName, bool starts) {
    const std::string path = joinPath(m_folders.persons, fileName);
    const bool isOnlySystems = !isThere(path) && systemsFile(fileName).has_value();
    bool isOurOverride = false;
    auto changed = change(fileName, true, [&](AutostartEntry& entry) {
        isOurOverride = starts && systemsFile(fileName).has_value() &&
                        entry.print() == overrideText(entry.text("Name"));
        if (isOurOverride) return false;
        const std::string before = entry.print();
        if (isOnlySystems && !starts) {
            entry = *AutostartEntry::parse(overrideText(entry.text("Name")));
            return true;
        }
        if (!starts || entry.raw("Hidden")) entry.setRaw("Hidden", starts ? "false" : "true");
        if (starts && entry.raw(entryKey::gnomeEnabled) == "false")
            entry.setRaw(entryKey::gnomeEnabled, "true");
        return entry.print() != before;
    });
    if (!changed || !isOurOverride) return changed;
    // To the trash, so that what somebody writes into it at this moment is not lost.
    const std::string reason = m_takeAway(recordOf(fileName, true));
    if (reason.empty()) return {};
    Log::line(fmt::format("{} stays: {}", path, reason));
    return tl::unexpected(systemError("remove", path, EIO));
}

Result<void> AutostartItems::setHidden(const std::string& fileName, bool hidden) {
    bool isOurs = true;
    auto changed = change(fileName, false, [&](AutostartEntry& entry) {
        isOurs = entry.raw(entryKey::path).has_value();
        if (!isOurs || entry.flag(entryKey::startHidden) == hidden) return false;
        entry.setRaw(entryKey::startHidden, hidden ? "true" : "false");
        return true;
    });
    if (changed && !isOurs)
        return tl::unexpected(systemError("write", joinPath(m_folders.persons, fileName), ENOTSUP));
    return changed;
}

}  // namespace orrinvale
