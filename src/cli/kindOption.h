// The option --kind, which several commands have.
#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "engine/duplicates/FileKind.h"

namespace orrinvale::cli {

/// Adds the kinds that were given. What is wrong with them, for people; empty when nothing is.
[[nodiscard]] inline std::string readKinds(const Arguments& arguments,
                                           std::vector<FileKind>& kinds) {
    static constexpr std::array all{FileKind::Documents, FileKind::Music,    FileKind::Videos,
                                    FileKind::Archives,  FileKind::Pictures, FileKind::Others};
    for (const std::string& text : arguments.texts("kind")) {
        const auto kind = std::ranges::find(all, text, kindName);
        if (kind == all.end())
            return fmt::format(
                "--kind takes documents, music, videos, archives, pictures or others, not \"{}\"",
                text);
        kinds.push_back(*kind);
    }
    return {};
}

}  // namespace orrinvale::cli
