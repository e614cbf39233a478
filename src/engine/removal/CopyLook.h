// CopyLook: what is held of a copy and of the one that stays, from the comparison to the last look
// before the copy goes.
#pragma once

#include <atomic>
#include <optional>
#include <tl/expected.hpp>

#include "engine/files/HeldEntry.h"
#include "engine/files/RemovalResult.h"
#include "engine/removal/SetAside.h"

namespace orrinvale {

class SeenEntries;

/// How a copy goes. Made by the page's rules for one entry, used by the door, on the removing
/// thread.
class CopyLook {
public:
    virtual ~CopyLook() = default;

    /// The copy that has to stay; nothing where the whole group goes.
    [[nodiscard]] virtual const std::optional<KeptCopy>& kept() const = 0;

    /// Before anything is touched: asks who writes to it, and compares the contents where that is
    /// wanted. A reason, when the entry stays; none after a stop, which the caller looks at.
    [[nodiscard]] virtual std::optional<StayedEntry> before(const HeldEntry& leaving,
                                                            const std::atomic<bool>& stop) = 0;

    /// Just before the removal, when the entry is aside under this name, or still has its own where
    /// it can not be set aside: what was compared is still what stands there. The copy that stays
    /// is looked at by the caller. After a stop, that of before(), it says nothing that counts.
    [[nodiscard]] virtual std::optional<StayedEntry> last(const HeldEntry& leaving,
                                                          const std::string& name) = 0;

    /// After last(): what a bundle holds, which alone goes with it; nullptr for what is none.
    [[nodiscard]] virtual const SeenEntries* seen() const { return nullptr; }

protected:
    CopyLook() = default;
    CopyLook(const CopyLook&) = default;
    CopyLook& operator=(const CopyLook&) = default;
};

/// Two files, both held open from the comparison to the last look.
class FileLook final : public CopyLook {
public:
    /// `compares` false: only who writes to them is asked. `files` outlives it.
    FileLook(const FileSystem& files, std::optional<KeptCopy> kept, bool compares)
        : m_files(files), m_kept(std::move(kept)), m_compares(compares) {}

    const std::optional<KeptCopy>& kept() const override { return m_kept; }
    std::optional<StayedEntry> before(const HeldEntry& leaving,
                                      const std::atomic<bool>& stop) override;
    std::optional<StayedEntry> last(const HeldEntry& leaving, const std::string& name) override;

private:
    [[nodiscard]] std::optional<StayedEntry> openBoth(const HeldEntry& leaving);
    [[nodiscard]] std::optional<StayedEntry> inUse(const HeldEntry& leaving) const;

    const FileSystem& m_files;
    std::optional<KeptCopy> m_kept;
    const bool m_compares;
    Descriptor m_leavingFile;  // both not open for what is no regular file
    Descriptor m_keptFile;
};

}  // namespace orrinvale
