// LoginFolders: a home and a system with autostart entries of a test's own.
#pragma once

#include "engine/loginitems/AutostartItems.h"
#include "engine/loginitems/removeLoginItem.h"
#include "platform/paths.h"
#include "support/ScopedVariable.h"
#include "support/test.h"

namespace orrinvale::testing {

struct LoginFolders {
    TestTree tree;
    LoginItemFolders folders{.persons = tree.at("config/autostart"),
                             .systems = {tree.at("etc/autostart"), tree.at("etc2/autostart")},
                             .links = tree.at("links"),
                             .desktops = {"GNOME"},
                             .languages = {"de_AT", "de"},
                             .programs = {tree.at("bin"), "/usr/bin", "/bin"},
                             .ownProgram = tree.at("bin/orrinvale")};
    const LinuxFileSystem files{};
    // What goes lands in a trash of the test's own.
    const ScopedVariable data{"XDG_DATA_HOME", tree.at("data")};
    const AutostartItems::TakeAway takeAway = [this](const LoginItemRecord& item) {
        return removeLoginItem(files, item, {}, {});
    };
    AutostartItems items{folders, takeAway};

    std::vector<LoginItemRecord> list() const {
        std::int32_t status = 0;
        auto records = items.list(status);
        EXPECT_EQ(status, 0);
        return records;
    }
    LoginItemRecord named(const std::string& fileName) const {
        for (const LoginItemRecord& each : list())
            if (each.fileName == fileName) return each;
        return {};
    }
    std::string entry(const std::string& fileName) const {
        return contentOf(joinPath(folders.persons, fileName));
    }
    bool program(const std::string& name, const std::string& text = "#!/bin/sh\n") {
        return tree.write(name, text) && ::chmod(tree.at(name).c_str(), 0755) == 0;
    }
};

}  // namespace orrinvale::testing
