// AutostartEntry: the text of an autostart entry, changed line by line so that nothing else of it
// is lost. AutostartItems.h finds and stores them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orrinvale {

/// The largest entry that is read, in bytes.
inline constexpr std::size_t kAutostartEntryLimit = std::size_t{256} * 1024;

/// Only the group "[Desktop Entry]" is looked at and changed; of a key given twice the last one
/// counts and all are changed. Belongs to one thread.
class AutostartEntry final {
public:
    /// Nothing for a text without that group, with a NUL in it, or too large.
    [[nodiscard]] static std::optional<AutostartEntry> parse(std::string_view text);
    /// An empty one.
    AutostartEntry() : AutostartEntry("[Desktop Entry]\n") {}

    /// As it stands there, without blanks around it.
    [[nodiscard]] std::optional<std::string> raw(std::string_view key) const;
    /// A text with its escapes resolved; empty where there is none.
    [[nodiscard]] std::string text(std::string_view key) const;
    /// The same in the first of these languages that it is written in.
    [[nodiscard]] std::string text(std::string_view key,
                                   const std::vector<std::string>& languages) const;
    [[nodiscard]] bool flag(std::string_view key) const { return raw(key) == "true"; }
    /// The parts between semicolons.
    [[nodiscard]] std::vector<std::string> list(std::string_view key) const;

    /// In the place of the line that there is, else at the end of the group. The value is one line.
    void setRaw(std::string_view key, std::string_view value);
    /// Escaped as it has to be.
    void setText(std::string_view key, std::string_view text);
    void remove(std::string_view key);

    [[nodiscard]] std::string print() const;

private:
    struct Line {
        std::string text;  ///< with its line end, if it has one
        bool isOurs;       ///< of the group
    };
    explicit AutostartEntry(std::string_view text);

    std::vector<Line> m_lines;
};

/// The words of a command line as the Desktop Entry Specification reads it, without its codes for
/// files. Empty when a quote is not closed.
[[nodiscard]] std::vector<std::string> commandWords(std::string_view command);

/// A command line that starts the path with these words behind it; nothing for a path that some
/// reader of entries would take for something else.
[[nodiscard]] std::optional<std::string> commandFor(const std::vector<std::string>& words);

}  // namespace orrinvale
