// Finds the folders that LeftoverRules judges.
#include "engine/uninstall/Leftovers.h"

#include <algorithm>
#include <array>
#include <functional>
#include <unordered_map>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/duplicates/FileKind.h"
#include "engine/files/TreeLister.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostPrecious = 10;

struct Found {
    std::string name;
    FileAttributes attributes;
};

class Search final {
public:
    using Wish = std::function<bool(const LeftoverVerdict&, const std::string& name)>;

    Search(const FileSystem& files, const LeftoverPlaces& places, const LeftoverRules& rules,
           const std::atomic<bool>& stop, Wish wish)
        : m_files(files), m_places(places), m_rules(rules), m_stop(stop), m_wish(std::move(wish)) {}

    std::vector<Leftover> run() {
        for (const std::string& home : m_places.homes)
            for (const Found& each : entriesOf(home))
                if (each.attributes.type == FileType::Folder)
                    if (auto verdict = wanted(LeftoverHome::Xdg, each.name))
                        add(joinPath(home, each.name), each.attributes, std::move(*verdict));
        inFoldersOf(LeftoverHome::Flatpak, m_places.flatpakData, "cache");
        inFoldersOf(LeftoverHome::Snap, m_places.snapData, {});
        return std::move(m_out);
    }

private:
    // Files and folders that lie on the folder's own mount, in the order of their names.
    std::vector<Found> entriesOf(const std::string& folder) {
        std::vector<Found> out;
        if (folder.empty() || m_stop) return out;
        const auto opened = m_files.openFolder(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (!opened) return out;
        const auto own = m_files.attributes(opened->get());
        CatalogBatch batch;
        for (auto more = m_files.readFolder(opened->get(), batch); own && more && *more;
             more = m_files.readFolder(opened->get(), batch))
            for (const CatalogEntry& each : batch.entries) {
                const auto seen = m_files.attributes(opened->get(), each.name, Links::Keep);
                if (seen && seen->device == own->device && seen->mount == own->mount &&
                    (seen->type == FileType::Folder || seen->type == FileType::Regular))
                    out.push_back({each.name, *seen});
            }
        std::sort(out.begin(), out.end(),
                  [](const Found& a, const Found& b) { return a.name < b.name; });
        return out;
    }

    std::optional<LeftoverVerdict> wanted(LeftoverHome home, const std::string& name) const {
        auto verdict = m_rules.verdict(home, name);
        if (verdict && !m_wish(*verdict, name)) return std::nullopt;
        return verdict;
    }

    // One folder a program, of which `certain` is made anew where it is missed.
    void inFoldersOf(LeftoverHome home, const std::string& folder, std::string_view certain) {
        for (const Found& program : entriesOf(folder)) {
            if (program.attributes.type != FileType::Folder) continue;
            const auto verdict = wanted(home, program.name);
            if (!verdict) continue;
            const std::string path = joinPath(folder, program.name);
            const std::vector<Found> entries = entriesOf(path);
            if (home == LeftoverHome::Snap && !isOfSnap(entries)) continue;
            for (const Found& each : entries) {
                LeftoverVerdict own = *verdict;
                const bool isCache =
                    each.name == certain && each.attributes.type == FileType::Folder;
                if (isCache) own.grade = LeftoverGrade::Certain;
                if (isCache) own.reason = "the cache of " + own.of;
                add(joinPath(path, each.name), each.attributes, std::move(own));
            }
        }
    }

    // The folder for snaps lies open in the home, where a person may have one of that name.
    static bool isOfSnap(const std::vector<Found>& entries) {
        return std::ranges::any_of(entries, [](const Found& each) {
            return each.name == "common" && each.attributes.type == FileType::Folder;
        });
    }

    void add(std::string path, const FileAttributes& seen, LeftoverVerdict verdict) {
        const bool holdsOthers =
            std::any_of(m_places.never.begin(), m_places.never.end(),
                        [&](const std::string& each) { return isWithin(each, path); });
        if (holdsOthers || m_stop) return;
        Leftover out;
        static_cast<LeftoverVerdict&>(out) = std::move(verdict);
        out.identity = EntryIdentity::of(seen);
        out.path = std::move(path);
        out.bytes = countedSize(seen);
        if (seen.type == FileType::Folder) lookInto(out);
        else if (isPreciousName(lastPathComponent(out.path))) notePrecious(out, out.path);
        if (m_stop) return;
        m_out.push_back(std::move(out));
    }

    static void notePrecious(Leftover& leftover, std::string_view name) {
        if (++leftover.preciousCount <= mostPrecious) leftover.precious.emplace_back(name);
    }

    void lookInto(Leftover& leftover) {
        const auto opened =
            m_files.openFolder(FileSystem::noParent, leftover.path.c_str(), Links::Keep);
        if (!opened) {
            leftover.isWhole = false;
            return;
        }
        TreeListing listing;
        listing.failed = [&](std::string_view, int) { leftover.isWhole = false; };
        listing.entry = [&](const TreeEntry& each) {
            const auto seen = m_files.attributes(each.folder, each.name.data(), Links::Keep);
            if (!seen) return;
            addSaturating(leftover.bytes, countedSize(*seen));
            if (seen->type == FileType::Regular && isPreciousName(each.name))
                notePrecious(leftover, each.relative);
        };
        if (!listTree(m_files, opened->get(), listing, m_stop)) leftover.isWhole = false;
    }

    const FileSystem& m_files;
    const LeftoverPlaces& m_places;
    const LeftoverRules& m_rules;
    const std::atomic<bool>& m_stop;
    const Wish m_wish;
    std::vector<Leftover> m_out;
};

}  // namespace

// Web pages and texts of programs are no documents of people.
bool isPreciousName(std::string_view name) {
    constexpr std::array<std::string_view, 5> ofPrograms{"htm", "html", "xml", "txt", "key"};
    constexpr std::array<std::string_view, 17> more{
        "db",   "db3", "sqlite", "sqlite3", "sdb", "kdbx", "kdb", "mdb",   "realm",
        "mbox", "mbx", "eml",    "maildir", "ics", "vcf",  "gpg", "wallet"};
    const std::string_view extension = pathExtension(name);
    const auto isOneOf = [&](const auto& list) {
        return std::any_of(list.begin(), list.end(), [&](std::string_view each) {
            return equalIgnoringCase(each, extension);
        });
    };
    return isOneOf(more) ||
           (kindOfExtension(extension) == FileKind::Documents && !isOneOf(ofPrograms));
}

LeftoverPlaces LeftoverPlaces::of(const FolderVariables& variables, const Folders& folders) {
    const std::string& home = variables.home;
    const auto place = [&](const std::string& chosen, const char* usual) {
        return chosen.empty() ? joinPath(home, usual) : chosen;
    };
    LeftoverPlaces out;
    for (const std::string& each :
         {place(variables.configHome, ".config"), place(variables.dataHome, ".local/share"),
          place(variables.cacheHome, ".cache"), place(variables.stateHome, ".local/state")})
        if (std::find(out.homes.begin(), out.homes.end(), each) == out.homes.end())
            out.homes.push_back(each);
    out.flatpakData = joinPath(home, ".var/app");
    out.snapData = joinPath(home, "snap");
    out.never = folders.otherUserFolders();
    out.never.push_back(folders.downloads());
    std::erase(out.never, std::string());
    return out;
}

std::vector<Leftover> findLeftovers(const FileSystem& files, const LeftoverPlaces& places,
                                    const LeftoverRules& rules, const std::string& of,
                                    const std::atomic<bool>& stop) {
    return Search(files, places, rules, stop,
                  [&](const auto& verdict, const std::string& name) {
                      return of.empty() || verdict.of == of || name == of;
                  })
        .run();
}

std::vector<std::vector<Leftover>> findLeftoversOf(
    const FileSystem& files, const LeftoverPlaces& places, const LeftoverRules& rules,
    const std::vector<const ApplicationRecord*>& records, const std::atomic<bool>& stop) {
    std::unordered_multimap<std::string, std::size_t> byPath;
    for (std::size_t i = 0; i < records.size(); ++i) byPath.emplace(records[i]->path, i);
    const auto ownersOf = [&](const LeftoverVerdict& verdict) {
        std::vector<std::size_t> out;
        const auto [begin, end] = byPath.equal_range(verdict.ownerPath);
        for (auto each = begin; each != end; ++each)
            if (verdict.isOf(*records[each->second])) out.push_back(each->second);
        return out;
    };
    std::vector<std::vector<Leftover>> out(records.size());
    for (const Leftover& each :
         Search(files, places, rules, stop, [&](const auto&verdict, const std::string&) {
             return !ownersOf(verdict).empty();
         }).run())
        for (const std::size_t owner : ownersOf(each)) out[owner].push_back(each);
    return out;
}

}  // namespace orrinvale
