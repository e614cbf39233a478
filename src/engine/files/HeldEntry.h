// HeldEntry: an entry that is about to leave its place, looked up from its held parent, with
// nothing against its going. SafeRemoval and Trash begin with it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <tl/expected.hpp>
#include <utility>

#include "engine/files/EntryIdentity.h"
#include "engine/files/OwnChanges.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/RemovalResult.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// A folder that is held, by one owner or by several.
class SharedFolder final {
public:
    SharedFolder() = default;
    SharedFolder(Descriptor folder)  // NOLINT(google-explicit-constructor): stands for it
        : m_folder(std::make_shared<const Descriptor>(std::move(folder))) {}
    [[nodiscard]] int get() const { return m_folder->get(); }

private:
    std::shared_ptr<const Descriptor> m_folder;
};

/// Entries of one folder that leave it one after another have the same parent, which is found and
/// asked about once, and again after a tenth of a second, when another folder or a mount may have
/// come into its place. One thread.
class HeldParents final {
public:
    struct Parent {
        SharedFolder folder;
        SysResult<FileAttributes> attributes = tl::unexpected(0);
        std::string place;  ///< where it stands, without links; empty when nobody can tell
    };
    /// Good until the next call.
    [[nodiscard]] SysResult<const Parent*> hold(const FileSystem& files, const std::string& path);

private:
    std::string m_path;
    Parent m_parent;
    std::chrono::steady_clock::time_point m_found;
};

struct HeldEntry {
    SharedFolder parent;  ///< held, not open for listing
    std::string path;     ///< plain: no repeated slash, none at the end
    std::string name;     ///< its last component
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
    /// however the path is spelled and through whatever links it leads. `parents`, which may be
    /// null, serve entry after entry.
    [[nodiscard]] static tl::expected<HeldEntry, Objection> at(
        const FileSystem& files, const ProtectedPlaces& places, const std::string& path,
        const std::optional<EntryIdentity>& expected, const OwnChanges* own = nullptr,
        HeldParents* parents = nullptr);

    /// The folder that a path of any length leads to, held, as at() holds it.
    [[nodiscard]] static SysResult<Descriptor> holdParentOf(const FileSystem& files,
                                                            const std::string& path);
};

}  // namespace orrinvale
