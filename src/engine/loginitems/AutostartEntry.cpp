// Keys are compared byte by byte, as every reader of entries does.
#include "engine/loginitems/AutostartEntry.h"

#include <algorithm>
#include <utility>

#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

constexpr std::string_view group = "[Desktop Entry]";

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

std::string_view keyOf(std::string_view line) {
    line = trimmed(line);
    const std::size_t end = line.find('=');
    if (line.starts_with('#') || end == std::string_view::npos) return {};
    return trimmed(line.substr(0, end));
}

std::string_view valueOf(std::string_view line) {
    return trimmed(line.substr(std::min(line.find('=') + 1, line.size())));
}

std::string unescapedValue(std::string_view text) {
    constexpr std::string_view letters = "sntr\\";
    constexpr std::string_view meant = " \n\t\r\\";
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t at = text[i] == '\\' && i + 1 < text.size() ? letters.find(text[i + 1])
                                                                      : std::string_view::npos;
        if (at == std::string_view::npos) {
            out += text[i];
            continue;
        }
        out += meant[at];
        ++i;
    }
    return out;
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\t': out += "\\t"; break;
            case '\r': out += "\\r"; break;
            case ' ': out += out.empty() ? "\\s" : " "; break;
            default: out += c;
        }
    }
    return out;
}

// What no reader of entries gives a meaning of its own, in quotes or without.
bool isPlain(char c) {
    constexpr std::string_view others = "/._-+,:=@~ ";
    const bool isBeyondAscii = static_cast<unsigned char>(c) >= 0x80;  // valid, see commandFor()
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           isBeyondAscii || others.find(c) != std::string_view::npos;
}

}  // namespace

AutostartEntry::AutostartEntry(std::string_view text) {
    bool isOurs = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end);
        if (trimmed(line).starts_with('[')) isOurs = trimmed(line) == group;
        m_lines.push_back({std::string(line), isOurs});
    }
}

std::optional<AutostartEntry> AutostartEntry::parse(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.size() > kAutostartEntryLimit || text.find('\0') != std::string_view::npos)
        return std::nullopt;
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    AutostartEntry entry(text);
    if (std::ranges::none_of(entry.m_lines, &Line::isOurs)) return std::nullopt;
    return entry;
}

std::optional<std::string> AutostartEntry::raw(std::string_view key) const {
    std::optional<std::string> found;
    for (const Line& each : m_lines)
        if (each.isOurs && keyOf(each.text) == key) found = std::string(valueOf(each.text));
    return found;
}

std::string AutostartEntry::text(std::string_view key) const {
    return unescapedValue(raw(key).value_or(std::string()));
}

std::string AutostartEntry::text(std::string_view key,
                                 const std::vector<std::string>& languages) const {
    for (const std::string& language : languages)
        if (const auto value = raw(std::string(key) + '[' + language + ']'))
            return unescapedValue(*value);
    return text(key);
}

std::vector<std::string> AutostartEntry::list(std::string_view key) const {
    std::vector<std::string> parts;
    const std::string value = raw(key).value_or(std::string());
    for (std::string_view rest = value; !rest.empty();) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0) parts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return parts;
}

void AutostartEntry::setRaw(std::string_view key, std::string_view value) {
    const std::string written = std::string(key) + '=' + std::string(value);
    bool isSet = false;
    auto end = m_lines.end();
    for (auto line = m_lines.begin(); line != m_lines.end(); ++line) {
        if (!line->isOurs) continue;
        if (!trimmed(line->text).empty()) end = line;
        if (keyOf(line->text) != key) continue;
        line->text.replace(0, line->text.find_last_not_of("\r\n") + 1, written);
        isSet = true;
    }
    if (isSet) return;
    if (!end->text.ends_with('\n')) end->text += '\n';
    m_lines.insert(end + 1, {written + '\n', true});
}

void AutostartEntry::setText(std::string_view key, std::string_view text) {
    setRaw(key, escaped(text));
}

void AutostartEntry::remove(std::string_view key) {
    std::erase_if(m_lines,
                  [key](const Line& each) { return each.isOurs && keyOf(each.text) == key; });
}

std::string AutostartEntry::print() const {
    std::string out;
    for (const Line& each : m_lines) out += each.text;
    return out;
}

std::vector<std::string> commandWords(std::string_view command) {
    std::vector<std::string> words;
    std::string word;
    bool isInWord = false;
    bool isQuoted = false;
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char c = command[i];
        if (c == '"') {
            isQuoted = !isQuoted;
            isInWord = true;
        } else if (c == '\\' && isQuoted && i + 1 < command.size()) {
            word += command[++i];
        } else if (c == '%' && i + 1 < command.size()) {
            if (command[++i] == '%') word += '%';
            isInWord = isInWord || command[i] == '%';
        } else if (c == ' ' && !isQuoted) {
            if (isInWord) words.push_back(std::exchange(word, {}));
            isInWord = false;
        } else {
            word += c;
            isInWord = true;
        }
    }
    if (isQuoted) return {};
    if (isInWord) words.push_back(word);
    return words;
}

std::optional<std::string> commandFor(const std::vector<std::string>& words) {
    std::string command;
    for (const std::string& word : words) {
        if (word.empty() || !isValidUtf8(word) || !std::ranges::all_of(word, isPlain))
            return std::nullopt;
        const bool isBare = word.find_first_of(" ~") == std::string::npos;
        command += (command.empty() ? "" : " ") + (isBare ? word : '"' + word + '"');
    }
    return command;
}

}  // namespace orrinvale
