// A line for each thing that was filled in: a word, and what stands behind it with line breaks and
// backslashes escaped.
#include "engine/duplicates/scope/NamedSearches.h"

#include <dirent.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "engine/files/DurableFile.h"
#include "engine/text/SizeText.h"
#include "engine/text/escapedLine.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view firstLine = "orrinvale search 1";
constexpr std::string_view searchEnding = ".search";
constexpr std::size_t largestSearchFile = 1024 * 1024;
constexpr std::array storedKinds{FileKind::Documents, FileKind::Music,    FileKind::Videos,
                                 FileKind::Archives,  FileKind::Pictures, FileKind::Others};

// One line into the search; false where it says nothing that is known.
bool readSearchLine(std::string_view word, const std::string& value, SearchScope& scope) {
    const bool isPath = value.starts_with('/') && value.find('\0') == std::string::npos;
    if (word == "name") return scope.name = value, !value.empty();
    if (word == "root") return scope.roots.push_back(value), isPath;
    if (word == "protected") return scope.protectedFolders.push_back(value), isPath;
    if (word == "exclude") return scope.patterns.push_back(value), true;
    if (word == "min") return (scope.smallest = parseNumber(value)).has_value();
    if (word == "max") return (scope.largest = parseNumber(value)).has_value();
    if (word == "exclusion-files") return scope.readsFiles = true;
    const auto kind = std::ranges::find(storedKinds, value, kindName);
    if (word != "kind" || kind == storedKinds.end()) return false;
    return scope.kinds.push_back(*kind), true;
}

// A name may hold what no file name can.
std::string fileNameOf(std::string_view name) {
    std::uint64_t hash = 0xCBF2'9CE4'8422'2325;  // FNV-1a
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100'0000'01B3;
    return fmt::format("{:016x}{}", hash, searchEnding);
}

}  // namespace

tl::expected<SearchRequest, SearchScope::BadPattern> SearchScope::request() const {
    SearchRequest request;
    request.roots = roots;
    request.protectedFolders = protectedFolders;
    request.filter.smallest = smallest.value_or(request.filter.smallest);
    request.filter.largest = largest.value_or(request.filter.largest);
    request.filter.kinds = kinds;
    request.filter.readsFiles = readsFiles;
    for (const std::string& text : patterns) {
        auto pattern = PathPattern::parse(text);
        if (!pattern) return tl::unexpected(BadPattern{text, pattern.error()});
        request.filter.exclusions.push_back(std::move(*pattern));
    }
    return request;
}

std::string textOfSearch(const SearchScope& scope) {
    std::string text(firstLine);
    const auto add = [&text](std::string_view word, std::string_view value) {
        text += fmt::format("\n{} {}", word, escapedLine(value));
    };
    add("name", scope.name);
    for (const std::string& each : scope.roots) add("root", each);
    for (const std::string& each : scope.protectedFolders) add("protected", each);
    for (const std::string& each : scope.patterns) add("exclude", each);
    if (scope.smallest) add("min", std::to_string(*scope.smallest));
    if (scope.largest) add("max", std::to_string(*scope.largest));
    for (const FileKind kind : scope.kinds) add("kind", kindName(kind));
    if (scope.readsFiles) add("exclusion-files", "yes");
    return text + "\nend\n";
}

std::optional<SearchScope> searchOfText(std::string_view text) {
    SearchScope scope;
    bool isFirst = true;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (isFirst ? line != firstLine : line == "end") {
            const bool isWhole = !isFirst && text.empty() && !scope.name.empty();
            return isWhole ? std::optional(scope) : std::nullopt;
        }
        const std::size_t blank = std::min(line.find(' '), line.size());
        const auto value = unescapedLine(line.substr(std::min(blank + 1, line.size())));
        if (!isFirst && (!value || !readSearchLine(line.substr(0, blank), *value, scope)))
            return std::nullopt;
        isFirst = false;
    }
    return std::nullopt;  // cut short
}

std::vector<std::string> NamedSearches::files(bool withAside) const {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(m_folder.c_str()), &::closedir);
    while (const dirent* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        const bool isAside = name.find(".search.bad") != std::string_view::npos;
        if (name.ends_with(searchEnding) || (withAside && isAside)) names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<SearchScope> NamedSearches::all() const {
    std::vector<SearchScope> found;
    const auto isWell = [](std::string_view text) { return searchOfText(text).has_value(); };
    for (const std::string& name : files(false))
        if (const auto text =
                DurableFile::readWell(joinPath(m_folder, name), largestSearchFile, isWell))
            found.push_back(*searchOfText(*text));
    std::ranges::sort(found, {}, &SearchScope::name);
    return found;
}

Result<void> NamedSearches::save(const SearchScope& scope) const {
    if (auto made = DurableFile::makeFolder(m_folder); !made) return made;
    const std::string name = fileNameOf(scope.name);
    const auto present = files(false);
    if (present.size() >= most && std::ranges::find(present, name) == present.end())
        return tl::unexpected(systemError("save", joinPath(m_folder, name), ENOSPC));
    return DurableFile::save(joinPath(m_folder, name), textOfSearch(scope));
}

Result<void> NamedSearches::clear() const {
    for (const std::string& name : files(true))
        if (auto removed = DurableFile::remove(joinPath(m_folder, name)); !removed) return removed;
    return {};
}

}  // namespace orrinvale
