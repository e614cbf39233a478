// Each part between two slashes is matched by itself; both levels go back to the last star alone,
// so that no pattern takes more than the square of its length.
#include "engine/duplicates/scope/PathPattern.h"

#include <algorithm>
#include <optional>

#include "platform/paths.h"

namespace orrinvale {
namespace {

using Fault = PatternFault;

constexpr std::size_t longestPattern = 4096;  // of a path that the system takes whole

// How many bytes the character at the beginning has; a byte that begins none counts alone.
std::size_t lengthOfCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
        ++length;
    return static_cast<unsigned char>(text[0]) < 0x80U ? 1 : std::min(length, std::size_t{4});
}

std::string_view takeCharacter(std::string_view& text) {
    const std::string_view taken = text.substr(0, lengthOfCharacter(text));
    text.remove_prefix(taken.size());
    return taken;
}

std::size_t charactersIn(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) takeCharacter(text);
    return count;
}

std::string_view takeLiteral(std::string_view& pattern) {
    if (pattern[0] == '\\' && pattern.size() > 1) pattern.remove_prefix(1);
    return takeCharacter(pattern);
}

// A set behind its "[", which is taken off with its "]"; parsed() has seen that there is one, and
// an end of the pattern ends the set too. Characters of UTF-8 stand in the order of their bytes.
bool takeSet(std::string_view& pattern, std::string_view character) {
    const bool isNot = pattern.starts_with('!') || pattern.starts_with('^');
    if (isNot) pattern.remove_prefix(1);
    bool isIn = false;
    for (bool isFirst = true; isFirst || !pattern.starts_with(']'); isFirst = false) {
        if (pattern.empty()) return false;
        const std::string_view from = takeLiteral(pattern);
        std::string_view to = from;
        if (pattern.size() > 1 && pattern[0] == '-' && pattern[1] != ']') {
            pattern.remove_prefix(1);
            to = takeLiteral(pattern);
        }
        isIn |= from <= character && character <= to;
    }
    pattern.remove_prefix(1);
    return isIn != isNot;
}

bool takeOne(std::string_view& pattern, std::string_view& text) {
    if (pattern.empty() || text.empty()) return false;
    const std::string_view character = takeCharacter(text);
    if (pattern[0] == '?') return pattern.remove_prefix(1), true;
    if (pattern[0] == '[') return pattern.remove_prefix(1), takeSet(pattern, character);
    return takeLiteral(pattern) == character;
}

bool matchesPart(std::string_view pattern, std::string_view text) {
    std::optional<std::string_view> behindStar;
    std::string_view again;
    while (!text.empty() || !pattern.empty()) {
        if (pattern.starts_with('*')) {
            pattern.remove_prefix(1);
            behindStar = pattern;
            again = text;
            continue;
        }
        if (takeOne(pattern, text)) continue;
        if (!behindStar || again.empty()) return false;
        takeCharacter(again);
        text = again;
        pattern = *behindStar;
    }
    return true;
}

// What stands before the next slash that no backslash takes the meaning from, and no set holds.
std::string_view takePart(std::string_view& path, bool isPattern) {
    std::size_t end = 0;
    for (; end < path.size() && path[end] != '/'; ++end)
        if (isPattern && path[end] == '\\') ++end;
    end = std::min(end, path.size());
    const std::string_view part = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return part;
}

bool matchesPath(std::string_view pattern, std::string_view path) {
    std::optional<std::string_view> behindStars;
    std::string_view again;
    while (!path.empty() || !pattern.empty()) {
        std::string_view rest = pattern;
        const std::string_view part = takePart(rest, true);
        if (!pattern.empty() && part == "**") {
            if (rest.empty()) return !path.empty();
            pattern = rest;
            behindStars = rest;
            again = path;
            continue;
        }
        std::string_view below = path;
        if (!pattern.empty() && !path.empty() && matchesPart(part, takePart(below, false))) {
            pattern = rest;
            path = below;
            continue;
        }
        if (!behindStars || again.empty()) return false;
        takePart(again, false);
        path = again;
        pattern = *behindStars;
    }
    return true;
}

// Of a set from its "[" on: its length. Nothing may follow where it is not closed.
tl::expected<std::size_t, Fault> lengthOfSet(std::string_view text) {
    std::string_view rest = text.substr(1);
    if (rest.starts_with('!') || rest.starts_with('^')) rest.remove_prefix(1);
    for (bool isFirst = true; isFirst || !rest.starts_with(']'); isFirst = false) {
        if (rest.empty() || rest == "\\") return tl::unexpected(Fault{1, "no ] closes this ["});
        const std::string_view from = takeLiteral(rest);
        std::string_view to = from;
        std::size_t place = 1;
        if (rest.size() >= 2 && rest[0] == '-' && rest[1] != ']') {
            rest.remove_prefix(1);
            place = text.size() - rest.size() + 1;
            to = takeLiteral(rest);
        }
        if (from == "/" || to == "/") return tl::unexpected(Fault{1, "a set can not hold a slash"});
        if (to < from) return tl::unexpected(Fault{place, "this set runs backwards"});
    }
    return text.size() - rest.size() + 1;
}

std::optional<Fault> faultIn(std::string_view glob) {
    if (glob.empty()) return Fault{1, "a pattern needs a character"};
    if (glob.size() > longestPattern) return Fault{longestPattern + 1, "the pattern is too long"};
    for (std::size_t at = 0; at < glob.size(); ++at) {
        if (glob[at] == '\0') return Fault{at + 1, "a name can not hold this character"};
        if (glob[at] == '\\') {
            if (++at == glob.size()) return Fault{at, "nothing follows this backslash"};
            if (glob[at] == '/') return Fault{at, "a name can not hold a slash"};
            continue;
        }
        if (glob[at] == '/' && at + 1 < glob.size() && glob[at + 1] == '/')
            return Fault{at + 2, "two slashes in a row"};
        if (glob[at] != '[') continue;
        const auto length = lengthOfSet(glob.substr(at));
        if (!length) return Fault{at + length.error().place, length.error().reason};
        at += *length - 1;
    }
    for (std::string_view rest = glob; !rest.empty();) {
        const std::size_t place = glob.size() - rest.size() + 1;
        const std::string_view part = takePart(rest, true);
        if (part == "." || part == "..") return Fault{place, "a pattern can not climb"};
    }
    return std::nullopt;
}

}  // namespace

tl::expected<PathPattern, PatternFault> PathPattern::parsed(std::string_view text,
                                                            std::size_t skipped) {
    PathPattern pattern;
    std::string_view glob = text;
    pattern.m_onlyFolders = glob.size() > 1 && glob.ends_with('/');
    if (pattern.m_onlyFolders) glob.remove_suffix(1);
    const bool isWhole = glob.starts_with('/');
    if (isWhole) glob.remove_prefix(1);
    if (auto fault = faultIn(glob)) {
        const std::size_t before = fault->place - 1 + (isWhole ? 1 : 0);
        fault->place = skipped + charactersIn(text.substr(0, before)) + 1;
        return tl::unexpected(*fault);
    }
    pattern.m_scope = isWhole                                    ? Scope::Whole
                      : glob.find('/') != std::string_view::npos ? Scope::Relative
                                                                 : Scope::Name;
    pattern.m_glob = glob;
    return pattern;
}

tl::expected<PathPattern, PatternFault> PathPattern::parse(std::string_view text) {
    return parsed(text, 0);
}

tl::expected<PathPattern, PatternFault> PathPattern::parseLine(std::string_view text) {
    const bool takesBack = text.starts_with('!');
    auto pattern = parsed(text.substr(takesBack ? 1 : 0), takesBack ? 1 : 0);
    if (!pattern) return pattern;
    pattern->m_takesBack = takesBack;
    if (pattern->m_scope == Scope::Whole) pattern->m_scope = Scope::Relative;
    return pattern;
}

PathPattern PathPattern::folder(std::string_view path) {
    PathPattern pattern;
    pattern.m_scope = Scope::Whole;
    pattern.m_onlyFolders = true;
    for (const char c : withoutSlashesAtEnd(path).substr(path.starts_with('/') ? 1 : 0)) {
        if (std::string_view("\\*?[").find(c) != std::string_view::npos) pattern.m_glob += '\\';
        pattern.m_glob += c;
    }
    return pattern;
}

bool PathPattern::matches(std::string_view text, bool isFolder) const {
    if (m_onlyFolders && !isFolder) return false;
    if (m_scope == Scope::Name) return matchesPart(m_glob, text);
    if (text.starts_with('/')) text.remove_prefix(1);
    return matchesPath(m_glob, text);
}

}  // namespace orrinvale
