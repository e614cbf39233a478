// What counts as a bundle: a folder that people take for one thing, an application above all.
#pragma once

#include <string>
#include <string_view>

namespace orrinvale {

/// The rule of the whole program, by the name alone: the extension of the last component is "app",
/// in any case of ASCII letters, and something stands before its dot.
[[nodiscard]] bool isBundleName(std::string_view name);

/// The outermost bundle on the way to the path, itself included; empty when there is none.
[[nodiscard]] std::string outermostBundle(std::string_view path);

/// Folders that stand as one row among the large files. On purpose not the rule above: frameworks
/// are closed there too, while only the exact lower case counts, since what is closed can not be
/// looked into, and a folder that merely looks like a bundle should be.
[[nodiscard]] inline bool isClosedAmongLargeFiles(std::string_view name) {
    return name.ends_with(".app") || name.ends_with(".framework");
}

}  // namespace orrinvale
