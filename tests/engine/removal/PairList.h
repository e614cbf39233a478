// PairList: a removal of the files of one folder, for each of which the file of the same name in
// another folder stays.
#pragma once

#include <dirent.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalRun.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale::testing {

class PairList final : public RemovalList {
public:
    /// Looks at all of them now, as a scan would have.
    PairList(const FileSystem& files, const std::string& leaving, const std::string& staying,
             bool compares = true)
        : m_files(files), m_compares(compares) {
        DIR* const listing = ::opendir(leaving.c_str());
        if (listing == nullptr) return;
        std::vector<std::string> names;
        while (const dirent* const entry = ::readdir(listing))
            if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
        ::closedir(listing);
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) add(joinPath(leaving, name), joinPath(staying, name));
    }

    /// An entry, and the one that stays; none for an empty path.
    void add(const std::string& path, const std::string& kept) {
        const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
        if (!seen) return;
        Pair pair{path, EntryIdentity::of(*seen), std::nullopt};
        const auto other = m_files.attributes(FileSystem::noParent, kept.c_str(), Links::Keep);
        if (!other && !kept.empty()) return;  // another removal was quicker: no pair any more
        if (other) pair.kept = KeptCopy{kept, EntryIdentity::of(*other)};
        m_pairs.push_back(std::move(pair));
    }

    std::size_t size() const override { return m_pairs.size(); }
    std::string path(std::size_t index) const override { return m_pairs[index].path; }
    std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_pairs[index].identity;
    }
    std::uint64_t bytes(std::size_t index) const override { return m_pairs[index].identity.size; }
    bool isCopy(std::size_t /*index*/) const override { return true; }
    tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(std::size_t index) override {
        return std::make_unique<FileLook>(m_files, m_pairs[index].kept, m_compares);
    }

    void settled(std::size_t index, const RemovalResult& result) override {
        if (!result.changed) return;
        for (Pair& each : m_pairs)
            if (each.identity.inode == m_pairs[index].identity.inode)
                each.identity.changed = *result.changed;
    }

private:
    struct Pair {
        std::string path;
        EntryIdentity identity;
        std::optional<KeptCopy> kept;
    };
    const FileSystem& m_files;
    const bool m_compares;
    std::vector<Pair> m_pairs;
};

/// What nobody is told of a removal.
inline RemovalRun::Telling nobodyTold() {
    return {.waiting = [](bool) {},
            .begins = [](std::size_t, const std::string&, bool) {},
            .settled = [](std::size_t, const RemovalResult&) {}};
}

/// Removes what the list has, to the end.
inline RemovalOutcome removeAll(const FileSystem& files, const std::string& state,
                                RemovalList& list,
                                const RemovalRun::Telling& telling = nobodyTold()) {
    PlainDoor door(files, {});
    const std::atomic<bool> never{false};
    RemovalRun removal(files, state, list, door, never, telling);
    RemovalOutcome outcome = removal.run();
    removal.settleJournal();
    return outcome;
}

}  // namespace orrinvale::testing
