// The source of the table comes from the build as one literal.
#include "engine/text/Localized.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "builtInTexts.h"

namespace orrinvale {
namespace {

constexpr std::string_view kBlanks = " \t\r";

void skipBlanks(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
}

bool takeMark(std::string_view& rest, char mark) {
    skipBlanks(rest);
    if (!rest.starts_with(mark)) return false;
    rest.remove_prefix(1);
    return true;
}

std::optional<char> unescapedText(char c) {
    if (c == 'n') return '\n';
    if (c == '"' || c == '\\') return c;
    return std::nullopt;
}

std::optional<std::string> takeText(std::string_view& rest) {
    if (!takeMark(rest, '"')) return std::nullopt;
    std::string text;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] == '"') {
            rest.remove_prefix(i + 1);
            return text;
        }
        if (rest[i] != '\\') {
            text.push_back(rest[i]);
            continue;
        }
        if (++i == rest.size()) break;
        const auto meant = unescapedText(rest[i]);
        if (!meant) break;
        text.push_back(*meant);
    }
    return std::nullopt;
}

/// Takes leading blanks and comments away; true while a comment goes on in the next line.
bool skipComments(std::string_view& rest, bool isInside) {
    while (true) {
        if (isInside) {
            const std::size_t end = rest.find("*/");
            rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 2);
            if (end == std::string_view::npos) return true;
        }
        skipBlanks(rest);
        if (rest.starts_with("//")) rest = {};
        isInside = rest.starts_with("/*");
        if (!isInside) return false;
        rest.remove_prefix(2);
    }
}

std::atomic<const StringTable*>& currentTable() {
    static std::atomic<const StringTable*> table = &builtInTexts();
    return table;
}

bool readEntry(std::string_view& rest, StringTable& table) {
    auto key = takeText(rest);
    if (!key || key->empty() || !takeMark(rest, '=')) return false;
    auto text = takeText(rest);
    return text && takeMark(rest, ';') &&
           table.texts.emplace(std::move(*key), std::move(*text)).second;
}

}  // namespace

StringTable parseStringTable(std::string_view source) {
    StringTable table;
    bool isComment = false;
    for (std::size_t number = 1; !source.empty(); ++number) {
        const std::size_t end = std::min(source.find('\n'), source.size());
        std::string_view line = source.substr(0, end);
        source.remove_prefix(std::min(end + 1, source.size()));

        isComment = skipComments(line, isComment);
        if (line.empty()) continue;
        const bool isEntry = readEntry(line, table);
        isComment = skipComments(line, false);
        if (!isEntry || !line.empty()) table.malformedLines.push_back(number);
    }
    return table;
}

const StringTable& builtInTexts(std::string_view language) {
    static const StringTable* const english = new StringTable(parseStringTable(kEnglishTexts));
    if (language != "de") return *english;
    static const StringTable* const german = new StringTable(parseStringTable(kGermanTexts));
    return *german;
}

void setTextLanguage(std::string_view language) { currentTable() = &builtInTexts(language); }

std::string getLocalizedString(const char* key, const std::vector<std::string>& values) {
    std::string text = getLocalizedString(key);
    std::size_t from = 0;
    for (std::size_t mark = text.find('%'); mark != std::string::npos;
         mark = text.find('%', from)) {
        from = mark + 1;
        const std::size_t digit =
            from < text.size() ? static_cast<unsigned char>(text[from]) - std::size_t{'1'} : 9;
        if (digit >= values.size()) continue;
        text.replace(mark, 2, values[digit]);
        from = mark + values[digit].size();
    }
    return text;
}

std::string getLocalizedString(const char* key) {
    if (key == nullptr) return {};
    const auto& texts = currentTable().load()->texts;
    const auto found = texts.find(std::string_view(key));
    return found == texts.end() ? std::string(key) : found->second;
}

}  // namespace orrinvale
