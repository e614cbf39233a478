// The tables hold the reasons.
//
// Folders below the two system folders always stay: packages make them once, with owners and modes
// that their services rely on, and most services neither make them again nor start without them.
// Only files go.
#include "engine/cleaning/CleanablePlaces.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "platform/paths.h"

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
    KeptPlace{"man", "the index of the manual pages, which only a daily job makes again"},
    KeptPlace{"postgresql", "word lists of the database, made when packages were set up"},
    KeptPlace{"pbuilder", "systems to build packages in, set up by an administrator"},
    KeptPlace{"rsnapshot", "backups"},
    KeptPlace{"zoneminder", "recordings of cameras"},
    KeptPlace{"netdata", "what was measured on this machine until now"},
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
    while (!path.empty()) {
        const std::string_view component = nextComponent(path);
        if (component.empty()) continue;
        if (component == "." || component == "..") return false;
        out.push_back(component);
    }
    return true;
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// "20241103" and "2024-11-03" at the end of a name, as rotation writes them.
bool endsInDate(std::string_view name) {
    std::string digits;
    std::size_t at = name.size();
    while (at > 0 && digits.size() < 8 && (isNumber(name.substr(at - 1, 1)) || name[at - 1] == '-'))
        if (name[--at] != '-') digits.insert(digits.begin(), name[at]);
    if (digits.size() != 8 || at == 0 || (name[at - 1] != '-' && name[at - 1] != '.')) return false;
    const std::string_view year = std::string_view(digits).substr(0, 2);
    const std::string_view month = std::string_view(digits).substr(4, 2);
    const std::string_view day = std::string_view(digits).substr(6, 2);
    return (year == "19" || year == "20") && month >= "01" && month <= "12" && day >= "01" &&
           day <= "31";
}

// How many numbers of up to three figures, each behind a dot, stand at the end: 1 in "syslog.1".
// A name may begin with the first.
int numbersAtEnd(std::string_view name) {
    constexpr std::size_t mostFigures = 3;
    int count = 0;
    for (;;) {
        const std::size_t dot = name.rfind('.');
        const std::string_view last = name.substr(dot == std::string_view::npos ? 0 : dot + 1);
        if (!isNumber(last) || last.size() > mostFigures) return count;
        ++count;
        if (dot == std::string_view::npos) return count;
        name = name.substr(0, dot);
    }
}

// The last number of "log.192.168.1.20" belongs to the address of the machine whose log it is, and
// that of "log.192.168.1.20.1" does not. In doubt it is an address.
bool isNumbered(std::string_view name) {
    constexpr int inAddress = 4;
    const int numbers = numbersAtEnd(name);
    return (numbers > 0 && numbers < inAddress - 1) || numbers == inAddress + 1;
}

// "syslog.1", "syslog.2.gz", "syslog-20241103.gz", "app-20241103.log", "Xorg.0.log.old".
bool isRotatedName(std::string_view name) {
    if (name.ends_with(".old") && name.size() > 4) return true;
    for (const std::string_view packed : {".gz", ".xz", ".zst"})
        if (name.ends_with(packed)) {
            name.remove_suffix(packed.size());
            break;
        }
    const bool hasEnding = name.find('.', 1) != std::string_view::npos;
    return (hasEnding && isNumbered(name)) || CleanablePlaces::isDatedLog(name);
}

std::string lowered(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

// What stands behind the last dot, in small letters: the program's name in "org.example.Program".
std::string lastPiece(std::string_view id) { return lowered(id.substr(id.rfind('.') + 1)); }

// Written by people, wherever programs put it.
constexpr std::array<std::string_view, 34> documentEndings{
    "doc",  "docx", "docm", "dot", "dotx", "odt",  "ott", "odm",   "fodt",    "rtf", "wpd",  "xls",
    "xlsx", "xlsm", "xlsb", "ods", "ots",  "fods", "ppt", "pptx",  "pptm",    "pps", "ppsx", "odp",
    "otp",  "fodp", "odg",  "otg", "fodg", "odf",  "pdf", "pages", "numbers", "odb"};

constexpr std::array<std::string_view, 4> partialEndings{"part", "crdownload", "partial",
                                                         "download"};

// Programs that keep in their cache what they can not get again.
constexpr std::array<std::string_view, 20> preciousPrograms{
    "rclone",       // files that are not uploaded yet
    "keepassxc",    // which databases there are and were opened
    "s3ql",         // blocks of a file system that are not uploaded yet
    "davfs2",       // files that are not uploaded yet
    "evolution",    // events, tasks and contacts that are not uploaded yet
    "ibus",         // what input methods learned
    "jetbrains",    // the history of edited files
    "google",       // the same, of Android Studio
    "lm-studio",    // conversations and keys
    "obexd",        // files received by Bluetooth
    "sessions",     // the desktop that a person saved in Xfce
    "xournalpp",    // pages that are not saved yet
    "simple-scan",  // pages that were scanned and are not saved yet
    "onedriver",    // files that are not uploaded yet
    "huggingface",  // keys, beside what can be loaded again
    // By a common setting: texts that are not saved yet, and what was typed.
    "bash", "emacs", "nvim", "vim", "zsh"};

template <std::size_t Size>
bool contains(const std::array<std::string_view, Size>& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// A journal beside a database says that a program has it open, or left it in the middle of a
// change. An empty one is left over; what the programs that have it open share is taken away by the
// last of them.
bool isOpenDatabase(std::string_view name, std::uint64_t size) {
    return name.ends_with("-shm") || (size > 0 && CleanablePlaces::isJudgedBySize(name));
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
    if (contains(preciousPrograms, path.front()))
        return {Rule::Stays, wordsOf(KeptBecause::Precious)};
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

bool isArchivedJournal(const Components& path) {
    const std::string_view name = path.back();
    return path.size() > 1 && path.front() == "journal" && !isOpenJournal(path) &&
           (name.ends_with(".journal") || name.ends_with(".journal~"));
}

// Binary logs are not messages but the changes since the last backup, and what replicas read.
bool isBinaryLog(const Components& path) {
    const bool database = path.front() == "mysql" || path.front() == "mariadb";
    const std::string_view name = path.back();
    const std::size_t dot =
        name.rfind('.');  // "binlog.000001", "host-bin.000001", and the index of these
    if (!database || dot == std::string_view::npos) return false;
    const std::string_view ending = name.substr(dot + 1);
    // Rotated messages end in one or two figures, binary logs in six.
    constexpr std::size_t fewestFigures = 4;
    return (isNumber(ending) && ending.size() >= fewestFigures) || ending == "index";
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
    if (isArchivedJournal(path) || isRotatedName(path.back())) return mayGo;
    return {Rule::Stays, "no rotated log: a program may be writing to it"};
}

}  // namespace

std::string_view wordsOf(KeptBecause reason) {
    switch (reason) {
        case KeptBecause::Asked: return "you asked to keep it";
        case KeptBecause::Mount: return "something is mounted in it";
        case KeptBecause::Precious: return "its program keeps here what it can not make again";
        case KeptBecause::Open: return "a program has it open";
        case KeptBecause::HiddenProgram:
            return "its program runs, and does not show what it has open";
        case KeptBecause::Fresh: return "changed in the last 10 minutes";
        case KeptBecause::Changed: return "changed since the scan";
        case KeptBecause::Document: return "a document is in it";
        case KeptBecause::Repository: return "a repository is in it";
        case KeptBecause::PasswordSafe: return "a password safe is in it";
        case KeptBecause::Database: return "a database in use is in it";
        case KeptBecause::Socket: return "a program's socket is in it";
        case KeptBecause::Partial: return "a download that is not complete";
        case KeptBecause::Unread: return "a part of it can not be looked at";
        case KeptBecause::TooDeep: return "its folders lie too deep to be looked through";
        case KeptBecause::Rule:
        case KeptBecause::Nothing: break;
    }
    return {};
}

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

bool CleanablePlaces::isOfTheSystem(std::string_view path) const {
    Components components;
    return !split(path, components) || below(m_caches, components) || below(m_logs, components);
}

KeptBecause CleanablePlaces::keepsRow(CleanCategory category, std::string_view name, FileType type,
                                      std::uint64_t size) {
    if (category == CleanCategory::UserTrash) return KeptBecause::Nothing;
    const std::string ending = lowered(pathExtension(name));
    if (category == CleanCategory::UserDownloads)
        return contains(partialEndings, ending) ? KeptBecause::Partial : KeptBecause::Nothing;
    if (name == ".git") return KeptBecause::Repository;
    if (type == FileType::Socket) return KeptBecause::Socket;
    if (type == FileType::Folder) return KeptBecause::Nothing;
    if (name.ends_with("sh_history") || name.ends_with("histfile")) return KeptBecause::Precious;
    if (ending == "kdbx") return KeptBecause::PasswordSafe;
    if (contains(documentEndings, ending)) return KeptBecause::Document;
    return isOpenDatabase(name, size) ? KeptBecause::Database : KeptBecause::Nothing;
}

bool CleanablePlaces::isDatedLog(std::string_view name) {
    constexpr std::string_view ending = ".log";
    if (name.ends_with(ending)) name.remove_suffix(ending.size());
    return endsInDate(name);
}

bool CleanablePlaces::mayBeDatabase(std::string_view name, std::uint64_t size) {
    constexpr std::uint64_t smallestPage = 512;
    constexpr std::array<std::string_view, 5> endings{"db", "db3", "sqlite", "sqlite3", "sdb"};
    return contains(endings, lowered(pathExtension(name))) ||
           (size > 0 && size % smallestPage == 0);
}

bool CleanablePlaces::isJudgedBySize(std::string_view name) {
    return name.ends_with("-wal") || name.ends_with("-journal");
}

// "~/.var/app/org.example.Program/cache", "~/snap/program/common/.cache"
CleanablePlaces::ProgramNames CleanablePlaces::programNamesOf(std::string_view folder,
                                                              std::string_view row) {
    ProgramNames names{lastPiece(row), {}};
    const std::string above = folderOf(folder);
    if (lastPathComponent(folder) == "cache" && folderOf(above).ends_with("/.var/app"))
        names.owner = lastPiece(lastPathComponent(above));
    if (folder.ends_with("/common/.cache") && folderOf(folderOf(above)).ends_with("/snap"))
        names.owner = lowered(lastPathComponent(folderOf(above)));
    return names;
}

bool CleanablePlaces::isPrecious(const ProgramNames& names) {
    return std::any_of(preciousPrograms.begin(), preciousPrograms.end(),
                       [&](std::string_view each) { return names.contain(each); });
}

}  // namespace orrinvale
