// LinkedFiles: files with several names, so that what they take on the disk counts once in each
// folder, whichever names of it lie there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>

namespace orrinvale {

/// Those of one folder, with all below it. One thread at a time.
class LinkedFiles final {
public:
    /// One name of a file was met. The bytes that it adds to the folder: those of the file for the
    /// first of its names.
    std::uint64_t add(std::uint64_t device, std::uint64_t inode, std::uint32_t links,
                      std::uint64_t onDisk);

    /// Takes over those of a folder within. The bytes that both sides have counted.
    std::uint64_t merge(LinkedFiles&& within);

    /// Bytes of the files that have names elsewhere too.
    [[nodiscard]] std::uint64_t outside() const;
    [[nodiscard]] bool isEmpty() const { return m_files.empty(); }

private:
    struct Key {
        std::uint64_t device, inode;
        bool operator==(const Key&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const {
            constexpr std::uint64_t spread = 0x9E37'79B9'7F4A'7C15;  // 2^64 over the golden ratio
            return (key.inode ^ (key.device << 48U)) * spread;
        }
    };
    struct File {
        std::uint64_t onDisk;
        std::uint32_t links, met;
    };
    // Without those all of whose names were met: nothing can be counted twice of them.
    std::unordered_map<Key, File, Hash> m_files;
};

}  // namespace orrinvale
