// The functions are declared here, since each library is wanted for one of them alone; all are of
// stable interfaces.
#include "platform/linux/Unpacking.h"

#include <climits>

#include "platform/linux/LoadedLibrary.h"

namespace orrinvale {
namespace {

template <class Function> Function* functionIn(const char* library, const char* name) {
    Function* found = nullptr;
    LoadedLibrary(library).find(found, name);
    return found;
}

using Size = std::optional<std::size_t>;

Size gzip(std::string_view packed, std::string& out) {
    static auto* const function =
        functionIn<int(unsigned char*, unsigned long*, const unsigned char*, unsigned long)>(
            "libz.so.1", "uncompress");
    unsigned long size = out.size();
    if (function == nullptr ||
        function(reinterpret_cast<unsigned char*>(out.data()), &size,
                 reinterpret_cast<const unsigned char*>(packed.data()), packed.size()) != 0)
        return std::nullopt;
    return size;
}

Size xz(std::string_view packed, std::string& out) {
    static auto* const function =
        functionIn<int(std::uint64_t*, std::uint32_t, const void*, const std::uint8_t*,
                       std::size_t*, std::size_t, std::uint8_t*, std::size_t*, std::size_t)>(
            "liblzma.so.5", "lzma_stream_buffer_decode");
    std::uint64_t memory = std::uint64_t{64} << 20U;
    std::size_t taken = 0;
    std::size_t size = 0;
    if (function == nullptr ||
        function(&memory, 0, nullptr, reinterpret_cast<const std::uint8_t*>(packed.data()), &taken,
                 packed.size(), reinterpret_cast<std::uint8_t*>(out.data()), &size,
                 out.size()) != 0)
        return std::nullopt;
    return size;
}

Size lz4(std::string_view packed, std::string& out) {
    static auto* const function =
        functionIn<int(const char*, char*, int, int)>("liblz4.so.1", "LZ4_decompress_safe");
    if (function == nullptr || packed.size() > INT_MAX || out.size() > INT_MAX) return std::nullopt;
    const int size = function(packed.data(), out.data(), static_cast<int>(packed.size()),
                              static_cast<int>(out.size()));
    return size < 0 ? Size() : Size(static_cast<std::size_t>(size));
}

Size zstd(std::string_view packed, std::string& out) {
    static auto* const function =
        functionIn<std::size_t(void*, std::size_t, const void*, std::size_t)>("libzstd.so.1",
                                                                              "ZSTD_decompress");
    static auto* const isError = functionIn<unsigned(std::size_t)>("libzstd.so.1", "ZSTD_isError");
    if (function == nullptr || isError == nullptr) return std::nullopt;
    const std::size_t size = function(out.data(), out.size(), packed.data(), packed.size());
    return isError(size) != 0 ? Size() : Size(size);
}

}  // namespace

std::optional<std::string> unpacked(Packer packer, std::string_view packed, std::size_t limit) {
    std::string out(limit, '\0');
    Size size;
    switch (packer) {
        case Packer::Gzip: size = gzip(packed, out); break;
        case Packer::Xz: size = xz(packed, out); break;
        case Packer::Lz4: size = lz4(packed, out); break;
        case Packer::Zstd: size = zstd(packed, out); break;
    }
    if (!size || *size > limit) return std::nullopt;
    out.resize(*size);
    return out;
}

}  // namespace orrinvale
