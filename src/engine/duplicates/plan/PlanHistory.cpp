// A file has its seal, a line with the folders, and then the plan as PlanFile writes it.
#include "engine/duplicates/plan/PlanHistory.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <memory>

#include "engine/base/Date.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/files/DurableFile.h"
#include "engine/text/JsonReader.h"
#include "engine/text/JsonText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view historyExtension = ".json";
constexpr std::int64_t historyDays = 30;
constexpr std::size_t mostNoteBytes = 2 * mostPlanBytes;  // the folders stand beside the plan
constexpr const char* damagedNote = "its record is damaged";
constexpr const char* tooLargeToNote = "it is too large to be noted; move fewer at once";

std::string newHistoryId() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
    std::string id;
    for (const char c : dateDescription({nanoseconds}).substr(0, 19))
        if (c >= '0' && c <= '9') id += c;
    return fmt::format("{}-{:09}-{}", id, nanoseconds % 1'000'000'000, ::getpid());
}

bool isHistoryId(std::string_view id) {
    return !id.empty() && id.size() < 64 &&
           std::ranges::all_of(id, [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
}

std::string headLine(const std::vector<UndoFolder>& folders) {
    std::string line = "{\"orrinvaleRemoval\": 1, \"folders\": [";
    for (const UndoFolder& each : folders) {
        line += &each == folders.data() ? "{" : ", {";
        appendJsonPath(line, each.path);
        appendJsonPath(line += ", ", each.place, "place", "placeHex");
        line += fmt::format(", \"device\": {}, \"inode\": {}}}", each.device, each.inode);
    }
    return line + "]}\n";
}

bool takeUndoFolder(JsonReader& reader, UndoFolder& folder) {
    if (!reader.beginObject()) return false;
    while (const auto name = reader.nextMember()) {
        const bool isHex = name->ends_with("Hex");
        std::string& path = name->starts_with("path") ? folder.path : folder.place;
        if (*name == "path" || *name == "place") path = reader.text().value_or("");
        else if (*name == "device") folder.device = reader.count().value_or(0);
        else if (*name == "inode") folder.inode = reader.count().value_or(0);
        else if (*name != "pathHex" && *name != "placeHex") return false;
        if (!isHex) continue;
        path.clear();
        if (!appendFromHex(path, reader.text().value_or("?"))) return false;
    }
    return !reader.hasFailed();
}

// Without the seal, which an older note has not; nothing where the seal was of another rest.
std::optional<std::string_view> unsealed(std::string_view note) {
    const auto seal = NoteSeal::parse(note);
    if (!seal) return note;
    note.remove_prefix(note.find('\n') + 1);
    return seal->holds(note) ? std::optional(note) : std::nullopt;
}

std::optional<std::vector<UndoFolder>> parseHead(std::string_view line) {
    JsonReader reader(line);
    std::vector<UndoFolder> folders;
    if (!reader.beginObject() || reader.nextMember() != "orrinvaleRemoval" || reader.count() != 1)
        return std::nullopt;
    auto name = reader.nextMember();
    // Notes had their sums here before they had a seal.
    while (name == "entries" || name == "bytes") {
        static_cast<void>(reader.count());
        name = reader.nextMember();
    }
    if (name != "folders" || !reader.beginArray()) return std::nullopt;
    while (reader.nextElement())
        if (!takeUndoFolder(reader, folders.emplace_back())) return std::nullopt;
    if (reader.hasFailed() || reader.nextMember() || !reader.isAtEnd()) return std::nullopt;
    return folders;
}

}  // namespace

PlanHistory::PlanHistory(const std::string& stateFolder)
    : m_folder(joinPath(stateFolder, "removed")) {}

tl::expected<std::string, std::string> PlanHistory::note(const FileSystem& files,
                                                         const DuplicatePlan& plan) const {
    std::size_t members = 0;
    for (const PlanGroup& group : plan.groups) members += group.members.size();
    if (members > mostPlanMembers) return tl::unexpected(std::string(tooLargeToNote));
    if (const auto made = DurableFile::makeFolder(m_folder); !made)
        return tl::unexpected(made.error().reason());
    forgetOld();
    const std::string id = newHistoryId();
    std::string text = headLine(foldersOf(files, plan)) + writePlan(plan);
    if (text.size() > mostNoteBytes - NoteSeal::mostBytes)
        return tl::unexpected(std::string(tooLargeToNote));
    const PlanSums sums = sumsOf(plan);
    text.insert(0, NoteSeal::of({sums.entries(), sums.bytes}, text).line());
    const auto saved = DurableFile::save(fileOf(id), text);
    if (!saved) return tl::unexpected(saved.error().reason());
    return id;
}

std::string PlanHistory::fileOf(const std::string& id) const {
    return joinPath(m_folder, id + std::string(historyExtension));
}

// Old ones are forgotten when the next is noted, which may be months later.
std::vector<std::string> PlanHistory::ids() const {
    std::vector<std::string> found = allIds();
    std::erase_if(found, [this](const std::string& id) { return isOld(id); });
    return found;
}

std::vector<std::string> PlanHistory::allIds() const {
    std::vector<std::string> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(m_folder.c_str()), &::closedir);
    if (listing == nullptr) return found;
    while (const dirent* const entry = ::readdir(listing.get())) {
        std::string_view name = entry->d_name;
        if (!name.ends_with(historyExtension)) continue;
        name.remove_suffix(historyExtension.size());
        if (isHistoryId(name)) found.emplace_back(name);
    }
    std::ranges::sort(found);
    return found;
}

std::optional<Date> PlanHistory::timeOf(std::string_view id) {
    constexpr std::size_t digits = 14;
    if (!isHistoryId(id) || id.find('-') != digits) return std::nullopt;
    const auto part = [&](std::size_t from, std::size_t count) { return id.substr(from, count); };
    return parseDate(fmt::format("{}-{}-{} {}:{}:{} +0000", part(0, 4), part(4, 2), part(6, 2),
                                 part(8, 2), part(10, 2), part(12, 2)));
}

tl::expected<std::string, std::string> PlanHistory::textOf(const std::string& id) const {
    if (!isHistoryId(id)) return tl::unexpected(std::string("there is no such removal"));
    auto text = DurableFile::read(fileOf(id), mostNoteBytes);
    if (text) return std::move(*text);
    return tl::unexpected(text.error().kind == ErrorKind::NotFound
                              ? std::string("there is no such removal")
                              : text.error().reason());
}

tl::expected<NotedRemoval, std::string> PlanHistory::load(const std::string& id) const {
    const auto text = textOf(id);
    if (!text) return tl::unexpected(text.error());
    const auto note = unsealed(*text);
    if (!note) return tl::unexpected(std::string(damagedNote));
    const std::string_view line = note->substr(0, note->find('\n'));
    auto folders = parseHead(line);
    if (!folders) return tl::unexpected(std::string(damagedNote));
    auto plan = parsePlan(note->substr(std::min(line.size() + 1, note->size())), PlanUse::Undo);
    if (!plan) return tl::unexpected("its record is no good: " + plan.error());
    return NotedRemoval{id, std::move(*plan), std::move(*folders)};
}

tl::expected<RemovalSummary, std::string> PlanHistory::summaryOf(const std::string& id) const {
    if (!isHistoryId(id)) return tl::unexpected(std::string("there is no such removal"));
    const SealedNote seen = lookAtNote(fileOf(id));
    if (seen.state == SealedNote::State::Whole) return seen.sums;
    if (seen.state == SealedNote::State::Damaged) return tl::unexpected(std::string(damagedNote));
    // It is of before there were seals, or can not be read for a reason that load() has words for.
    const auto noted = load(id);
    if (!noted) return tl::unexpected(noted.error());
    const PlanSums sums = sumsOf(noted->plan);
    return RemovalSummary{sums.entries(), sums.bytes};
}

void PlanHistory::forget(const std::string& id) const {
    if (isHistoryId(id)) static_cast<void>(DurableFile::remove(fileOf(id)));
}

Descriptor PlanHistory::hold(const std::string& id) const {
    Descriptor file(::open(fileOf(id).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.isOpen() && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0) file.reset();
    return file;
}

bool PlanHistory::clear() const {
    bool isClear = true;
    for (const std::string& id : allIds()) {
        const Descriptor file(
            ::open(fileOf(id).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        const bool isHeld =
            file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!isHeld) isClear = DurableFile::remove(fileOf(id)) && isClear;
    }
    return isClear;
}

bool PlanHistory::isOld(const std::string& id) const {
    const std::time_t oldest = std::time(nullptr) - historyDays * 86400;
    struct stat seen {};
    return ::lstat(fileOf(id).c_str(), &seen) == 0 && seen.st_mtim.tv_sec < oldest;
}

void PlanHistory::forgetOld() const {
    for (const std::string& id : allIds())
        if (isOld(id)) static_cast<void>(DurableFile::remove(fileOf(id)));
}

}  // namespace orrinvale
