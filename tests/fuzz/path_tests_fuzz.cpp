// Any bytes as a path: the tests that decide what a search looks at, and the texts in which a path
// is printed.
#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "cli/Output.h"
#include "engine/duplicates/FileKind.h"
#include "engine/duplicates/getFileList.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/files/FolderNode.h"
#include "engine/files/bundleName.h"
#include "fuzz/fuzz.h"

namespace orrinvale {
namespace {

// Components as a person would count them, with empty ones left out.
template <class Visit> void forEachComponent(std::string_view path, Visit visit) {
    while (!path.empty()) {
        const std::size_t length = std::min(path.find('/'), path.size());
        if (length > 0) visit(path.substr(0, length));
        path.remove_prefix(std::min(length + 1, path.size()));
    }
}

void checkNames(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    require(name.size() <= path.size() &&
            (name == "/" || name.find('/') == std::string_view::npos));
    const std::string_view extension = pathExtension(path);
    require(extension.find('.') == std::string_view::npos &&
            extension.find('/') == std::string_view::npos);
    require(extension.empty() || name.ends_with("." + std::string(extension)));
    require(pathExtension(name) == extension);
    std::string upper(extension);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    require(kindOfExtension(upper) == kindOfExtension(extension) &&
            !kindName(kindOfExtension(extension)).empty());
}

void checkTests(std::string_view path) {
    bool bundle = false;
    bool hidden = false;
    forEachComponent(path, [&](std::string_view component) {
        bundle = bundle || isBundleName(component);
        hidden = hidden || component.front() == '.';
        require(!isBundleName(component) || component.size() >= 5);
    });
    const std::string outermost = outermostBundle(path);
    require(outermost.empty() == !bundle && hasHiddenComponent(path) == hidden);
    if (bundle) {
        require(path.starts_with(outermost) && isBundleName(lastPathComponent(outermost)));
        require(path.size() == outermost.size() || path[outermost.size()] == '/');
        require(outermostBundle(outermost.substr(0, outermost.rfind('/') + 1)).empty());
        require(outermostBundle(outermost) == outermost && getFileList::HasAppDirectory(path));
    }
    require(isSystemFolder(path) == isSystemFolder("/" + std::string(path) + "/below"));
}

bool isValid(std::string_view bytes) {
    for (std::size_t length = 1; !bytes.empty() && length > 0; bytes.remove_prefix(length))
        length = cli::validSequence(bytes);
    return bytes.empty();
}

void checkTexts(std::string_view path) {
    std::string json;
    cli::appendJsonText(json, path);
    const auto text = nlohmann::json::parse(json, nullptr, false);
    require(text.is_string() && isValid(text.get<std::string>()));
    // Only the mark for a bad byte makes a text longer than its bytes.
    require(isValid(path) ? text.get<std::string>() == path
                          : text.get<std::string>().size() > path.size());

    std::string fields = "{";
    cli::appendJsonPath(fields, path);
    const auto object = nlohmann::json::parse(fields + "}", nullptr, false);
    require(object.is_object() && object.contains("pathHex") == !isValid(path));

    const std::string shown = cli::printable(path);
    require(isValid(shown) && shown.size() >= path.size() && cli::printable(shown) == shown);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto byte = static_cast<unsigned char>(shown[i]);
        require(byte >= 0x20 && byte != 0x7F);
        require(byte != 0xC2 || static_cast<unsigned char>(shown[i + 1]) >= 0xA0);
    }
}

void checkAbsolute(std::string_view path) {
    if (path.find('\0') != std::string_view::npos) return;  // no path of a file system
    // Climbing asks the disk, so the answer is its own.
    bool climbs = false;
    forEachComponent(path,
                     [&](std::string_view component) { climbs = climbs || component == ".."; });
    if (climbs) return;
    const std::string absolute = cli::absolutePath("/" + std::string(path));
    require(absolute.front() == '/' && absolute.find("//") == std::string::npos);
    require(absolute == "/" || absolute.back() != '/');
    require(cli::absolutePath(absolute) == absolute);
    forEachComponent(absolute, [](std::string_view component) { require(component != "."); });
}

}  // namespace

static void checkAll(std::string_view path) {
    checkNames(path);
    checkTests(path);
    checkTexts(path);
    checkAbsolute(path);
}

}  // namespace orrinvale

void checkAny(std::string_view any) { orrinvale::checkAll(any); }
