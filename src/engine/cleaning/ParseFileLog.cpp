// Each field of a record is read for itself: the file may have been damaged, or written by hand.
#include "engine/cleaning/ParseFileLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <vector>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostOfHistory = 64 * 1024;  // a record has less than one hundred

std::function<void(const std::string& text)>& messages() {
    static std::function<void(const std::string& text)> show;
    return show;
}

std::vector<std::string_view> split(std::string_view text, std::string_view between) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const std::size_t at = text.find(between);
        pieces.push_back(text.substr(0, at));
        if (at == std::string_view::npos) return pieces;
        text.remove_prefix(at + between.size());
    }
}

// As far as its digits go; 0 for what is no number and for one below 0.
std::uint64_t numberIn(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r"), text.size()));
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range)
        number = text.starts_with('-') ? 0 : std::numeric_limits<std::int64_t>::max();
    return number > 0 ? static_cast<std::uint64_t>(number) : 0;
}

// Lead bytes followed by as many others as they announce (RFC 3629, without its finer points).
bool isText(std::string_view bytes) {
    std::size_t expected = 0;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool follows = (byte & 0xC0U) == 0x80U;
        if (follows != (expected > 0)) return false;
        if (follows) --expected;
        else if (byte >= 0xF5 || byte == 0xC0 || byte == 0xC1) return false;
        else expected = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    }
    return expected == 0;
}

std::string textOf(const std::optional<Date>& date) {
    return date ? dateDescription(*date) : "(null)";
}

}  // namespace

std::uint64_t ParseFileLog::getSize(std::optional<Date>* date) const {
    Log::line("Get Size Log begin");
    FileLog log;
    readFileLog({}, log);
    if (date != nullptr) {
        *date = log.date;
        Log::line(fmt::format("get Date:{}", textOf(*date)));
    }
    Log::line(fmt::format("Get Size Log End SIZE:{}", log.iSize));
    return log.iSize;
}

bool ParseFileLog::setSize(std::uint64_t size, Date LogDate) const {
    Log::line(fmt::format("Set Size Log begin SIZE:{} date:{}", size, textOf(LogDate)));
    FileLog log;
    log.logName = "SIZE";
    log.date = LogDate;
    log.iSize = size;
    const bool isWritten = writeFileLog("path", "filename", log);
    Log::line("Set Size Log End");
    return isWritten;
}

void ParseFileLog::readFileLog(std::string_view /*path*/, FileLog& FileLogItem) const {
    const auto text = DurableFile::read(getLogFilePath(), mostOfHistory);
    if (!text && text.error().kind == ErrorKind::NotFound) {
        FileLogItem = FileLog{};
        FileLogItem.logName = "FILE SIZE";
    } else if (text && isText(*text)) {
        parseStringToLog(*text, FileLogItem);
    }
}

bool ParseFileLog::writeFileLog(std::string_view /*path*/, std::string_view /*FileName*/,
                                const FileLog& logStruct) const {
    return DurableFile::save(getLogFilePath(), parseLogToString(logStruct)).has_value();
}

void ParseFileLog::parseStringToLog(std::string_view text, FileLog& logItem) {
    for (const std::string_view piece : split(text, "&&")) {
        const auto parts = split(piece, "=");
        if (parts.size() != 2) continue;
        if (parts[0] == "logName") logItem.logName = std::string(parts[1]);
        if (parts[0] == "date") logItem.date = parseDate(parts[1]);
        if (parts[0] == "iSize") logItem.iSize = numberIn(parts[1]);
    }
}

std::string ParseFileLog::parseLogToString(const FileLog& log) {
    return fmt::format("logName={}&&date={}&&iSize={}", log.logName, textOf(log.date), log.iSize);
}

std::string ParseFileLog::getLogFilePath() const {
    static_cast<void>(DurableFile::makeFolder(m_folder));
    return joinPath(m_folder, ".kelpford.log.bin");
}

void ParseFileLog::setMessages(std::function<void(const std::string& text)> show) {
    messages() = std::move(show);
}

void ParseFileLog::MessageBox(const std::string& text) {
    if (messages()) messages()(text);
    else Log::line(text);
}

}  // namespace orrinvale
