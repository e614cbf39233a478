// No number here passes through the C locale.
#include "engine/settings/SettingsText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

namespace orrinvale {
namespace {

constexpr std::string_view kHead =
    "# Written whole at every change, so notes added here are lost.\n[Orrinvale]\n";
constexpr std::string_view kSection = "[Orrinvale]";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBare =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-";

std::string_view trimmedSetting(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r");
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r") + 1 - start);
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') out += {'\\', c};
        else if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else if (c == '\t') out += "\\t";
        else if (byte < 0x20 || byte == 0x7F) out += fmt::format("\\x{:02X}", byte);
        else out += c;
    }
    return out + '"';
}

std::string printed(float number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    std::string text(digits.data(), end);
    // 1 would read back as a whole number; inf and nan have letters.
    if (text.find_first_not_of("-0123456789") == std::string::npos) text += ".0";
    return text;
}

std::string printed(const SettingValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const std::int64_t* const number = std::get_if<std::int64_t>(&value))
        return fmt::format("{}", *number);
    if (const float* const number = std::get_if<float>(&value)) return printed(*number);
    return quoted(std::get<std::string>(value));
}

std::optional<char> takeEscape(std::string_view& rest) {
    if (rest.empty()) return std::nullopt;
    const char kind = rest.front();
    rest.remove_prefix(1);
    constexpr std::string_view letters = "\"\\nrt";
    constexpr std::string_view meant = "\"\\\n\r\t";
    if (const std::size_t at = letters.find(kind); at != std::string_view::npos) return meant[at];
    unsigned byte = 0;
    if (kind != 'x' || rest.size() < 2) return std::nullopt;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + 2, byte, 16);
    if (error != std::errc{} || end != rest.data() + 2) return std::nullopt;
    rest.remove_prefix(2);
    return static_cast<char>(byte);
}

// Takes "..." from the front.
std::optional<std::string> takeQuoted(std::string_view& rest) {
    std::string out;
    rest.remove_prefix(1);
    while (!rest.empty()) {
        const char c = rest.front();
        rest.remove_prefix(1);
        if (c == '"') return out;
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t') return std::nullopt;
        if (c != '\\') {
            out += c;
            continue;
        }
        const auto meant = takeEscape(rest);
        if (!meant) return std::nullopt;
        out += *meant;
    }
    return std::nullopt;
}

struct Quotes {
    std::string_view open;
    std::string_view close;
};

// What word processors and some keyboards put in the place of "; between them nothing is an escape.
constexpr std::array<Quotes, 3> kOtherQuotes{{{"'", "'"}, {"“", "”"}, {"„", "“"}}};

std::optional<std::string> takeOtherQuoted(std::string_view& rest) {
    for (const Quotes& quotes : kOtherQuotes) {
        if (!rest.starts_with(quotes.open)) continue;
        const std::size_t end = rest.find(quotes.close, quotes.open.size());
        if (end == std::string_view::npos) return std::nullopt;
        std::string text(rest.substr(quotes.open.size(), end - quotes.open.size()));
        rest.remove_prefix(end + quotes.close.size());
        return text;
    }
    return std::nullopt;
}

template <class Number> std::optional<SettingValue> settingNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return SettingValue(number);
}

std::string lowerCase(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::optional<SettingValue> parseFlag(std::string_view text) {
    const std::string word = lowerCase(text);
    if (word == "true" || word == "yes" || word == "on") return SettingValue(true);
    if (word == "false" || word == "no" || word == "off") return SettingValue(false);
    return std::nullopt;
}

// "0,25"; with three digits behind the comma it could be a thousand, unless a lone zero stands
// before it.
std::optional<SettingValue> parseCommaDecimal(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos || text.find('.') != std::string_view::npos)
        return std::nullopt;
    const std::string_view before = text.substr(0, comma);
    const bool mayBeThousands = text.size() - comma == 4 && before != "0" && before != "-0";
    if (before.empty() || comma + 1 == text.size() || mayBeThousands) return std::nullopt;
    std::string withPoint(text);
    withPoint[comma] = '.';
    return settingNumber<float>(withPoint);
}

std::string_view withoutNote(std::string_view text) {
    for (std::size_t at = text.find_first_of("#;"); at != std::string_view::npos;
         at = text.find_first_of("#;", at + 1))
        if (at > 0 && (text[at - 1] == ' ' || text[at - 1] == '\t'))
            return trimmedSetting(text.substr(0, at));
    return text;
}

std::optional<SettingValue> parseQuotedValue(std::string_view text) {
    auto value = text.starts_with('"') ? takeQuoted(text) : takeOtherQuoted(text);
    const std::string_view rest = trimmedSetting(text);
    if (!value || !(rest.empty() || rest.starts_with('#') || rest.starts_with(';')))
        return std::nullopt;
    return SettingValue(std::move(*value));
}

bool isQuoted(std::string_view text) {
    return text.starts_with('"') || std::ranges::any_of(kOtherQuotes, [&](const Quotes& quotes) {
               return text.starts_with(quotes.open);
           });
}

std::optional<SettingValue> parseValue(std::string_view text) {
    if (isQuoted(text)) return parseQuotedValue(text);
    text = withoutNote(text);
    if (auto value = parseFlag(text)) return value;
    if (auto value = settingNumber<std::int64_t>(text)) return value;
    if (auto value = settingNumber<float>(text)) return value;
    return parseCommaDecimal(text);
}

std::optional<std::string> takeKey(std::string_view& line) {
    if (line.starts_with('"')) return takeQuoted(line);
    const std::size_t length = std::min(line.find_first_not_of(kBare), line.size());
    std::string key(line.substr(0, length));
    line.remove_prefix(length);
    if (key.empty()) return std::nullopt;
    return key;
}

bool parseLine(std::string_view line, SettingValues& values) {
    auto key = takeKey(line);
    if (!key) return false;
    line = trimmedSetting(line);
    if (!line.starts_with('=')) return false;
    auto value = parseValue(trimmedSetting(line.substr(1)));
    if (!value) return false;
    values.insert_or_assign(std::move(*key), std::move(*value));
    return true;
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmedSetting(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

}  // namespace

std::string printSetting(const SettingValue& value) { return printed(value); }

std::string printSettings(const SettingValues& values) {
    std::string out(kHead);
    for (const auto& [key, value] : values) {
        const bool isBare = !key.empty() && key.find_first_not_of(kBare) == std::string::npos;
        out += fmt::format("{} = {}\n", isBare ? key : quoted(key), printed(value));
    }
    return out;
}

std::optional<ParsedSettings> parseSettings(std::string_view text) {
    if (text.size() > kSettingsTextLimit) return std::nullopt;
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    ParsedSettings parsed;
    bool hasSection = false;
    bool isInAnother = false;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        if (line.empty() || line.starts_with('#') || line.starts_with(';')) continue;
        if (line == kSection) {
            hasSection = true;
            isInAnother = false;
            continue;
        }
        isInAnother = isInAnother || line.starts_with('[');
        if (isInAnother || !parseLine(line, parsed.values)) parsed.badLines.push_back(number);
    }
    if (!hasSection && parsed.values.empty()) return std::nullopt;
    return parsed;
}

}  // namespace orrinvale
