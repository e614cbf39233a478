// Stretches that need no escape are copied whole; names may be any bytes, so that UTF-8 is checked
// here.
#include "engine/text/JsonText.h"

#include <fmt/format.h>

#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";

bool isPlainInJson(char c) { return c >= ' ' && c != '"' && c != '\\' && c != 0x7F; }

void appendEscapedInJson(std::string& out, char c) {
    switch (c) {
        case '"': out += "\\\""; return;
        case '\\': out += "\\\\"; return;
        case '\n': out += "\\n"; return;
        case '\t': out += "\\t"; return;
        case '\r': out += "\\r"; return;
        default: out += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
    }
}

}  // namespace

void appendJsonText(std::string& out, std::string_view bytes) {
    out += '"';
    while (!bytes.empty()) {
        std::size_t plain = 0;
        while (plain < bytes.size() && isPlainInJson(bytes[plain])) ++plain;
        out += bytes.substr(0, plain);
        bytes.remove_prefix(plain);
        if (bytes.empty()) break;
        const std::size_t length = validSequence(bytes);
        if (length == 0) out += "\xEF\xBF\xBD";
        else if (length == 1) appendEscapedInJson(out, bytes.front());
        else out += bytes.substr(0, length);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    out += '"';
}

void appendJsonPath(std::string& out, std::string_view path, std::string_view field,
                    std::string_view hexField) {
    out += '"';
    out += field;
    out += "\": ";
    appendJsonText(out, path);
    if (isValidUtf8(path)) return;
    ((out += ", \"") += hexField) += "\": \"";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        (out += hexDigits[byte >> 4U]) += hexDigits[byte & 15U];
    }
    out += '"';
}

bool appendFromHex(std::string& out, std::string_view digits) {
    const std::size_t before = out.size();
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        const std::size_t high = hexDigits.find(digits[at]);
        const std::size_t low =
            at + 1 < digits.size() ? hexDigits.find(digits[at + 1]) : std::string_view::npos;
        if (high == std::string_view::npos || low == std::string_view::npos) {
            out.resize(before);
            return false;
        }
        out += static_cast<char>(high * 16 + low);
    }
    return true;
}

}  // namespace orrinvale
