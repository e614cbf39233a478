// FileLog: the record of the last clean. ParseFileLog.h reads and writes it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "engine/base/Date.h"

namespace orrinvale {

struct FileLog {
    std::string logName;
    std::optional<Date> date =
        Date{std::chrono::duration_cast<std::chrono::nanoseconds>(
                 std::chrono::system_clock::now().time_since_epoch())
                 .count()};   ///< of the last clean; of the record's making until it is read, and
                              ///< nothing once a date was read that is none
    std::uint64_t iSize = 0;  ///< bytes that were recovered
};

}  // namespace orrinvale
