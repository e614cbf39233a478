// An AppImage is an ELF program with "AI" and a number at its bytes 8 to 10; behind its section
// headers begins a SquashFS image (number 2) whose top holds the desktop entry.
#include "platform/linux/AppImageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/descriptor.h"
#include "platform/linux/SquashImage.h"

namespace orrinvale {
namespace {

using Head = std::array<unsigned char, 64>;

std::uint64_t numberAt(const Head& head, std::size_t at, std::size_t size) {
    std::uint64_t out = 0;
    for (std::size_t i = 0; i < size; ++i) out |= std::uint64_t{head[at + i]} << (8 * i);
    return out;
}

// Where the program ends; 0 for what is no such program.
std::uint64_t endOfProgram(const Head& head) {
    constexpr unsigned char wide = 2;
    constexpr unsigned char littleEndian = 1;
    if (head[5] != littleEndian) return 0;
    const bool isWide = head[4] == wide;
    const std::uint64_t headers = isWide ? numberAt(head, 0x28, 8) : numberAt(head, 0x20, 4);
    const std::uint64_t size = numberAt(head, isWide ? 0x3A : 0x2E, 2);
    const std::uint64_t count = numberAt(head, isWide ? 0x3C : 0x30, 2);
    return headers + size * count;
}

std::optional<DesktopEntry> entryIn(SquashImage& image, const std::vector<std::string>& languages) {
    for (const std::string& name : image.namesAtTop()) {
        if (!name.ends_with(".desktop")) continue;
        const auto text = image.file(name, kDesktopEntryLimit);
        auto entry = text ? DesktopEntry::parse(*text, languages) : std::nullopt;
        if (entry) return entry;
    }
    return std::nullopt;
}

}  // namespace

AppImageFile AppImageFile::read(int file, std::uint64_t size,
                                const std::vector<std::string>& languages) {
    AppImageFile out;
    Head head{};
    constexpr std::array<unsigned char, 4> elf{0x7F, 'E', 'L', 'F'};
    if (::pread(file, head.data(), head.size(), 0) != static_cast<ssize_t>(head.size()) ||
        !std::equal(elf.begin(), elf.end(), head.begin()) || head[8] != 'A' || head[9] != 'I' ||
        (head[10] != 1 && head[10] != 2))
        return out;
    out.isAppImage = true;
    const std::uint64_t offset = endOfProgram(head);
    if (head[10] != 2 || offset == 0 || offset >= size) return out;
    auto image = SquashImage::open(
        file, offset, {.read = kAppImageReadLimit - head.size(), .unpack = kAppImageUnpackLimit});
    if (image) out.entry = entryIn(*image, languages);
    return out;
}

AppImageFile AppImageFile::read(const std::string& path,
                                const std::vector<std::string>& languages) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat seen {};
    if (!file.isOpen() || ::fstat(file.get(), &seen) != 0 || !S_ISREG(seen.st_mode)) return {};
    return read(file.get(), static_cast<std::uint64_t>(seen.st_size), languages);
}

}  // namespace orrinvale
