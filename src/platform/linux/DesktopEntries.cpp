// Walks the folders of desktop entries.
#include "platform/linux/DesktopEntries.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <utility>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view suffix = ".desktop";

std::string_view stemOf(std::string_view name) {
    return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : name;
}

class EntryWalk final {
public:
    explicit EntryWalk(const ApplicationPlaces& places) : m_places(places) {}

    std::vector<StartingEntry> run() {
        for (const std::string& folder : m_places.dataFolders)
            enter(joinPath(folder, "applications"), {}, 0);
        return std::move(m_entries);
    }

private:
    void enter(const std::string& folder, const std::string& prefix, int depth) {
        constexpr int deepest = 8;
        struct stat seen {};
        if (depth > deepest || ::stat(folder.c_str(), &seen) != 0 || !S_ISDIR(seen.st_mode) ||
            !m_folders.emplace(seen.st_dev, seen.st_ino).second)
            return;
        std::vector<std::string> names = systemNamesIn(folder);
        // By their ids, so that "game" comes before "game-editor".
        std::ranges::sort(names, {}, stemOf);
        for (const std::string& name : names) {
            constexpr std::size_t most = 20'000;
            if (++m_looked > most) return;
            const std::string path = joinPath(folder, name);
            if (name.size() > suffix.size() && name.ends_with(suffix))
                take(path, prefix + std::string(stemOf(name)));
            else if (name.find('.') == std::string::npos)
                enter(path, prefix + name + '-', depth + 1);
        }
    }

    void take(const std::string& path, const std::string& id) {
        if (m_ids.contains(id)) return;
        const auto text = readRegularFile(path, kDesktopEntryLimit);
        if (!text) return;
        auto entry = DesktopEntry::parse(*text, m_places.languages);
        if (!entry || !entry->isApplication || entry->isHidden || entry->exec.empty()) return;
        if (!entry->tryExec.empty() &&
            programNamed(entry->tryExec, m_places.programFolders).empty())
            return;
        m_ids.insert(id);
        StartingEntry& out = m_entries.emplace_back();
        out.path = path;
        out.id = id;
        out.started = StartedProgram::of(execWords(entry->exec, m_places.home), m_places.home);
        out.program = programNamed(out.started.program, m_places.programFolders);
        if (!out.program.empty()) out.file = withoutLinks(out.program);
        out.entry = std::move(*entry);
    }

    const ApplicationPlaces& m_places;
    std::vector<StartingEntry> m_entries;
    std::set<std::string> m_ids;
    std::set<std::pair<dev_t, ino_t>> m_folders;
    std::size_t m_looked = 0;
};

bool isEntryFile(const std::string& path) {
    struct stat seen {};
    return ::stat(path.c_str(), &seen) == 0 && S_ISREG(seen.st_mode);
}

}  // namespace

// A script that an interpreter is given need not be marked as a program.
std::string programNamed(const std::string& name, const std::vector<std::string>& folders) {
    if (name.empty()) return {};
    if (name.starts_with('/')) return isEntryFile(name) ? name : std::string();
    if (name.find('/') != std::string::npos) return {};
    for (const std::string& folder : folders) {
        std::string path = joinPath(folder, name);
        if (isEntryFile(path) && ::access(path.c_str(), X_OK) == 0) return path;
    }
    return {};
}

std::vector<StartingEntry> startingEntries(const ApplicationPlaces& places) {
    return EntryWalk(places).run();
}

void takeOthers(ApplicationRecord& record, const std::vector<std::string>& names) {
    for (const std::string& each : names)
        if (!each.empty() && each != record.name && std::ranges::count(record.others, each) == 0)
            record.others.push_back(each);
}

}  // namespace orrinvale
