// Three steps: which encoding, its characters one after another, and each as it can be shown.
#include "engine/preview/plainText.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

enum class Encoding { Utf8, Utf16Little, Utf16Big, Windows };

constexpr char32_t replacementLetter = 0xFFFD;

// Windows-1252 from 0x80 to 0x9F; above, and below, it is as Unicode. 0 is a byte without meaning.
constexpr char16_t windowsLetters[] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

bool isOddControl(unsigned char byte) {
    return (byte < 0x20 && byte != '\n' && byte != '\r' && byte != '\t' && byte != '\f' &&
            byte != 0x1B) ||
           byte == 0x7F;
}

// Text has few control characters; two in a hundred are a program's bytes.
bool hasManyControls(std::string_view bytes) {
    constexpr std::size_t oneOf = 50;
    const auto controls = std::ranges::count_if(
        bytes, [](char each) { return isOddControl(static_cast<unsigned char>(each)); });
    return static_cast<std::size_t>(controls) > bytes.size() / oneOf;
}

// Where the bytes were cut a character may have lost its end.
bool isUtf8Beginning(std::string_view bytes, bool isWhole) {
    const std::size_t longest = isWhole ? 1 : 4;
    for (std::size_t cut = 0; cut < longest && cut <= bytes.size(); ++cut)
        if (isValidUtf8(bytes.substr(0, bytes.size() - cut))) return true;
    return false;
}

// Of letters of the west every second byte is zero, and of others hardly any.
std::optional<Encoding> wideEncoding(std::string_view bytes) {
    std::size_t zeros[2] = {0, 0};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0') ++zeros[i % 2];
    const std::size_t pairs = bytes.size() / 2;
    constexpr std::size_t leastPairs = 4;  // of fewer a guess is none
    if (pairs < leastPairs) return std::nullopt;
    const auto isMost = [pairs](std::size_t count) { return count > pairs / 2; };
    const auto isFew = [pairs](std::size_t count) { return count <= pairs / 50; };
    if (isMost(zeros[1]) && isFew(zeros[0])) return Encoding::Utf16Little;
    if (isMost(zeros[0]) && isFew(zeros[1])) return Encoding::Utf16Big;
    return std::nullopt;
}

std::optional<Encoding> encodingOf(std::string_view& bytes, bool isWhole) {
    const auto takeMark = [&bytes](std::string_view mark) {
        if (!bytes.starts_with(mark)) return false;
        bytes.remove_prefix(mark.size());
        return true;
    };
    if (takeMark("\xEF\xBB\xBF")) return Encoding::Utf8;
    if (takeMark("\xFF\xFE")) return Encoding::Utf16Little;
    if (takeMark("\xFE\xFF")) return Encoding::Utf16Big;
    if (bytes.find('\0') != std::string_view::npos) return wideEncoding(bytes);
    if (hasManyControls(bytes)) return std::nullopt;
    return isUtf8Beginning(bytes, isWhole) ? Encoding::Utf8 : Encoding::Windows;
}

char32_t nextUtf8(std::string_view& bytes) {
    const std::size_t length = validSequence(bytes);
    const auto byte = [&](std::size_t at) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]));
    };
    char32_t found = replacementLetter;
    if (length == 1) found = byte(0);
    else if (length == 2) found = ((byte(0) & 0x1F) << 6U) | (byte(1) & 0x3F);
    else if (length == 3)
        found = ((byte(0) & 0xF) << 12U) | ((byte(1) & 0x3F) << 6U) | (byte(2) & 0x3F);
    else if (length == 4)
        found = ((byte(0) & 7) << 18U) | ((byte(1) & 0x3F) << 12U) | ((byte(2) & 0x3F) << 6U) |
                (byte(3) & 0x3F);
    bytes.remove_prefix(std::max(length, std::size_t{1}));
    return found;
}

char32_t nextUtf16(std::string_view& bytes, bool isBig) {
    const auto unit = [&](std::size_t at) {
        if (at + 2 > bytes.size()) return char32_t{0};
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char32_t>(isBig ? first << 8U | second : second << 8U | first);
    };
    const char32_t high = unit(0), low = unit(2);
    const bool isPair = high >= 0xD800 && high < 0xDC00 && low >= 0xDC00 && low < 0xE000;
    bytes.remove_prefix(std::min(bytes.size(), std::size_t{isPair ? 4U : 2U}));
    if (isPair) return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
    return high >= 0xD800 && high < 0xE000 ? replacementLetter : high;
}

char32_t nextWindows(std::string_view& bytes) {
    const auto byte = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    if (byte < 0x80 || byte >= 0xA0) return byte;
    const char16_t letter = windowsLetters[byte - 0x80];
    return letter != 0 ? letter : replacementLetter;
}

char32_t nextCharacter(std::string_view& bytes, Encoding encoding) {
    switch (encoding) {
        case Encoding::Utf8: return nextUtf8(bytes);
        case Encoding::Windows: return nextWindows(bytes);
        default: return nextUtf16(bytes, encoding == Encoding::Utf16Big);
    }
}

bool wouldBeObeyed(char32_t character) {
    return (character < 0x20 && character != '\t') || (character >= 0x7F && character < 0xA0) ||
           character == 0x61C || character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069) || character == 0xFEFF;
}

void append(std::string& text, char32_t character) {
    const auto put = [&text](char32_t bits) { text += static_cast<char>(bits); };
    if (wouldBeObeyed(character)) {
        const auto number = static_cast<std::uint32_t>(character);
        text +=
            number < 0x100 ? fmt::format("\\x{:02X}", number) : fmt::format("\\u{:04X}", number);
    } else if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6U));
        put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12U));
        put(0x80 | ((character >> 6U) & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | (character >> 18U));
        put(0x80 | ((character >> 12U) & 0x3F));
        put(0x80 | ((character >> 6U) & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

PlainText shownText(std::string_view bytes, Encoding encoding) {
    PlainText shown;
    std::size_t column = 0;
    bool wasReturn = false;
    while (!bytes.empty() && shown.text.size() < mostPlainText - longestLine) {
        const char32_t character = nextCharacter(bytes, encoding);
        const bool endsReturn = character == '\n' && wasReturn;
        wasReturn = character == '\r';
        if (endsReturn) continue;
        if (character == '\n' || character == '\r') {
            shown.text += '\n';
            column = 0;
        } else if (++column <= longestLine) {
            append(shown.text, character);
        } else if (column == longestLine + 1) {
            append(shown.text, 0x2026);  // three dots
            shown.isCut = true;
        }
    }
    shown.isCut = shown.isCut || !bytes.empty();
    return shown;
}

}  // namespace

std::optional<PlainText> plainText(std::string_view bytes, bool isWhole) {
    const auto encoding = encodingOf(bytes, isWhole);
    if (!encoding) return std::nullopt;
    PlainText shown = shownText(bytes, *encoding);
    shown.encoding = *encoding == Encoding::Utf8      ? "UTF-8"
                     : *encoding == Encoding::Windows ? "Windows-1252"
                                                      : "UTF-16";
    return shown;
}

}  // namespace orrinvale
