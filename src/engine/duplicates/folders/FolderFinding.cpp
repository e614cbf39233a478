// Keys are made from the bottom to the top, three times at most: of what the walk saw, with the
// sizes of what it left out, with their contents. Each time only folders that share their key stay
// candidates, so that next to nothing is read for the others.
#include "engine/duplicates/folders/FolderFinding.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>

#include "engine/base/saturating.h"
#include "engine/duplicates/folders/PartFinding.h"
#include "engine/duplicates/keep/GainCount.h"
#include "engine/duplicates/scope/ProtectedFolders.h"
#include "platform/files.h"

namespace orrinvale {

FolderFinding::FolderFinding(const FileSystem& files, const PairedSearch& search,
                             const std::atomic<bool>& stop, SkipList& skipped)
    : m_files(files),
      m_search(search),
      m_stop(stop),
      m_table(search.folders),
      m_rest(files, m_table, search.guard, stop, skipped) {}

FolderFindings FolderFinding::run() {
    FolderFindings findings;
    readListed();
    spreadUpwards();
    digestListed();
    classify();
    if (hasRest()) lookAtRest();
    if (m_stop) return findings;
    findProtected();
    tell(findings);
    findings.partly = PartFinding(m_table, m_search.copies).run();
    return findings;
}

void FolderFinding::readListed() {
    for (const fileAttrbItem* file : m_search.listed.items()) {
        const std::uint32_t at = m_table.rowOf(file->folder);
        if (at == FolderRow::none || !isOwnFile(*file)) continue;
        FolderRow& row = m_table[at];
        ++row.listedFiles;
        addSaturating(row.listedBytes, file->fileSize);
        row.newest = std::max(row.newest, file->modified);
        row.isOdd |= !file->isCopy;
        row.hasCopy |= file->isCopy;
        row.hasHardLinks |= file->links > 1;
    }
}

// What is behind a link in the folder that is searched is in no folder of that: there it is a link.
void FolderFinding::spreadUpwards() {
    for (std::uint32_t at = m_table.size(); at-- > 0;) {
        FolderRow& row = m_table[at];
        row.isOdd |= !row.seen.isWhole;
        row.isCandidate = !row.isOdd && !row.isBehindLink;
        if (row.parent == FolderRow::none || row.isBehindLink) continue;
        FolderRow& parent = m_table[row.parent];
        const FolderNode& node = *row.seen.node;
        const FolderNode& above = *parent.seen.node;
        const bool isMount = node.device != above.device || node.mount != above.mount;
        parent.isOdd |= row.isOdd || isMount;
        parent.hasCopy |= row.hasCopy;
        parent.hasHardLinks |= row.hasHardLinks;
        addSaturating(parent.listedBytes, row.listedBytes);
        parent.newest = std::max(parent.newest, row.newest);
    }
}

void FolderFinding::digestListed() {
    for (const fileAttrbItem* file : m_search.listed.items()) {
        const std::uint32_t at = m_table.rowOf(file->folder);
        if (at == FolderRow::none || !m_table[at].isCandidate || !isOwnFile(*file)) continue;
        m_table[at].own += entryDigest(file->name, FileType::Regular, file->fileSize,
                                       joined(file->md5, file->md5_1k));
    }
}

void FolderFinding::classify() {
    makeKeys();
    findClasses();
}

// The key of a row is the sum over the folders in it until its own turn comes.
void FolderFinding::makeKeys() {
    for (std::uint32_t at = 0; at < m_table.size(); ++at) {
        FolderRow& row = m_table[at];
        row.key = 0;
        row.entries = std::uint64_t{row.listedFiles} + row.subfolders +
                      (row.isRestKnown ? row.restEntries : row.seen.emptyFiles);
        row.files = std::uint64_t{row.listedFiles} +
                    (row.isRestKnown ? row.restFiles : row.seen.emptyFiles);
        row.bytes = row.listedBytes;
        addSaturating(row.bytes, row.restBytes);
    }
    for (std::uint32_t at = m_table.size(); at-- > 0;) {
        FolderRow& row = m_table[at];
        FolderRow* const parent =
            row.parent == FolderRow::none || row.isBehindLink ? nullptr : &m_table[row.parent];
        if (row.isOdd && parent != nullptr) parent->isOdd = true;
        row.isCandidate = row.isCandidate && !row.isOdd;
        if (!row.isCandidate) continue;
        row.key += row.own + (row.isRestKnown ? row.restDigest : row.seen.emptyNames);
        row.key = joined(row.key, row.isRestKnown ? 0 : row.unseen());
        if (parent == nullptr) continue;
        parent->key += entryDigest(m_table.nameOf(at), FileType::Folder, 0, row.key);
        parent->entries += row.entries;
        parent->files += row.files;
        parent->hasHardLinks |= row.hasHardLinks;
        addSaturating(parent->bytes, row.bytes - row.listedBytes);
    }
}

void FolderFinding::findClasses() {
    using Key = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t>;
    std::vector<std::pair<Key, std::uint32_t>> keys;
    for (std::uint32_t at = 0; at < m_table.size(); ++at) {
        FolderRow& row = m_table[at];
        row.equals = 0;
        if (row.isCandidate && row.hasCopy)
            keys.emplace_back(Key{row.key, row.entries, row.bytes}, at);
    }
    std::ranges::sort(keys);
    std::uint32_t number = 0;
    for (std::size_t from = 0; from < keys.size();) {
        std::size_t to = from + 1;
        while (to < keys.size() && keys[to].first == keys[from].first) ++to;
        if (to - from > 1) ++number;
        const std::uint32_t equals = to - from > 1 ? number : 0;
        for (; from < to; ++from) m_table[keys[from].second].equals = equals;
    }
    for (std::uint32_t at = 0; at < m_table.size(); ++at) {
        FolderRow& row = m_table[at];
        const bool isInOne = row.parent != FolderRow::none && m_table[row.parent].isCandidate;
        row.isCandidate = row.isCandidate && (row.equals != 0 || isInOne);
    }
}

bool FolderFinding::hasRest() const {
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (m_table[at].isCandidate && m_table[at].unseen() > 0) return true;
    return false;
}

void FolderFinding::lookAtRest() {
    m_rest.look(m_search.listed);
    classify();
    if (m_stop || m_rest.files().empty()) return;
    m_rest.hash();
    classify();
}

void FolderFinding::findProtected() {
    if (m_search.guard == nullptr) return;
    for (std::uint32_t at = m_table.size(); at-- > 0;) {
        FolderRow& row = m_table[at];
        row.holdsProtected |= m_search.guard->isOneOrAbove(*row.seen.node);
        if (row.holdsProtected && row.parent != FolderRow::none && !row.isBehindLink)
            m_table[row.parent].holdsProtected = true;
    }
}

void FolderFinding::tell(FolderFindings& findings) {
    std::map<std::uint32_t, std::vector<std::uint32_t>> classes;
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (const FolderRow& row = m_table[at]; row.equals != 0) {
            classes[row.equals].push_back(at);
            findings.classes.emplace(row.seen.node, row.equals);
        }
    std::vector<std::vector<std::uint32_t>> told;
    for (auto& [number, members] : classes) {
        if (isCovered(members)) continue;
        dropOneEntry(members);
        if (members.size() > 1) told.push_back(std::move(members));
    }
    std::ranges::sort(told);
    for (const auto& members : told) findings.groups.push_back(groupOf(members));
}

// Each lies in another of folders that are equal themselves.
bool FolderFinding::isCovered(const std::vector<std::uint32_t>& members) const {
    std::unordered_set<std::uint32_t> parents;
    std::uint32_t equals = 0;
    for (const std::uint32_t member : members) {
        const std::uint32_t parent = m_table[member].parent;
        if (parent == FolderRow::none || !parents.insert(parent).second) return false;
        const std::uint32_t above = m_table[parent].equals;
        if (above == 0 || (equals != 0 && above != equals)) return false;
        equals = above;
    }
    return true;
}

// A mount shows a folder by a second path.
void FolderFinding::dropOneEntry(std::vector<std::uint32_t>& members) const {
    std::set<std::tuple<std::uint64_t, std::uint64_t, std::string>> seen;
    std::erase_if(members, [&](std::uint32_t member) {
        const FolderNode& node = *m_table[member].seen.node;
        std::string place;
        if (node.inode == 0) place = m_table.pathOf(member);
        if (node.inode == 0) place = m_files.resolved(place).value_or(place);
        return !seen.emplace(node.device, node.inode, std::move(place)).second;
    });
}

FolderGroup FolderFinding::groupOf(const std::vector<std::uint32_t>& members) {
    const FolderRow& first = m_table[members.front()];
    FolderGroup group;
    group.entries = first.entries;
    group.files = first.files;
    group.bytes = first.bytes;
    group.gain = gainOf(members);
    for (const std::uint32_t member : members) {
        const FolderNode& node = *m_table[member].seen.node;
        const EntryIdentity identity{.device = node.device,
                                     .inode = node.inode,
                                     .type = FileType::Folder,
                                     .inodePasses = node.inode == 0};
        FolderMember folder{m_table.pathOf(member), identity, m_table[member].newest,
                            m_table[member].holdsProtected};
        if (auto place = m_files.resolved(folder.path); place && *place != folder.path)
            folder.place = std::move(*place);
        group.members.push_back(std::move(folder));
    }
    return group;
}

// All but the first go.
std::uint64_t FolderFinding::gainOf(const std::vector<std::uint32_t>& members) {
    GainCount linked;
    std::uint64_t gain = 0;
    for (std::size_t i = 1; i < members.size(); ++i) {
        const FolderRow& row = m_table[members[i]];
        std::uint64_t plain = row.bytes;
        if (row.hasHardLinks) {
            findHardLinks();
            auto file = std::ranges::lower_bound(m_hardLinks, members[i], {}, &File::first);
            for (; file != m_hardLinks.end() && file->first < row.end; ++file) {
                const fileAttrbItem& item = *file->second;
                const EntryIdentity identity{
                    .device = item.device, .inode = item.inode, .type = item.type};
                linked.add(&identity, item.links, item.fileSize);
                plain -= std::min(plain, item.fileSize);
            }
        }
        addSaturating(gain, plain);
    }
    addSaturating(gain, linked.bytes());
    return gain;
}

void FolderFinding::findHardLinks() {
    if (m_hardLinksFound) return;
    m_hardLinksFound = true;
    for (const fileAttrbItem* file : m_search.listed.items())
        if (file->links > 1 && isOwnFile(*file))
            if (const auto at = m_table.rowOf(file->folder); at != FolderRow::none)
                m_hardLinks.emplace_back(at, file);
    for (const FolderRest::File& file : m_rest.files())
        if (file.item->links > 1) m_hardLinks.emplace_back(file.row, file.item);
    std::ranges::sort(m_hardLinks);
}

// Most groups are small, and most have a first member that says no.
bool FolderFindings::cover(const std::vector<const fileAttrbItem*>& copies) const {
    std::uint32_t first = 0;
    for (const fileAttrbItem* file : copies) {
        const auto found = classes.find(file->folder);
        if (found == classes.end() || (first != 0 && found->second != first)) return false;
        first = found->second;
    }
    std::vector<const FolderNode*> folders;
    folders.reserve(copies.size());
    for (const fileAttrbItem* file : copies) folders.push_back(file->folder);
    std::ranges::sort(folders);
    return !copies.empty() && std::ranges::adjacent_find(folders) == folders.end();
}

}  // namespace orrinvale
