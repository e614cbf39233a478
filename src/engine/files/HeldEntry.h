// HeldEntry: an entry that is about to leave its place, looked up from its held parent, with
// nothing against its going. SafeRemoval and Trash begin with it.
#pragma once

#include <optional>
#include <string>
#include <tl/expected.hpp>

#include "engine/files/EntryIdentity.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/RemovalResult.h"
#include "platform/fileTypes.h"

namespace orrinvale {

struct HeldEntry {
    Descriptor parent;  ///< held, not open for listing
    std::string path;   ///< plain: no repeated slash, none at the end
    std::string name;   ///< its last component
    FileAttributes attributes;

    /// Why there is none.
    struct Objection {
        enum class Kind {
            Refused,   ///< it may not go, whoever asks
            NoParent,  ///< the folder that it is in could not be held
            NoEntry    ///< the folder is there, the entry could not be looked up
        };
        Kind kind = Kind::Refused;
        int error = 0;  ///< errno, 0 for what is refused
        std::string
            reason;  ///< for people: "a mount point", "changed since the scan", "Permission denied"
        StayReason why = StayReason::System;
    };

    /// Holds the parent of an absolute path, once; of any length. With `expected` the entry must
    /// still be what the scan saw, `own` aside, which may be null. A protected place is refused,
    /// however the path is spelled and through whatever links it leads.
    [[nodiscard]] static tl::expected<HeldEntry, Objection> at(
        const FileSystem& files, const ProtectedPlaces& places, const std::string& path,
        const std::optional<EntryIdentity>& expected, const OwnChanges* own = nullptr);

    /// The folder that a path of any length leads to, held, as at() holds it.
    [[nodiscard]] static SysResult<Descriptor> holdParentOf(const FileSystem& files,
                                                            const std::string& path);
};

}  // namespace orrinvale
