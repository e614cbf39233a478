// ShareGivers: the copies of one group that may give their bytes to those for which the copy that
// stays is of no use: further ones that stay, and ticked ones that keep their own bytes.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/removal/SetAside.h"
#include "platform/sharing.h"

namespace orrinvale {

/// The group of a copy whose turn it is.
struct ShareGroup {
    std::size_t number = 0;  ///< another one for each group of the list
    const std::vector<KeptCopy>* staying =
        nullptr;  ///< where more than one stays, the last of which is asked first
};

/// Copies are sorted by what two need to have in common, so that those of a large group do not all
/// ask each other. Groups come one after another, as in a plan; of one that is left nothing is
/// kept. Used on one thread.
class ShareGivers final {
public:
    explicit ShareGivers(const FileSystem& files) : m_files(files) {}

    /// What two copies need to have in common, one way or the other.
    struct Kind {
        std::string space;  ///< spaceOf()
        bool isWrittenInPlace = false;
        std::uint64_t device = 0;
        FileBelongings belongings;
    };
    enum class Way : std::uint8_t { Extents, Link };

    /// spaceOf() of a file on this device, which is asked once.
    [[nodiscard]] const std::string& space(std::uint64_t device, const std::string& path);
    /// Nothing where it can not be told.
    [[nodiscard]] std::optional<Kind> kindOf(const std::string& path, std::uint64_t device,
                                             int file);
    /// The copy whose turn it is belongs to the group of this number.
    void enter(std::size_t number);
    /// Once for each group, where one is needed: all copies that stay.
    void learnStaying(const std::vector<KeptCopy>& staying);
    /// Whom to ask next; nothing after the last.
    [[nodiscard]] std::optional<KeptCopy> next(Way way, const Kind& kind) const;
    /// It was of no use, and will be of none to others of the kind.
    void drop(Way way, const Kind& kind);
    void add(const Kind& kind, const KeptCopy& giver);

    using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
    /// By our own doing, whatever name of the file gives its bytes.
    void learnChanged(const FileKey& file, std::int64_t changed) { m_changed[file] = changed; }

private:
    struct Key {
        Way way;
        std::string space;
        bool isWrittenInPlace;
        std::uint64_t device;
        FileBelongings belongings;  // as the device of names alone
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    [[nodiscard]] static Key keyOf(Way way, const Kind& kind);

    const FileSystem& m_files;
    std::optional<std::size_t> m_group;
    bool m_knowsStaying = false;
    std::map<Key, std::vector<KeptCopy>> m_givers;  // the last is asked first
    std::map<FileKey, std::int64_t> m_changed;
    std::map<std::uint64_t, std::string> m_spaces;  // by device
};

}  // namespace orrinvale
