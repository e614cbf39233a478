// Strict: what other readers would take differently is a fault here.
#include "engine/text/JsonReader.h"

#include <charconv>
#include <system_error>

#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

void appendAsUtf8(std::string& out, std::uint32_t character) {
    const auto tail = [&](unsigned shift) {
        out += static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        out += static_cast<char>(character);
    } else if (character < 0x800) {
        out += static_cast<char>(0xC0U | (character >> 6U));
        tail(0);
    } else if (character < 0x10000) {
        out += static_cast<char>(0xE0U | (character >> 12U));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0U | (character >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

template <class T> std::optional<T> wholeNumber(std::string_view numeral) {
    T value{};
    const char* const end = numeral.data() + numeral.size();
    const auto [stop, error] = std::from_chars(numeral.data(), end, value);
    const bool hasZeroBefore = numeral.size() > 1 && numeral.front() == '0';
    if (numeral.empty() || error != std::errc() || stop != end || hasZeroBefore)
        return std::nullopt;
    return value;
}

}  // namespace

void JsonReader::skipSpace() {
    while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\n' ||
                                    m_text[m_at] == '\r' || m_text[m_at] == '\t'))
        ++m_at;
}

bool JsonReader::take(char wanted) {
    if (m_hasFailed) return false;
    skipSpace();
    if (m_at < m_text.size() && m_text[m_at] == wanted) {
        ++m_at;
        return true;
    }
    m_hasFailed = true;
    return false;
}

bool JsonReader::begin(char bracket) {
    if (!take(bracket)) return false;
    if (++m_depth >= deepest) {
        m_hasFailed = true;
        return false;
    }
    m_hasMembers &= ~(std::uint64_t{1} << m_depth);
    return true;
}

bool JsonReader::next(char closing) {
    if (m_hasFailed || m_depth == 0) return false;
    skipSpace();
    if (m_at < m_text.size() && m_text[m_at] == closing) {
        ++m_at;
        --m_depth;
        return false;
    }
    const std::uint64_t level = std::uint64_t{1} << m_depth;
    if ((m_hasMembers & level) != 0 && !take(',')) return false;
    m_hasMembers |= level;
    return true;
}

std::optional<std::string_view> JsonReader::nextMember() {
    if (!next('}') || !take('"')) return std::nullopt;
    const std::size_t from = m_at;
    while (m_at < m_text.size() && m_text[m_at] != '"' && m_text[m_at] != '\\') ++m_at;
    const std::string_view name = m_text.substr(from, m_at - from);
    if (!take('"') || !take(':')) return std::nullopt;
    return name;
}

std::optional<std::string> JsonReader::text() {
    if (!take('"')) return std::nullopt;
    std::string out;
    while (!m_hasFailed && m_at < m_text.size()) {
        const std::size_t from = m_at;
        while (m_at < m_text.size() && static_cast<unsigned char>(m_text[m_at]) >= ' ' &&
               m_text[m_at] != '"' && m_text[m_at] != '\\')
            ++m_at;
        const std::string_view plain = m_text.substr(from, m_at - from);
        if (m_at == m_text.size() || !isValidUtf8(plain)) break;
        out += plain;
        const char c = m_text[m_at++];
        if (c == '"') return out;
        if (c != '\\' || !appendEscape(out)) break;
    }
    m_hasFailed = true;
    return std::nullopt;
}

std::optional<std::uint32_t> JsonReader::fourDigits() {
    std::uint32_t value = 0;
    const std::string_view digits = m_text.substr(m_at, 4);
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    if (digits.size() != 4 || error != std::errc() || stop != end) return std::nullopt;
    m_at += 4;
    return value;
}

// Half of a pair alone is no character, and no path has a NUL.
bool JsonReader::appendEscape(std::string& out) {
    constexpr std::string_view names = "\"\\/bfnrt";
    constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
    if (m_at == m_text.size()) return false;
    const char c = m_text[m_at++];
    if (const std::size_t which = names.find(c); which != std::string_view::npos) {
        out += meant[which];
        return true;
    }
    if (c != 'u') return false;
    auto character = fourDigits();
    if (!character || *character == 0) return false;
    if (*character >= 0xD800 && *character < 0xDC00) {
        if (m_text.substr(m_at, 2) != "\\u") return false;
        m_at += 2;
        const auto second = fourDigits();
        if (!second || *second < 0xDC00 || *second >= 0xE000) return false;
        character = 0x10000 + ((*character - 0xD800) << 10U) + (*second - 0xDC00);
    } else if (*character >= 0xDC00 && *character < 0xE000) {
        return false;
    }
    appendAsUtf8(out, *character);
    return true;
}

std::string_view JsonReader::numeral() {
    if (m_hasFailed) return {};
    skipSpace();
    const std::size_t from = m_at;
    while (m_at < m_text.size() &&
           std::string_view("+-.0123456789Ee").find(m_text[m_at]) != std::string_view::npos)
        ++m_at;
    return m_text.substr(from, m_at - from);
}

std::optional<std::uint64_t> JsonReader::count() {
    const auto value = wholeNumber<std::uint64_t>(numeral());
    m_hasFailed = m_hasFailed || !value;
    return m_hasFailed ? std::nullopt : value;
}

std::optional<std::int64_t> JsonReader::number() {
    const auto value = wholeNumber<std::int64_t>(numeral());
    m_hasFailed = m_hasFailed || !value;
    return m_hasFailed ? std::nullopt : value;
}

std::optional<bool> JsonReader::flag() {
    if (!m_hasFailed) skipSpace();
    for (const bool value : {true, false}) {
        const std::string_view word = value ? "true" : "false";
        if (m_hasFailed || m_text.substr(m_at, word.size()) != word) continue;
        m_at += word.size();
        return value;
    }
    m_hasFailed = true;
    return std::nullopt;
}

bool JsonReader::isAtEnd() {
    if (m_hasFailed || m_depth != 0) return false;
    skipSpace();
    return m_at == m_text.size();
}

}  // namespace orrinvale
