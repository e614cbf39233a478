// All numbers are little-endian. What is not understood ends the reading.
#include "platform/linux/SquashImage.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t metadataSize = 8192;
constexpr std::uint32_t noFragment = 0xFFFF'FFFF;
enum Types : std::uint16_t {
    Folder = 1,
    File = 2,
    Link = 3,
    LongFolder = 8,
    LongFile = 9,
    LongLink = 10
};

template <class Number> Number imageNumberAt(std::string_view bytes, std::size_t at) {
    Number out = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        out = static_cast<Number>(
            out | static_cast<Number>(static_cast<Number>(static_cast<unsigned char>(bytes[at + i]))
                                      << (8 * i)));
    return out;
}

}  // namespace

std::optional<SquashImage> SquashImage::open(int file, std::uint64_t offset, Limits limits) {
    SquashImage image(file, offset, limits);
    if (!image.readHead()) return std::nullopt;
    return image;
}

bool SquashImage::readHead() {
    constexpr std::size_t size = 96;
    constexpr std::uint32_t magic = 0x7371'7368;
    constexpr std::uint32_t largestBlock = std::uint32_t{1} << 20U;
    const auto head = bytesAt(0, size);
    if (!head || imageNumberAt<std::uint32_t>(*head, 0) != magic ||
        imageNumberAt<std::uint16_t>(*head, 28) != 4)
        return false;
    m_blockSize = imageNumberAt<std::uint32_t>(*head, 12);
    m_fragmentCount = imageNumberAt<std::uint32_t>(*head, 16);
    m_packer = static_cast<Packer>(imageNumberAt<std::uint16_t>(*head, 20));
    m_root = imageNumberAt<std::uint64_t>(*head, 32);
    m_inodes = imageNumberAt<std::uint64_t>(*head, 64);
    m_folders = imageNumberAt<std::uint64_t>(*head, 72);
    m_fragments = imageNumberAt<std::uint64_t>(*head, 80);
    return m_blockSize != 0 && m_blockSize <= largestBlock;
}

std::optional<std::string> SquashImage::bytesAt(std::uint64_t at, std::size_t size) {
    constexpr std::uint64_t most = std::uint64_t{1} << 62U;
    if (size > m_limits.read || at > most || m_offset > most) return std::nullopt;
    m_limits.read -= size;
    std::string out(size, '\0');
    for (std::size_t got = 0; got < size;) {
        const ssize_t count =
            ::pread(m_file, out.data() + got, size - got, static_cast<off_t>(m_offset + at + got));
        if (count <= 0) return std::nullopt;
        got += static_cast<std::size_t>(count);
    }
    return out;
}

// Of a block of data; the size has a bit for what is not packed.
std::optional<std::string> SquashImage::blockOf(std::uint64_t at, std::uint32_t sizeWord,
                                                std::size_t most) {
    constexpr std::uint32_t plain = std::uint32_t{1} << 24U;
    const std::size_t size = sizeWord & (plain - 1);
    if (most > m_limits.unpack || size > m_blockSize) return std::nullopt;
    m_limits.unpack -= most;
    auto bytes = bytesAt(at, size);
    if (!bytes || (sizeWord & plain) != 0) return bytes;
    return unpacked(m_packer, *bytes, most);
}

const SquashImage::Block* SquashImage::metadata(std::uint64_t at) {
    if (const auto known = m_blocks.find(at); known != m_blocks.end()) return &known->second;
    constexpr std::uint16_t plain = 0x8000;
    const auto head = bytesAt(at, 2);
    if (!head || m_limits.unpack < metadataSize) return nullptr;
    m_limits.unpack -= metadataSize;
    const auto word = imageNumberAt<std::uint16_t>(*head, 0);
    const std::size_t size = word & (plain - 1U);
    auto bytes = size == 0 || size > metadataSize ? std::nullopt : bytesAt(at + 2, size);
    if (bytes && (word & plain) == 0) bytes = unpacked(m_packer, *bytes, metadataSize);
    if (!bytes) return nullptr;
    return &m_blocks.emplace(at, Block{std::move(*bytes), at + 2 + size}).first->second;
}

std::optional<std::string> SquashImage::take(Cursor& cursor, std::size_t size) {
    std::string out;
    while (out.size() < size) {
        const Block* const block = metadata(cursor.block);
        if (block == nullptr || cursor.at > block->bytes.size()) return std::nullopt;
        const std::size_t piece = std::min(size - out.size(), block->bytes.size() - cursor.at);
        out.append(block->bytes, cursor.at, piece);
        cursor.at += piece;
        if (cursor.at == block->bytes.size()) cursor = {block->next, 0};
    }
    return out;
}

template <class Number> bool SquashImage::number(Cursor& cursor, Number& out) {
    const auto bytes = take(cursor, sizeof(Number));
    if (bytes) out = imageNumberAt<Number>(*bytes, 0);
    return bytes.has_value();
}

// A reference is the place of its block and, in the lower 16 bits, the place in it.
std::optional<SquashImage::Inode> SquashImage::inode(std::uint64_t reference) {
    constexpr std::size_t common = 14;  // mode, owner, time, number
    Cursor cursor{m_inodes + (reference >> 16U), reference & 0xFFFFU};
    Inode out;
    if (!number(cursor, out.type) || !take(cursor, common)) return std::nullopt;
    switch (out.type) {
        case Folder:
        case LongFolder:
            if (!readFolder(cursor, out, out.type == LongFolder)) return std::nullopt;
            return out;
        case File:
        case LongFile:
            if (!readFile(cursor, out, out.type == LongFile)) return std::nullopt;
            return out;
        case Link:
        case LongLink: break;
        default: return std::nullopt;
    }
    constexpr std::uint32_t longest = 4096;
    std::uint32_t links = 0, size = 0;
    if (!number(cursor, links) || !number(cursor, size) || size > longest) return std::nullopt;
    auto target = take(cursor, size);
    if (!target) return std::nullopt;
    out.target = std::move(*target);
    return out;
}

bool SquashImage::readFolder(Cursor& cursor, Inode& out, bool isLong) {
    std::uint32_t block = 0, links = 0, parent = 0, longSize = 0;
    std::uint16_t size = 0, offset = 0, indexes = 0;
    const bool isRead = isLong ? number(cursor, links) && number(cursor, longSize) &&
                                     number(cursor, block) && number(cursor, parent) &&
                                     number(cursor, indexes) && number(cursor, offset)
                               : number(cursor, block) && number(cursor, links) &&
                                     number(cursor, size) && number(cursor, offset);
    out.begin = block;
    out.offset = offset;
    out.size = isLong ? longSize : size;
    return isRead;
}

bool SquashImage::readFile(Cursor& cursor, Inode& out, bool isLong) {
    std::uint32_t begin = 0, size = 0, links = 0, attributes = 0;
    std::uint64_t sparse = 0;
    const bool isRead = isLong ? number(cursor, out.begin) && number(cursor, out.size) &&
                                     number(cursor, sparse) && number(cursor, links) &&
                                     number(cursor, out.fragment) && number(cursor, out.offset) &&
                                     number(cursor, attributes)
                               : number(cursor, begin) && number(cursor, out.fragment) &&
                                     number(cursor, out.offset) && number(cursor, size);
    if (!isLong) {
        out.begin = begin;
        out.size = size;
    }
    if (!isRead || out.size > m_limits.unpack) return false;
    std::uint64_t blocks = out.size / m_blockSize;
    if (out.fragment == noFragment && out.size % m_blockSize != 0) ++blocks;
    for (std::uint64_t i = 0; i < blocks; ++i)
        if (!number(cursor, out.blocks.emplace_back())) return false;
    return true;
}

std::vector<SquashImage::Entry> SquashImage::entries(const Inode& folder) {
    std::vector<Entry> out;
    if (folder.type != Folder && folder.type != LongFolder) return out;
    constexpr std::uint64_t dots = 3;  // that the size counts for "." and ".."
    Cursor cursor{m_folders + folder.begin, folder.offset};
    for (std::uint64_t left = folder.size > dots ? folder.size - dots : 0; left > 0;) {
        std::uint32_t count = 0, block = 0, first = 0;
        if (!number(cursor, count) || !number(cursor, block) || !number(cursor, first)) return out;
        left -= std::min<std::uint64_t>(left, 12);
        for (std::uint64_t i = 0; i <= count && left > 0; ++i) {
            std::uint16_t offset = 0, difference = 0, type = 0, length = 0;
            if (!number(cursor, offset) || !number(cursor, difference) || !number(cursor, type) ||
                !number(cursor, length))
                return out;
            auto name = take(cursor, std::size_t{length} + 1);
            if (!name) return out;
            left -= std::min<std::uint64_t>(left, 8 + name->size());
            out.push_back({std::move(*name), (std::uint64_t{block} << 16U) | offset});
        }
    }
    return out;
}

std::optional<std::string> SquashImage::fragment(std::uint32_t index) {
    constexpr std::uint32_t perBlock = 512;
    if (index >= m_fragmentCount) return std::nullopt;
    const auto pointer = bytesAt(m_fragments + std::uint64_t{index / perBlock} * 8, 8);
    if (!pointer) return std::nullopt;
    Cursor cursor{imageNumberAt<std::uint64_t>(*pointer, 0), std::size_t{index % perBlock} * 16};
    std::uint64_t begin = 0;
    std::uint32_t size = 0;
    if (!number(cursor, begin) || !number(cursor, size)) return std::nullopt;
    return blockOf(begin, size, m_blockSize);
}

std::optional<std::string> SquashImage::contents(const Inode& file, std::size_t most) {
    if ((file.type != File && file.type != LongFile) || file.size > most) return std::nullopt;
    std::string out;
    std::uint64_t at = file.begin;
    for (const std::uint32_t word : file.blocks) {
        constexpr std::uint32_t sizeBits = (std::uint32_t{1} << 24U) - 1;
        const auto bytes = word == 0 ? std::optional<std::string>(std::string(m_blockSize, '\0'))
                                     : blockOf(at, word, m_blockSize);
        if (!bytes) return std::nullopt;
        out += *bytes;
        at += word & sizeBits;
    }
    if (out.size() < file.size && file.fragment != noFragment) {
        const auto tail = fragment(file.fragment);
        if (!tail || file.offset > tail->size()) return std::nullopt;
        out.append(*tail, file.offset, file.size - out.size());
    }
    if (out.size() < file.size) return std::nullopt;
    out.resize(file.size);
    return out;
}

std::vector<std::string> SquashImage::namesAtTop() {
    std::vector<std::string> out;
    if (const auto root = inode(m_root))
        for (Entry& each : entries(*root)) out.push_back(std::move(each.name));
    return out;
}

std::optional<std::string> SquashImage::file(std::string_view path, std::size_t most) {
    std::vector<std::uint64_t> way{m_root};  // the folders above, for ".."
    std::string rest(path);
    for (int links = 0;;) {
        std::string_view left = rest;
        const std::string name(nextComponent(left));
        std::string behind(left);
        if (name.empty()) return std::nullopt;
        if (name == "." || name == "..") {
            if (name == ".." && way.size() > 1) way.pop_back();
            rest = behind;
            continue;
        }
        const auto folder = inode(way.back());
        if (!folder) return std::nullopt;
        const auto listed = entries(*folder);
        const auto found = std::find_if(listed.begin(), listed.end(),
                                        [&](const Entry& each) { return each.name == name; });
        const auto next = found == listed.end() ? std::nullopt : inode(found->inode);
        if (!next) return std::nullopt;
        const bool isLast = behind.find_first_not_of('/') == std::string::npos;
        if (next->type == Link || next->type == LongLink) {
            constexpr int mostLinks = 8;
            if (++links > mostLinks || next->target.starts_with('/')) return std::nullopt;
            rest = next->target + '/' + behind;
        } else if (isLast) {
            return contents(*next, most);
        } else {
            way.push_back(found->inode);
            rest = behind;
        }
    }
}

}  // namespace orrinvale
