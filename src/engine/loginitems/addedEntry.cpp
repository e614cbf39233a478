// The part of AutostartItems that makes entries. Readers of entries differ in what they make of
// quotes, backslashes, percent and dollar signs, so that a path with any of these is started by a
// link of a plain name.
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "engine/files/DurableFile.h"
#include "engine/loginitems/AutostartItems.h"
#include "engine/loginitems/entryKeys.h"
#include "engine/text/utf8.h"
#include "platform/FileUrl.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr const char* ownName = "com.kelpford.Orrinvale";
constexpr int mostTries = 1000;

bool isPlainLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// Of the name what is plain, the rest as dashes.
std::string plainName(std::string_view name) {
    constexpr std::size_t longest = 64;
    std::string out;
    for (const char c : name.substr(0, longest))
        out += isPlainLetter(c) || c == '.' || c == '_' ? c : '-';
    return out.find_first_not_of(".-") == std::string::npos ? "item" : out;
}

// Lines of an entry are UTF-8.
std::string shownName(std::string_view name) {
    std::string out;
    while (!name.empty()) {
        const std::size_t length = validSequence(name);
        const bool isControl = length == 1 && static_cast<unsigned char>(name.front()) < 0x20;
        if (length == 0 || isControl) out += "\xEF\xBF\xBD";
        else out += name.substr(0, length);
        name.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

// FNV-1a, so that a path always gets the same link.
std::uint64_t markOf(std::string_view path) {
    std::uint64_t mark = 0xCBF2'9CE4'8422'2325;
    for (const char c : path) mark = (mark ^ static_cast<unsigned char>(c)) * 0x100'0000'01B3;
    return mark;
}

std::string targetOf(const std::string& link) {
    std::error_code error;
    return std::filesystem::read_symlink(link, error).string();
}

}  // namespace

std::optional<std::string> AutostartItems::linkTo(const std::string& path) const {
    if (!DurableFile::makeFolder(m_folders.links)) return std::nullopt;
    const std::string_view extension = pathExtension(path);
    const bool isPlain = !extension.empty() && std::ranges::all_of(extension, isPlainLetter);
    const std::string ending = isPlain ? fmt::format(".{}", extension) : std::string();
    for (int number = 1; number < mostTries; ++number) {
        std::string link = joinPath(m_folders.links,
                                    fmt::format("item-{:016x}-{}{}", markOf(path), number, ending));
        if (::symlink(path.c_str(), link.c_str()) == 0 || targetOf(link) == path) return link;
        if (errno != EEXIST) return std::nullopt;
    }
    return std::nullopt;
}

// What is no program is opened by whatever opens such things.
std::optional<std::string> AutostartItems::commandOf(const std::string& path) const {
    struct stat status {};
    const bool isProgram = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
                           ::access(path.c_str(), X_OK) == 0;
    std::vector<std::string> words;
    if (!isProgram) words.emplace_back("xdg-open");
    words.push_back(path);
    if (path == m_folders.ownProgram) words.emplace_back(atLoginOption);
    if (auto command = commandFor(words)) return command;
    const auto link = linkTo(path);
    if (!link) return std::nullopt;
    *std::ranges::find(words, path) = *link;
    return commandFor(words);
}

std::optional<AutostartEntry> AutostartItems::entryFor(const std::string& path) const {
    if (isEntryName(lastPathComponent(path))) {
        const auto read = readEntry(path);
        auto entry = read ? AutostartEntry::parse(read->text) : std::nullopt;
        if (!entry) return std::nullopt;
        entry->remove("Hidden");
        entry->remove(entryKey::gnomeEnabled);
        return entry;
    }
    const auto command = commandOf(path);
    if (!command) return std::nullopt;
    const bool isOwn = path == m_folders.ownProgram;
    AutostartEntry entry;
    entry.setRaw("Type", "Application");
    entry.setText("Name", isOwn ? "Orrinvale" : shownName(lastPathComponent(path)));
    entry.setRaw("Exec", *command);
    if (isOwn) entry.setRaw("Icon", ownName);
    return entry;
}

// A name that neither the person nor the system has, so that it puts out nothing.
std::string AutostartItems::freeName(const std::string& path) const {
    std::string_view stem = lastPathComponent(path);
    if (isEntryName(stem)) stem = stem.substr(0, stem.rfind('.'));
    const std::string wanted = path == m_folders.ownProgram ? ownName : plainName(stem);
    for (int number = 1; number < mostTries; ++number) {
        std::string name =
            number == 1 ? wanted + ".desktop" : fmt::format("{}-{}.desktop", wanted, number);
        struct stat status {};
        if (::lstat(joinPath(m_folders.persons, name).c_str(), &status) != 0 && !systemsFile(name))
            return name;
    }
    return {};
}

// By the file and not by its name: an installed program may be started by a link.
std::string AutostartItems::pathToAdd(const std::string& path) const {
    if (!isEntryName(lastPathComponent(path))) return path;
    const auto read = readEntry(path);
    const auto entry = read ? AutostartEntry::parse(read->text) : std::nullopt;
    std::error_code error;
    const bool isOwn =
        entry && std::filesystem::equivalent(programOf(*entry), m_folders.ownProgram, error);
    return isOwn ? m_folders.ownProgram : path;
}

// Another writer may take the name that was free until it is this one's turn.
Result<void> AutostartItems::write(const std::string& path, const AutostartEntry& entry) const {
    constexpr unsigned mode = 0644;
    if (auto made = DurableFile::makeFolder(m_folders.persons); !made) return made;
    for (int number = 1; number < mostTries; ++number) {
        const std::string name = freeName(path);
        if (name.empty()) break;
        const std::string target = joinPath(m_folders.persons, name);
        auto file = DurableFile::begin(target);
        if (!file) return tl::unexpected(file.error());
        struct stat status {};
        if (::lstat(target.c_str(), &status) == 0) continue;
        return file->commit(entry.print(), {.mode = mode});
    }
    return tl::unexpected(systemError("open", path, EEXIST));
}

std::int32_t AutostartItems::add(const std::string& wanted, bool hidden) {
    const std::string path = pathToAdd(wanted);
    struct stat status {};
    if (!path.starts_with('/') || ::stat(path.c_str(), &status) != 0) return errLoginItemMissing;
    std::int32_t listed = 0;
    for (const LoginItemRecord& each : list(listed))
        if (each.isPersons && each.isOurs && each.path == path)
            return setStarts(each.fileName, true) && setHidden(each.fileName, hidden)
                       ? 0
                       : errLoginItemIO;
    if (listed != 0) return listed;
    auto entry = entryFor(path);
    if (!entry) return errLoginItemName;
    entry->setText(entryKey::path, fileUrlOf(path));
    entry->setRaw(entryKey::startHidden, hidden ? "true" : "false");
    const auto written = write(path, *entry);
    if (written) return 0;
    return written.error().number == EEXIST ? errLoginItemName : errLoginItemIO;
}

}  // namespace orrinvale
