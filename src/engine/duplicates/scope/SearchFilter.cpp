// Paths are put together only for patterns that look at them.
#include "engine/duplicates/scope/SearchFilter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <span>
#include <string>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t largestExclusionFile = 64 * 1024;

// An entry whose path is asked for by few.
struct JudgedEntry {
    const FolderNode& folder;
    const char* name;
    bool isFolder;
    std::string path = {};

    bool is(const PathPattern& pattern, std::size_t start) {
        if (pattern.scope() == PathPattern::Scope::Name) return pattern.matches(name, isFolder);
        if (path.empty()) path = pathOf(folder, name);
        const std::size_t from = pattern.scope() == PathPattern::Scope::Whole ? 0 : start;
        return pattern.matches(std::string_view(path).substr(std::min(from, path.size())),
                               isFolder);
    }
};

SysResult<std::string> bytesOf(const FileSystem& files, int folder) {
    ReadState state;
    const auto file = files.openFile(folder, SearchFilter::fileName, Links::Keep, state);
    if (!file) return tl::unexpected(file.error());
    const auto seen = files.attributes(file->get());
    if (!seen) return tl::unexpected(seen.error());
    if (seen->type != FileType::Regular) return tl::unexpected(EINVAL);
    std::string bytes(largestExclusionFile + 1, '\0');
    const auto count = files.read(
        file->get(), std::as_writable_bytes(std::span(bytes.data(), bytes.size())), 0, state);
    if (!count) return tl::unexpected(count.error());
    if (*count > largestExclusionFile) return tl::unexpected(EFBIG);
    bytes.resize(*count);
    return bytes;
}

std::string_view trimmedLine(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    while (line.ends_with(' ') && !line.ends_with("\\ ")) line.remove_suffix(1);
    return line.starts_with('#') ? std::string_view() : line;
}

template <class Visit> void forEachPattern(std::string_view text, Visit visit) {
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmedLine(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty()) visit(number, PathPattern::parseLine(line));
    }
}

}  // namespace

bool SearchFilter::takesKind(FileKind kind) const {
    return kinds.empty() || std::ranges::find(kinds, kind) != kinds.end();
}

bool SearchFilter::takesKindOf(std::string_view name) const {
    return kinds.empty() || takesKind(kindOfExtension(pathExtension(name)));
}

bool SearchFilter::leavesOut(const FolderNode& folder, const char* name, bool isFolder,
                             std::size_t rootLength, const ExclusionList* lists) const {
    JudgedEntry entry{folder, name, isFolder};
    for (const PathPattern& pattern : exclusions)
        if (entry.is(pattern, rootLength)) return true;
    for (; lists != nullptr; lists = lists->above)
        for (auto pattern = lists->patterns.rbegin(); pattern != lists->patterns.rend(); ++pattern)
            if (entry.is(*pattern, lists->start)) return !pattern->takesBack();
    return false;
}

std::unique_ptr<ExclusionList> readExclusions(const FileSystem& files, int folder,
                                              const FolderNode& node, const ExclusionList* above,
                                              SkipList& skipped) {
    const auto bytes = bytesOf(files, folder);
    const auto path = [&] { return pathOf(node, SearchFilter::fileName); };
    if (!bytes) {
        if (bytes.error() != ENOENT) skipped.add(systemError("read", path(), bytes.error()));
        return nullptr;
    }
    auto list = std::make_unique<ExclusionList>();
    list->above = above;
    list->start = pathOf(node).size();
    bool hasFault = false;
    forEachPattern(*bytes, [&](std::size_t, tl::expected<PathPattern, PatternFault> pattern) {
        if (pattern) list->patterns.push_back(std::move(*pattern));
        else hasFault = true;
    });
    if (hasFault) skipped.add(systemError("read", path(), EINVAL));
    return list->patterns.empty() ? nullptr : std::move(list);
}

std::string exclusionFault(const FileSystem& files, const std::string& path) {
    const auto folder = openFolderByPath(files, folderOf(path), Links::Follow);
    const auto bytes = folder ? bytesOf(files, folder->get()) : tl::unexpected(folder.error());
    std::string first;
    std::size_t more = 0;
    forEachPattern(bytes.value_or(std::string()), [&](std::size_t number, const auto& pattern) {
        if (pattern) return;
        if (!first.empty()) ++more;
        else
            first = fmt::format("line {}, character {}: {}", number, pattern.error().place,
                                pattern.error().reason);
    });
    return more == 0 ? first : fmt::format("{}, and {} more", first, more);
}

}  // namespace orrinvale
