// BundleLook: how a copy goes that is a whole bundle.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "engine/duplicates/BundleListing.h"
#include "engine/files/SeenEntries.h"
#include "engine/removal/CopyLook.h"

namespace orrinvale {

/// Told of all that is in a bundle each time that it is listed before it goes: why it may not go;
/// nothing where it may.
using ListingObjection = std::function<std::optional<StayedEntry>(const HeldEntry& bundle,
                                                                  const BundleListing& listing)>;

/// Two bundles are copies of each other while both hold, to the last entry, what the search listed,
/// and hold the same: names, types, texts of links, and bytes.
class BundleLook final : public CopyLook {
public:
    /// Of the two listings, as the search took them; nothing for a bundle that does not stay or was
    /// never listed.
    struct Digests {
        std::optional<std::uint64_t> leaving;
        std::optional<std::uint64_t> kept;
    };
    /// `compares` false: the listings alone have to agree with those of the search.
    /// `objection` may be empty.
    BundleLook(const FileSystem& files, Digests digests, std::optional<KeptCopy> kept,
               bool compares, ListingObjection objection = {});

    const std::optional<KeptCopy>& kept() const override { return m_kept; }
    std::optional<StayedEntry> before(const HeldEntry& leaving,
                                      const std::atomic<bool>& stop) override;
    std::optional<StayedEntry> last(const HeldEntry& leaving, const std::string& name) override;
    const SeenEntries* seen() const override { return m_seen ? &*m_seen : nullptr; }

private:
    [[nodiscard]] std::optional<StayedEntry> listBoth(const HeldEntry& leaving,
                                                      const std::string& name,
                                                      const std::atomic<bool>& stop);
    [[nodiscard]] bool holdsMount(int folder, const BundleListing& listing) const;
    [[nodiscard]] bool isOneFile(const FileAttributes& a, const FileAttributes& b) const;
    [[nodiscard]] bool inodesPass(std::uint64_t device) const;
    [[nodiscard]] std::optional<StayedEntry> compare(const HeldEntry& leaving,
                                                     const std::atomic<bool>& stop) const;

    const FileSystem& m_files;
    const Digests m_digests;
    std::optional<KeptCopy> m_kept;
    const bool m_compares;
    const ListingObjection m_objection;
    const std::vector<std::uint64_t> m_passing;
    const std::atomic<bool>* m_stop = nullptr;  // of before()
    BundleListing m_leavingList;
    BundleListing m_keptList;
    std::optional<SeenEntries> m_seen;
    Descriptor m_leavingFolder;  // both open as they were listed
    Descriptor m_keptFolder;
};

}  // namespace orrinvale
