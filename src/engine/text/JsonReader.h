// JsonReader: reads a JSON text (RFC 8259) in its order, one piece at a time, without a tree in
// between: a document of a hundred megabytes costs no more than what its reader keeps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The caller knows what has to come next and asks for it. What comes instead, or is no JSON, is a
/// fault, and from then on every answer is false or nothing. One thread; the text lives as long.
class JsonReader final {
public:
    explicit JsonReader(std::string_view text) : m_text(text) {}

    /// To be followed by nextMember() until it is nothing, each followed by its value.
    [[nodiscard]] bool beginObject() { return begin('{'); }
    /// The member's name, which has no escapes; nothing behind the last one.
    [[nodiscard]] std::optional<std::string_view> nextMember();

    /// To be followed by nextElement() until it is false, each followed by its value.
    [[nodiscard]] bool beginArray() { return begin('['); }
    [[nodiscard]] bool nextElement() { return next(']'); }

    /// Valid UTF-8, escapes resolved.
    [[nodiscard]] std::optional<std::string> text();
    /// Whole numbers within their type.
    [[nodiscard]] std::optional<std::uint64_t> count();
    [[nodiscard]] std::optional<std::int64_t> number();
    [[nodiscard]] std::optional<bool> flag();

    /// True when nothing but space follows, and nothing was wrong.
    [[nodiscard]] bool isAtEnd();

    /// For what is wrong by the caller's own rules.
    void fail() { m_hasFailed = true; }
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
    /// Where it stands: behind a fault the place of the fault, in bytes.
    [[nodiscard]] std::size_t place() const { return m_at; }

private:
    static constexpr unsigned deepest = 32;

    [[nodiscard]] bool begin(char bracket);
    [[nodiscard]] bool next(char closing);
    [[nodiscard]] bool take(char wanted);
    void skipSpace();
    [[nodiscard]] std::string_view numeral();
    [[nodiscard]] bool appendEscape(std::string& out);
    [[nodiscard]] std::optional<std::uint32_t> fourDigits();

    std::string_view m_text;
    std::size_t m_at = 0;
    unsigned m_depth = 0;
    std::uint64_t m_hasMembers = 0;  // a bit a level: a comma has to come before the next one
    bool m_hasFailed = false;
};

}  // namespace orrinvale
