// A change leaves lines that name no path as they are: they may be a person's own notes.
#include "engine/cleaning/KeepList.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <utility>

#include "engine/cleaning/wayWithoutLinks.h"
#include "engine/files/DurableFile.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostOfList = 1 << 20;

// What the line says without its end, which an editor may have written in two bytes.
std::string_view withoutEnd(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool isRemark(std::string_view line) {
    const std::size_t first = withoutEnd(line).find_first_not_of(" \t");
    return first == std::string_view::npos || line[first] == '#';
}

char unescaped(char c) {
    if (c == 'n') return '\n';
    return c == 'r' ? '\r' : c;
}

// Nothing for what is no path.
std::optional<std::string> pathOfLine(std::string_view line) {
    if (isRemark(line)) return std::nullopt;
    line = withoutEnd(line);
    std::string path;
    for (std::size_t at = 0; at < line.size(); ++at)
        path += line[at] != '\\' || at + 1 == line.size() ? line[at] : unescaped(line[++at]);
    return plainPath(path);
}

std::string lineOf(const std::string& path) {
    std::string line;
    for (const char c : path) {
        if (c == '\n') line += "\\n";
        else if (c == '\r') line += "\\r";
        else if (c == '\\') line += "\\\\";
        else line += c;
    }
    return line + '\n';
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(lines.back().size() + 1, text.size()));
    }
    return lines;
}

// A list may lie elsewhere behind a link, and that of the person behind root is not root's own. A
// link to nothing is no missing list.
Result<std::string> textOf(const FileSystem& files, const std::string& path) {
    const auto entry = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!entry && entry.error() == ENOENT) return std::string();
    const auto real = files.resolved(path);
    if (!real) return tl::unexpected(systemError("open", path, real.error()));
    return DurableFile::read(*real, mostOfList, DurableFile::Owner::Any);
}

// Replaces the list by what is left of it, and `more`.
Result<void> change(const FileSystem& files, const std::string& folder, const std::string& path,
                    const std::string& more) {
    if (auto made = DurableFile::makeFolder(folder); !made) return made;
    const auto place = DurableFile::behindOwnLinks(KeepList::fileIn(folder));
    if (!place) return tl::unexpected(place.error());
    auto file = DurableFile::begin(*place);
    if (!file) return tl::unexpected(file.error());
    const auto text = textOf(files, KeepList::fileIn(folder));
    if (!text) return tl::unexpected(text.error());
    const std::string wanted = withoutLinksOnTheWay(files, path);
    std::string left;
    for (const std::string_view line : linesOf(*text)) {
        const auto each = pathOfLine(line);
        if (each && withoutLinksOnTheWay(files, *each) == wanted) continue;
        (left += line) += '\n';
    }
    return file->commit(left + more);
}

}  // namespace

std::string KeepList::fileIn(const std::string& folder) { return joinPath(folder, "always-keep"); }

Result<KeepList> KeepList::load(const FileSystem& files, const std::string& folder) {
    const std::string file = fileIn(folder);
    const auto text = textOf(files, file);
    if (!text) return tl::unexpected(Error{text.error().kind, "read", file, text.error().number});
    KeepList list;
    std::size_t number = 0;
    for (const std::string_view line : linesOf(*text)) {
        ++number;
        if (isRemark(line)) continue;
        const auto path = pathOfLine(line);
        if (!path)
            return tl::unexpected(
                systemError("read", file + ", line " + std::to_string(number), EINVAL));
        list.m_paths.push_back(withoutLinksOnTheWay(files, *path));
    }
    return list;
}

void KeepList::include(KeepList other) {
    std::ranges::move(other.m_paths, std::back_inserter(m_paths));
}

Result<void> KeepList::add(const FileSystem& files, const std::string& folder,
                           const std::string& path) {
    if (!plainPath(path)) return tl::unexpected(systemError("keep", path, EINVAL));
    return change(files, folder, path, lineOf(withoutLinksOnTheWay(files, path)));
}

Result<void> KeepList::remove(const FileSystem& files, const std::string& folder,
                              const std::string& path) {
    return change(files, folder, path, {});
}

bool KeepList::keeps(std::string_view path) const {
    return std::any_of(m_paths.begin(), m_paths.end(),
                       [&](const std::string& each) { return isWithin(path, each); });
}

bool KeepList::keepsBelow(std::string_view path) const {
    return std::any_of(m_paths.begin(), m_paths.end(), [&](const std::string& each) {
        return each != path && isWithin(each, path);
    });
}

}  // namespace orrinvale
