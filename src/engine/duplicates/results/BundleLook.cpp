// Both bundles are listed and compared before; last() lists them again, right before the one goes.
#include "engine/duplicates/results/BundleLook.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engine/files/FolderNode.h"
#include "engine/removal/ContentComparison.h"
#include "engine/removal/stayReasons.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

StayedEntry noBundleCopy(const HeldEntry& leaving, std::string_view reason = stay::noCopy) {
    return {leaving.path, std::string(reason), StayReason::NoCopy};
}

StayedEntry failed(const HeldEntry& leaving, int error) {
    if (error == ESTALE) return {leaving.path, std::string(stay::changed), StayReason::Changed};
    return {leaving.path, systemError("read", {}, error).reason(), stayReasonOf(error)};
}

// The same place in two bundles.
bool isAlike(const BundleEntry& a, const BundleEntry& b) {
    const bool isFile = a.attributes.type == FileType::Regular;
    return a.path == b.path && a.attributes.type == b.attributes.type && a.linkText == b.linkText &&
           (!isFile || a.attributes.size == b.attributes.size);
}

SeenEntries seenOf(const BundleListing& listing, bool inodesPass) {
    SeenEntries seen(inodesPass);
    std::unordered_map<std::string, SeenEntries::Key> folders{{"", SeenEntries::chosenFolder}};
    for (const BundleEntry& entry : listing.entries) {  // a folder stands before what is in it
        const auto [folder, name] = splitPath(entry.path);
        const SeenEntries::Key key =
            seen.keyOf(folders[std::string(folder)], name, entry.attributes.inode);
        seen.add(key, SeenState::of(entry.attributes));
        if (entry.attributes.type == FileType::Folder) folders[entry.path] = key;
    }
    return seen;
}

/// Opens the files of a bundle one after another; neighbours share their folder.
class BundleFiles final {
public:
    BundleFiles(const FileSystem& files, int bundle, bool inodesPass)
        : m_files(files), m_bundle(bundle), m_inodesPass(inodesPass) {}

    [[nodiscard]] SysResult<Descriptor> open(const BundleEntry& entry) {
        const auto [folder, name] = splitPath(entry.path);
        if (!folder.empty() && folder != m_name) {
            auto opened = openFolderBelow(m_files, m_bundle, folder, Links::Keep);
            if (!opened) return opened;
            m_folder = std::move(*opened);
            m_name = folder;
        }
        auto file = m_files.openFile(folder.empty() ? m_bundle : m_folder.get(), name.data(),
                                     Links::Keep, m_state);
        if (!file) return file;
        const auto now = m_files.attributes(file->get());
        auto seen = EntryIdentity::of(entry.attributes);
        seen.inodePasses = m_inodesPass;
        if (!now || !seen.isStill(*now)) return tl::unexpected(ESTALE);
        return file;
    }

private:
    const FileSystem& m_files;
    const int m_bundle;
    const bool m_inodesPass;
    ReadState m_state;
    std::string m_name;  // of the folder that is open
    Descriptor m_folder;
};

}  // namespace

BundleLook::BundleLook(const FileSystem& files, Digests digests, std::optional<KeptCopy> kept,
                       bool compares, ListingObjection objection)
    : m_files(files),
      m_digests(digests),
      m_kept(std::move(kept)),
      m_compares(compares),
      m_objection(std::move(objection)),
      m_passing(files.devicesOfPassingInodes()) {}

std::optional<StayedEntry> BundleLook::before(const HeldEntry& leaving,
                                              const std::atomic<bool>& stop) {
    m_stop = &stop;
    auto reason = listBoth(leaving, leaving.name, stop);
    if (stop) return std::nullopt;  // for which a list was cut short
    if (reason) return reason;
    return m_kept && m_compares ? compare(leaving, stop) : std::nullopt;
}

std::optional<StayedEntry> BundleLook::last(const HeldEntry& leaving, const std::string& name) {
    const std::atomic<bool> never{false};
    auto reason = listBoth(leaving, name, m_stop != nullptr ? *m_stop : never);
    if (!reason) m_seen.emplace(seenOf(m_leavingList, inodesPass(leaving.attributes.device)));
    return reason;
}

bool BundleLook::inodesPass(std::uint64_t device) const {
    return std::find(m_passing.begin(), m_passing.end(), device) != m_passing.end();
}

std::optional<StayedEntry> BundleLook::listBoth(const HeldEntry& leaving, const std::string& name,
                                                const std::atomic<bool>& stop) {
    auto folder = m_files.openInside(leaving.parent.get(), name.c_str());
    if (!folder)
        return StayedEntry{leaving.path, systemError("open", {}, folder.error()).reason(),
                           stayReasonOf(folder.error())};
    m_leavingFolder = std::move(*folder);
    auto list = listBundleAt(m_files, m_leavingFolder.get(), leaving.path, {m_passing}, stop);
    if (!list) return failed(leaving, list.error().number);
    m_leavingList = std::move(*list);
    if (m_digests.leaving && *m_digests.leaving != m_leavingList.digest)
        return failed(leaving, ESTALE);
    if (m_objection)
        if (auto reason = m_objection(leaving, m_leavingList)) return reason;
    if (!m_kept) return std::nullopt;

    auto kept = openFolderByPath(m_files, m_kept->path, Links::Keep);
    if (!kept) return noBundleCopy(leaving);
    m_keptFolder = std::move(*kept);
    auto keptList = listBundleAt(m_files, m_keptFolder.get(), m_kept->path, {m_passing}, stop);
    if (!keptList) return noBundleCopy(leaving);
    m_keptList = std::move(*keptList);
    if (m_digests.kept && *m_digests.kept != m_keptList.digest) return noBundleCopy(leaving);
    if (holdsMount(m_keptFolder.get(), m_keptList))
        return noBundleCopy(leaving, stay::copyHasMount);
    return std::nullopt;
}

// Of a file with several names each of the two may have its own.
bool BundleLook::isOneFile(const FileAttributes& a, const FileAttributes& b) const {
    return a.device == b.device && a.inode == b.inode && a.links < 2 && !inodesPass(a.device);
}

// The mount may go at any time, and what it shows may be what goes.
bool BundleLook::holdsMount(int folder, const BundleListing& listing) const {
    const auto own = m_files.attributes(folder);
    return !own || std::ranges::any_of(listing.entries, [&](const BundleEntry& entry) {
        return entry.attributes.mount != own->mount;
    });
}

std::optional<StayedEntry> BundleLook::compare(const HeldEntry& leaving,
                                               const std::atomic<bool>& stop) const {
    const auto& ours = m_leavingList.entries;
    const auto& theirs = m_keptList.entries;
    if (ours.size() != theirs.size()) return noBundleCopy(leaving, stay::otherContents);
    BundleFiles ourFiles(m_files, m_leavingFolder.get(), inodesPass(leaving.attributes.device));
    BundleFiles theirFiles(m_files, m_keptFolder.get(), inodesPass(m_kept->identity.device));
    for (std::size_t i = 0; i < ours.size() && !stop; ++i) {
        if (!isAlike(ours[i], theirs[i])) return noBundleCopy(leaving, stay::otherContents);
        if (ours[i].attributes.type != FileType::Regular) continue;
        if (isOneFile(ours[i].attributes, theirs[i].attributes))
            return noBundleCopy(leaving, stay::sameEntry);
        const auto a = ourFiles.open(ours[i]);
        const auto b = theirFiles.open(theirs[i]);
        const FileAttributes& our = ours[i].attributes;  // as they were found open
        const FileAttributes& their = theirs[i].attributes;
        const auto answer = a && b ? compareContents(m_files, {a->get(), our.device, our.size},
                                                     {b->get(), their.device, their.size}, stop)
                                   : tl::unexpected(!a ? a.error() : b.error());
        if (!answer) return failed(leaving, answer.error());
        if (*answer == Comparison::Different) return noBundleCopy(leaving, stay::otherContents);
        if (m_files.isOpenForWriting(a->get()))
            return StayedEntry{leaving.path, std::string(stay::inUse), StayReason::InUse};
        if (m_files.isOpenForWriting(b->get())) return noBundleCopy(leaving, stay::copyInUse);
    }
    return std::nullopt;
}

}  // namespace orrinvale
