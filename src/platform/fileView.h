// FileView: a file looked at where it lies in memory, here and there, without reading it whole.
// linux/LinuxMapping.cpp implements it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The bytes of a file for as long as the object lives. Looks go through a Look, on any thread.
class FileView final {
public:
    FileView() = default;
    FileView(FileView&& other) noexcept : m_bytes(std::exchange(other.m_bytes, {})) {}
    FileView& operator=(FileView&& other) noexcept {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;
    ~FileView();

    /// The first bytes of an open file, which may be closed then.
    [[nodiscard]] static SysResult<FileView> of(int file, std::size_t length);

    [[nodiscard]] std::span<const std::byte> bytes() const { return m_bytes; }

    /// While one lives, what somebody cuts off from the file reads as zeros on this thread, and
    /// ends the program on no account. One at a time.
    class [[nodiscard]] Look final {
    public:
        explicit Look(const FileView& view);
        ~Look();
        Look(const Look&) = delete;
        Look& operator=(const Look&) = delete;
    };

private:
    std::span<const std::byte> m_bytes;
};

}  // namespace orrinvale
