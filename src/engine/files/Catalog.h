// Catalog: folders and their entries by reference instead of by path, a batch at a time. TreeSize.h
// is the faster way where only sums are wanted.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "engine/files/EntryIdentity.h"
#include "platform/fileTypes.h"
#include "platform/statuses.h"

namespace orrinvale {

/// What FSGetCatalogInfo() and FSGetCatalogInfoBulk() are asked for.
enum FSCatalogInfoBitmap : std::uint32_t {
    kFSCatInfoNone = 0,
    kFSCatInfoNodeFlags = 0x2,
    kFSCatInfoDataSizes = 0x4000,
    kFSCatInfoRsrcSizes = 0x8000,     ///< always 0 here, costs nothing
    kFSCatInfoGettableInfo = 0x3FFFF  ///< all, attributes and identity too
};

struct FSCatalogInfo {
    static constexpr std::uint16_t kFSNodeIsDirectoryMask = 0x10;

    std::uint16_t nodeFlags = 0;
    std::uint64_t dataLogicalSize = 0;  ///< of a file or the text of a link; a folder has none
    FileAttributes attributes;  ///< only with kFSCatInfoGettableInfo; `error` then tells whether
                                ///< they could be had
    int error = 0;              ///< errno

    [[nodiscard]] bool isFolder() const { return (nodeFlags & kFSNodeIsDirectoryMask) != 0; }
};

/// Names one entry of a file system without a path: an entry held open, or a name below a folder
/// held open. Copies share the descriptor, which closes with the last of them; so a caller that
/// keeps a reference from each level of a tree keeps a descriptor for each level. A default one
/// names nothing.
class FSRef final {
public:
    FSRef() = default;
    explicit FSRef(Descriptor held) : m_held(std::make_shared<const Descriptor>(std::move(held))) {}
    FSRef(std::shared_ptr<const Descriptor> folder, std::string name)
        : m_held(std::move(folder)), m_name(std::move(name)) {}

    [[nodiscard]] bool isValid() const { return m_held != nullptr; }
    /// The open folder that has the entry, or with an empty name() the entry.
    [[nodiscard]] int base() const { return m_held ? m_held->get() : -1; }
    [[nodiscard]] const std::string& name() const { return m_name; }

    /// From the moment on that the catalog has seen the entry's attributes, the reference names
    /// this entry and no other.
    void setIdentity(const FileAttributes& seen) { m_identity = EntryIdentity::of(seen); }
    [[nodiscard]] const std::optional<EntryIdentity>& identity() const { return m_identity; }

private:
    std::shared_ptr<const Descriptor> m_held;
    std::string m_name;
    std::optional<EntryIdentity> m_identity;
};

/// One listing of one folder, begun by FSOpenIterator(). One thread at a time.
class FSIterator final {
public:
    FSIterator() = default;

private:
    friend class Catalog;
    std::shared_ptr<const Descriptor> m_folder;
    CatalogBatch m_batch;
    std::size_t m_next = 0;
};

/// Holds no state of its own; any thread, iterators apart. The file system must outlive it.
class Catalog final {
public:
    explicit Catalog(const FileSystem& files) : m_files(files) {}

    /// The entry at a path of any length, a link itself at its end; nothing when there is none.
    [[nodiscard]] std::optional<FSRef> fsref(const std::string& path) const;

    /// Begins a flat listing. errFSNotAFolder when the reference names something else.
    [[nodiscard]] OSErr FSOpenIterator(const FSRef& container, FSIterator& iterator) const;

    /// The next entries, at most `maximumObjects` of them, in the system's order. `infos` has that
    /// much room, and so have `refs` and `names` unless they are null. errFSNoMoreItems comes with
    /// the last items, of which there may be none. On any other error there are no items. An entry
    /// that goes away during the call is left out. Only where sizes or all information are asked
    /// for are entries looked at one by one.
    [[nodiscard]] OSErr FSGetCatalogInfoBulk(FSIterator& iterator, std::size_t maximumObjects,
                                             std::size_t& actualObjects, std::uint32_t whichInfo,
                                             FSCatalogInfo* infos, FSRef* refs,
                                             std::string* names) const;

    /// The information about one entry.
    [[nodiscard]] OSErr FSGetCatalogInfo(const FSRef& ref, FSCatalogInfo& info) const;

    /// Ends a listing. The references that came from it stay good.
    static void FSCloseIterator(FSIterator& iterator) { iterator = FSIterator(); }

    /// The path at which the entry stands now, at most 4095 bytes; nothing when it is longer or the
    /// entry is gone.
    [[nodiscard]] std::optional<std::string> FSRefMakePath(const FSRef& ref) const;

private:
    bool take(const FSIterator& iterator, CatalogEntry& entry, std::uint32_t whichInfo,
              FSCatalogInfo& info) const;

    const FileSystem& m_files;
};

}  // namespace orrinvale
