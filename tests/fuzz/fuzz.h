// What a fuzz target is: a check of any bytes, which ends the process where an invariant breaks. A
// target includes this and defines it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

inline void require(bool condition) {
    if (!condition) std::abort();
}

void checkAny(std::string_view any);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    checkAny({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
