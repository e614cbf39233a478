// Paths as texts: see paths.h.
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

std::string folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return ".";
    return std::string(path.substr(0, std::max<std::size_t>(slash, 1)));
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
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

std::optional<std::string> plainPath(std::string_view path) {
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string plain;
    while (!path.empty()) {
        path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
        const std::string_view name = path.substr(0, path.find('/'));
        path.remove_prefix(name.size());
        if (name == "..") return std::nullopt;
        if (name.empty() || name == ".") continue;
        plain += '/';
        plain += name;
    }
    return plain.empty() ? "/" : plain;
}

}  // namespace orrinvale
