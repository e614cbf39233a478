// Slash, dot and NUL are the only bytes with a meaning; letters have one in equalIgnoringCase()
// alone.
#include "platform/paths.h"

#include <algorithm>

namespace orrinvale {

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string out;
    out.reserve(folder.size() + name.size() + 1);
    out += folder;
    if (!folder.empty() && folder.back() != '/') out += '/';
    out += name;
    return out;
}

std::string_view nextComponent(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of('/'), rest.size()));
    const std::string_view name = rest.substr(0, rest.find('/'));
    rest.remove_prefix(name.size());
    return name;
}

SplitPath splitPath(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return {{}, path};
    return {path.substr(0, std::max<std::size_t>(slash, 1)), path.substr(slash + 1)};
}

std::size_t startOfLastComponent(std::string_view path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string_view::npos ? end : path.rfind('/', end);
    return slash == std::string_view::npos ? 0 : slash + 1;
}

std::string_view withoutSlashesAtEnd(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    return path;
}

std::string folderOf(std::string_view path) {
    const std::string_view folder = splitPath(path).folder;
    return folder.empty() ? "." : std::string(folder);
}

std::string_view lastPathComponent(std::string_view path) {
    path = withoutSlashesAtEnd(path);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1) return path;
    return path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

bool isWithin(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) &&
           (folder == "/" || path.size() == folder.size() || path[folder.size()] == '/');
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    const auto upper = [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    };
    return std::ranges::equal(a, b, {}, upper, upper);
}

std::optional<std::string> plainPath(std::string_view path) {
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string_view::npos)
        return std::nullopt;
    // Most paths are plain already.
    if (path.back() != '/' && path.find("//") == std::string_view::npos &&
        path.find("/.") == std::string_view::npos)
        return std::string(path);
    std::string plain;
    while (!path.empty()) {
        const std::string_view name = nextComponent(path);
        if (name == "..") return std::nullopt;
        if (name.empty() || name == ".") continue;
        plain += '/';
        plain += name;
    }
    return plain.empty() ? "/" : plain;
}

}  // namespace orrinvale
