// What the tests of the duplicates command share.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {

using Json = nlohmann::ordered_json;  // the order of the keys counts

inline ProgramRun duplicatesRun(std::vector<std::string> arguments) {
    return commandRun("duplicates", std::move(arguments));
}

/// The document of a search that prints one; null, with a failure noted, when there is none.
inline Json jsonOf(const ProgramRun::Result& result) {
    Json document = Json::parse(result.output, nullptr, false);
    EXPECT_TRUE(document.is_object()) << result.status << '\n' << result.output << result.error;
    EXPECT_TRUE(result.output.ends_with("}\n"));
    return document.is_object() ? document : Json();
}

/// Runs a search that must end well and without a word on standard error.
inline Json search(std::vector<std::string> arguments, const std::string& folder = {}) {
    arguments.insert(arguments.begin(), "--json");
    ProgramRun run = duplicatesRun(std::move(arguments));
    run.folder = folder;
    const auto result = run.run();
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    return jsonOf(result);
}

/// The paths of all leaves in their order.
inline std::vector<std::string> leavesOf(const Json& document) {
    std::vector<std::string> paths;
    if (!document.is_object()) return paths;
    for (const Json& group : document.at("groups"))
        for (const Json& leaf : group.at("leaves")) paths.push_back(leaf.at("path"));
    return paths;
}

}  // namespace orrinvale::testing
