// What other programs write is read as leniently as they write it: further keys, their order and
// further groups say nothing.
#include "engine/files/TrashRecord.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include "engine/base/Date.h"

namespace orrinvale {
namespace {

constexpr std::string_view recordGroup = "[Trash Info]";
constexpr std::string_view recordPathKey = "Path=";

// RFC 2396 as the records ask for it; the slash stays.
bool isPlainInRecord(char c) {
    constexpr std::string_view plain = "-_.!~*'()/";
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           plain.find(c) != std::string_view::npos;
}

void appendEncoded(std::string& out, std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : path) {
        if (isPlainInRecord(c)) {
            out += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        out += '%';
        out += digits[byte >> 4U];
        out += digits[byte & 15U];
    }
}

std::optional<std::string> decodedPath(std::string_view text) {
    std::string path;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned byte = static_cast<unsigned char>(text[at]);
        if (text[at] == '%') {
            const std::string_view digits = text.substr(at + 1, 2);
            const char* const end = digits.data() + digits.size();
            if (digits.size() != 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end)
                return std::nullopt;
            at += 2;
        }
        if (byte == 0) return std::nullopt;
        path += static_cast<char>(byte);
    }
    if (path.empty()) return std::nullopt;
    return path;
}

std::string_view takeRecordLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

}  // namespace

// "2026-11-21T10:00:00" by the wall clock, with no offset, is what the records hold.
std::string trashRecordOf(std::string_view path) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::string text(recordGroup);
    appendEncoded((text += '\n') += recordPathKey, path);
    text += "\nDeletionDate=";
    text +=
        iso8601({std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()}).substr(0, 19);
    return text += '\n';
}

std::optional<std::string> pathInTrashRecord(std::string_view text) {
    if (text.size() > longestTrashRecord || takeRecordLine(text) != recordGroup)
        return std::nullopt;
    while (!text.empty()) {
        const std::string_view line = takeRecordLine(text);
        if (line.starts_with('[')) return std::nullopt;
        if (line.starts_with(recordPathKey)) return decodedPath(line.substr(recordPathKey.size()));
    }
    return std::nullopt;
}

}  // namespace orrinvale
