// What stands before " - " in a line and what stands behind it are taken apart by themselves: the
// tags between them vary in number.
#include "platform/linux/MountTable.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

// Takes the text up to the next separator away.
std::optional<std::string_view> takeField(std::string_view& rest) {
    if (rest.data() == nullptr) return std::nullopt;
    const std::size_t end = rest.find(' ');
    const std::string_view field = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return field;
}

template <class Number> bool parseNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

bool parseDevice(std::string_view text, MountEntry& entry) {
    const std::size_t colon = text.find(':');
    return colon != std::string_view::npos && parseNumber(text.substr(0, colon), entry.major) &&
           parseNumber(text.substr(colon + 1), entry.minor);
}

bool isOctal(char c) { return c >= '0' && c <= '7'; }

// The kernel writes a blank, tab, line break, backslash and '#' as three octal digits.
std::string unescapedField(std::string_view field) {
    std::string out;
    out.reserve(field.size());
    for (std::size_t at = 0; at < field.size(); ++at) {
        const std::string_view digits = field.substr(at + 1, 3);
        const bool escape = field[at] == '\\' && digits.size() == 3 && digits[0] <= '3' &&
                            std::all_of(digits.begin(), digits.end(), isOctal);
        out += escape ? static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 +
                                          (digits[2] - '0'))
                      : field[at];
        if (escape) at += 3;
    }
    return out;
}

// "36 35 98:0 /root /point options tags... - type source options"; the tags may be none, the source
// may be empty.
std::optional<MountEntry> parseLine(std::string_view line) {
    const std::size_t dash = line.find(" - ");
    if (dash == std::string_view::npos || line.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string_view mount = line.substr(0, dash);
    std::string_view system = line.substr(dash + 3);
    const auto id = takeField(mount);
    const auto parent = takeField(mount);
    const auto device = takeField(mount);
    const auto root = takeField(mount);
    const auto point = takeField(mount);
    const auto options = takeField(mount);
    const auto type = takeField(system);
    const auto source = takeField(system);
    const auto superOptions = takeField(system);
    if (!options || !superOptions || type->empty() || root->empty() || !point->starts_with('/'))
        return std::nullopt;

    MountEntry entry;
    if (!parseNumber(*id, entry.id) || !parseNumber(*parent, entry.parent) ||
        !parseDevice(*device, entry))
        return std::nullopt;
    entry.root = unescapedField(*root);
    entry.point = unescapedField(*point);
    entry.type = unescapedField(*type);
    entry.source = unescapedField(*source);
    entry.superOptions = unescapedField(*superOptions);
    // An escaped NUL is none of the kernel's, and would cut the path short at the next system call.
    if (entry.point.find('\0') != std::string::npos) return std::nullopt;
    return entry;
}

}  // namespace

bool isSameMount(const MountEntry& a, const MountEntry& b) {
    return a.id == b.id && a.major == b.major && a.minor == b.minor && a.point == b.point &&
           a.source == b.source;
}

std::vector<MountEntry> parseMountInfo(std::string_view text) {
    std::vector<MountEntry> entries;
    text = text.substr(0, mountInfoLimit);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) break;  // a line without its end may be cut short
        if (auto entry = parseLine(text.substr(0, end))) entries.push_back(std::move(*entry));
        text.remove_prefix(end + 1);
    }
    return entries;
}

SysResult<std::string> readMountInfo(const std::string& path) {
    return readSystemText(path, mountInfoLimit);
}

}  // namespace orrinvale
