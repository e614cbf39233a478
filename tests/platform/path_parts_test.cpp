// The parts of paths, with the slashes that people and mount tables leave in them.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/paths.h"

namespace orrinvale {
namespace {

TEST(PathParts, AreTheSameWhoeverTakesThemOff) {
    struct Case {
        std::string_view path;
        std::string_view folder;  // of splitPath()
        std::string_view name;
        std::size_t last;  // of startOfLastComponent()
        std::string_view bare;
        std::vector<std::string_view> components;
    };
    const Case cases[] = {
        {"", "", "", 0, "", {}},
        {"/", "/", "", 0, "/", {}},
        {"a", "", "a", 0, "a", {"a"}},
        {"/a", "/", "a", 1, "/a", {"a"}},
        {"a/b", "a", "b", 2, "a/b", {"a", "b"}},
        {"/a/b", "/a", "b", 3, "/a/b", {"a", "b"}},
        {"/a//b//", "/a//b/", "", 4, "/a//b", {"a", "b"}},
        {"///", "//", "", 0, "/", {}},
        {"/./..", "/.", "..", 3, "/./..", {".", ".."}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.path);
        EXPECT_EQ(splitPath(each.path).folder, each.folder);
        EXPECT_EQ(splitPath(each.path).name, each.name);
        EXPECT_EQ(startOfLastComponent(each.path), each.last);
        EXPECT_EQ(withoutSlashesAtEnd(each.path), each.bare);
        std::vector<std::string_view> components;
        for (std::string_view rest = each.path; !rest.empty();)
            if (const auto component = nextComponent(rest); !component.empty())
                components.push_back(component);
        EXPECT_EQ(components, each.components);
    }
}

TEST(PathParts, CompareLettersOfAsciiAlone) {
    EXPECT_TRUE(equalIgnoringCase("App", "aPP"));
    EXPECT_FALSE(equalIgnoringCase("app", "apps"));
    EXPECT_FALSE(equalIgnoringCase("\xC3\x84", "\xC3\xA4"));
    EXPECT_FALSE(equalIgnoringCase("[", "{"));
}

}  // namespace
}  // namespace orrinvale
