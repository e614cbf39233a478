// SysInfo: what the machine and its system are, as a record of fixed fields.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/systemValues.h"

namespace orrinvale {

/// The fields have no end mark where a value fills them: read them by fieldText(). What the
/// machine does not tell stays empty, or 0.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the interface's name
struct _SYS_INFO {
    std::array<char, 20> MachineType{};
    std::array<char, 20> Model{};
    std::array<char, 512> CpuVendor{};
    std::array<char, 512> CpuBrandString{};
    std::array<char, 20> OSType{};
    std::array<char, 10> OSVersion{};
    std::array<char, 512> Hostname{};
    std::uint64_t TotalMem = 0;  ///< bytes
};

/// What stands in a field, and nothing of the next one.
template <std::size_t Width>
[[nodiscard]] std::string fieldText(const std::array<char, Width>& field) {
    return {field.data(), ::strnlen(field.data(), Width)};
}

/// Whether the value may have been longer than the field.
template <std::size_t Width> [[nodiscard]] bool isFull(const std::array<char, Width>& field) {
    return field.back() != '\0';
}

/// Reads all values into the record, each cut to the width of its field. -1 for a null pointer,
/// else 0 or the errno of the last value that the machine does not tell; the others are read all
/// the same. Any thread, a record a thread.
std::int32_t getSysInfo(_SYS_INFO* info, const SystemValues& system);

/// The number in the bytes of such a value; 0 for fewer bytes than a number has.
[[nodiscard]] std::uint64_t numberIn(const std::string& bytes);

}  // namespace orrinvale
