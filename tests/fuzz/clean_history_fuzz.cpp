// Any bytes as the record of the last clean: what is read is written and read back as the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "engine/cleaning/ParseFileLog.h"

namespace {

using orrinvale::FileLog;
using orrinvale::ParseFileLog;

void require(bool condition) {
    if (!condition) std::abort();
}

void check(std::string_view text) {
    FileLog log;
    ParseFileLog::parseStringToLog(text, log);
    // The form can not tell its end from what comes behind it. No program writes such a name.
    if (log.logName.ends_with('&')) return;
    const std::string written = ParseFileLog::parseLogToString(log);
    FileLog again;
    ParseFileLog::parseStringToLog(written, again);
    require(again.iSize == log.iSize && again.date.has_value() == log.date.has_value());
    require(again.logName == log.logName);  // it can hold neither "&&" nor "="
    require(ParseFileLog::parseLogToString(again) == written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    check(text);
    for (const char* const name : {"logName=", "date=", "iSize="})
        check(std::string("x&&") + name + std::string(text) + "&&iSize=1");
    return 0;
}
