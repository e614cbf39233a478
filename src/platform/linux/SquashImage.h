// SquashImage: single small files of a SquashFS image within a file, as AppImages carry one. The
// format is version 4.0, as the kernel's documentation describes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/Unpacking.h"

namespace orrinvale {

/// Reads by offset from an open file, which outlives it. Whatever the bytes say, it reads and
/// unpacks no more than its limits, and follows eight links at most. One thread.
class SquashImage final {
public:
    struct Limits {
        std::size_t read;
        std::size_t unpack;
    };

    /// Nothing when no image that can be read begins at the offset.
    [[nodiscard]] static std::optional<SquashImage> open(int file, std::uint64_t offset,
                                                         Limits limits);

    /// The names at the top of the image; none where they can not be read.
    [[nodiscard]] std::vector<std::string> namesAtTop();

    /// The bytes of a regular file of at most `most` bytes by its path from the top, links within
    /// the image followed.
    [[nodiscard]] std::optional<std::string> file(std::string_view path, std::size_t most);

private:
    struct Inode {
        std::uint16_t type = 0;
        std::string target;       // of a link
        std::uint64_t begin = 0;  // of a file its blocks, of a folder its block of entries
        std::uint64_t size = 0;
        std::uint32_t offset = 0;  // in the fragment, or in the block of entries
        std::uint32_t fragment = 0;
        std::vector<std::uint32_t> blocks;
    };
    struct Entry {
        std::string name;
        std::uint64_t inode = 0;
    };
    struct Block {
        std::string bytes;
        std::uint64_t next = 0;  // where the one behind it begins
    };
    // Reads on through blocks of metadata.
    struct Cursor {
        std::uint64_t block = 0;
        std::size_t at = 0;
    };

    SquashImage(int file, std::uint64_t offset, Limits limits)
        : m_file(file), m_offset(offset), m_limits(limits) {}
    [[nodiscard]] bool readHead();
    [[nodiscard]] std::optional<std::string> bytesAt(std::uint64_t at, std::size_t size);
    [[nodiscard]] std::optional<std::string> blockOf(std::uint64_t at, std::uint32_t sizeWord,
                                                     std::size_t most);
    [[nodiscard]] const Block* metadata(std::uint64_t at);
    [[nodiscard]] std::optional<std::string> take(Cursor& cursor, std::size_t size);
    template <class Number> [[nodiscard]] bool number(Cursor& cursor, Number& out);
    [[nodiscard]] std::optional<Inode> inode(std::uint64_t reference);
    [[nodiscard]] bool readFile(Cursor& cursor, Inode& out, bool isLong);
    [[nodiscard]] bool readFolder(Cursor& cursor, Inode& out, bool isLong);
    [[nodiscard]] std::vector<Entry> entries(const Inode& folder);
    [[nodiscard]] std::optional<std::string> contents(const Inode& file, std::size_t most);
    [[nodiscard]] std::optional<std::string> fragment(std::uint32_t index);

    const int m_file;
    const std::uint64_t m_offset;
    Limits m_limits;  // what is left of them
    std::uint32_t m_blockSize = 0;
    Packer m_packer = Packer::Gzip;
    std::uint64_t m_root = 0, m_inodes = 0, m_folders = 0, m_fragments = 0;
    std::uint32_t m_fragmentCount = 0;
    std::map<std::uint64_t, Block> m_blocks;
};

}  // namespace orrinvale
