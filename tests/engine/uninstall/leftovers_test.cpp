// What programs left in a home: each rule that offers a folder and each that forbids one.
#include "engine/uninstall/Leftovers.h"

#include "support/test.h"

namespace orrinvale {
namespace {

ApplicationRecord record(ApplicationType type, const std::string& id,
                         const std::string& package = {}, const Strings& programs = {}) {
    ApplicationRecord out;
    out.type = type;
    out.id = id;
    out.package = package;
    out.programs = programs;
    return out;
}

LeftoverClaims claims() {
    LeftoverClaims out;
    out.installed = {
        record(ApplicationType::Deb, "org.safe.Safe", "safe", {"/usr/bin/safe-gui"}),
        record(ApplicationType::Deb, "vim", "vim-common", {"/usr/bin/vim.basic"}),
        record(ApplicationType::Deb, "writer", "office-writer", {"/usr/bin/office"}),
        record(ApplicationType::Deb, "calc", "office-calc", {"/usr/bin/office"}),
        record(ApplicationType::Deb, "python3.11", "python3.11", {"/usr/bin/python3.11"}),
        record(ApplicationType::Flatpak, "org.a.Bee"),
        record(ApplicationType::Flatpak, "org.twice.App"),
        record(ApplicationType::Flatpak, "org.twice.App"),
        record(ApplicationType::Snap, "code"),
        record(ApplicationType::App, "com.example.One"),
        record(ApplicationType::AppImage, "Tool", "", {"/home/me/Tool.AppImage"}),
        record(ApplicationType::Deb, "tool", "tool", {"/usr/bin/tool"}),
        record(ApplicationType::Folder, "game", "", {"/opt/game/bin/game"}),
        record(ApplicationType::Folder, "git", "", {"/opt/git/git"}),
        record(ApplicationType::Deb, "paint", "paint", {"/usr/bin/paint"}),
        record(ApplicationType::Flatpak, "org.kde.Paint"),
        record(ApplicationType::AppImage, "editor", "", {"/home/me/editor"}),
        record(ApplicationType::Deb, "duo", "duo", {"/usr/bin/duo"}),
        record(ApplicationType::App, "org.a.Bee2"),
        record(ApplicationType::Snap, "org.a.Bee2"),
    };
    out.installed.back().path = "/snap/org.a.Bee2";
    out.rest.packages = {"safe", "vim", "vim-common", "tool", "base", "editor", "duo", "duo"};
    out.rest.formerNames = {"gone", "base", "tool", "python", "code"};
    return out;
}

TEST(Leftovers, AreGradedByTheNameAndItsClaimants) {
    const LeftoverRules rules(claims());
    struct Case {
        LeftoverHome home;
        std::string name;
        std::string
            expected;  // "GRADE OF", with "gone" where it is; empty where nothing is offered
    };
    using enum LeftoverHome;
    const Case cases[] = {
        {Xdg, "org.safe.Safe", "certain safe"},
        {Xdg, "org.a.Bee", "certain org.a.Bee"},
        {Xdg, "com.example.One", "certain com.example.One"},
        {Xdg, "safe", "likely safe"},
        {Xdg, "Safe", "likely safe"},
        {Xdg, "safe-gui", "likely safe"},
        {Xdg, "vim.basic", "likely vim-common"},
        {Xdg, "game", "likely game"},
        {Xdg, "gone", "likely gone gone"},
        {Xdg, "Gone", ""},            // of what is gone the name is all there is
        {Xdg, "vim", ""},             // another package is called so
        {Xdg, "office", ""},          // two applications start it
        {Xdg, "tool", ""},            // of a package and named as an AppImage's entry
        {Xdg, "base", ""},            // installed again
        {Xdg, "org.twice.App", ""},   // two installations have it
        {Xdg, "org.safe.Safe2", ""},  // nothing goes by the beginning of a name
        {Xdg, "org.safe", ""},
        {Xdg, "python", ""},      // shared, though a package of the name is gone
        {Xdg, "python3.11", ""},  // shared whatever number it bears
        {Xdg, "git", ""},         // shared
        {Xdg, "gtk-3.0", ""},
        {Xdg, "", ""},
        {Xdg, "paint", ""},            // a flatpak may write there as well
        {Xdg, "code", "likely code"},  // a snap that is not confined
        {Xdg, "editor", ""},           // of an AppImage, and of a package that is no application
        {Xdg, "duo", ""},              // the package is there for two architectures
        {Flatpak, "org.a.Bee", "likely org.a.Bee"},
        {Flatpak, "org.gone.App", "likely org.gone.App gone"},
        {Flatpak, "org.twice.App", ""},
        {Flatpak, "notes", ""},  // no identifier
        {Flatpak, "a..b.c", ""},
        {Flatpak, "com.example.One", "likely com.example.One gone"},  // a bundle's is no flatpak's
        {Snap, "code", "likely code"},
        {Snap, "old", "likely old gone"},
    };
    for (const Case& each : cases) {
        const auto verdict = rules.verdict(each.home, each.name);
        std::string found;
        if (verdict)
            found = std::string(wordOf(verdict->grade)) + ' ' + verdict->of +
                    (verdict->isInstalled ? "" : " gone");
        EXPECT_EQ(found, each.expected) << each.name;
        EXPECT_TRUE(!verdict || !verdict->reason.empty()) << each.name;
    }
}

TEST(Leftovers, AreOneApplicationsAndNotItsNamesakes) {
    const LeftoverClaims all = claims();
    const LeftoverRules rules(all);
    const auto verdict = rules.verdict(LeftoverHome::Snap, "org.a.Bee2");
    ASSERT_TRUE(verdict);
    Strings owners;
    for (const ApplicationRecord& each : all.installed)
        if (verdict->isOf(each)) owners.emplace_back(wordOf(each.type));
    EXPECT_THAT(owners, ElementsAre("snap"));
}

TEST(Leftovers, AreNoneWhereNotAllThatMayClaimThemWasRead) {
    using enum LeftoverHome;
    struct Case {
        ApplicationType unread;
        bool isXdg, isFlatpak, isSnap;  // offered
    };
    for (const auto& [unread, isXdg, isFlatpak, isSnap] :
         {Case{ApplicationType::Deb, false, true, true},
          Case{ApplicationType::Flatpak, false, false, true},
          Case{ApplicationType::Snap, false, true, false}}) {
        LeftoverClaims some = claims();
        some.rest.unread[unread] = "it does not answer";
        const LeftoverRules rules(some);
        for (const char* const name : {"safe", "org.safe.Safe", "gone"})
            EXPECT_EQ(rules.verdict(Xdg, name).has_value(), isXdg) << name;
        EXPECT_EQ(rules.verdict(Flatpak, "org.gone.App").has_value(), isFlatpak);
        EXPECT_EQ(rules.verdict(Snap, "old").has_value(), isSnap);
    }
}

TEST(Leftovers, AreRealFoldersAndTellWhatIsInThem) {
    TestTree tree;
    (void)tree.write("config/safe/deep/secrets.kdbx", "12345");
    (void)tree.write("config/safe/deep/page.html", "123");
    (void)tree.folder("elsewhere");
    (void)tree.symlink("../elsewhere", "config/safe-gui");
    (void)tree.write("data/vim.basic", "a file");
    (void)tree.folder("cache/game/Documents");
    (void)tree.write("var/org.gone.App/cache/x", "1234");
    (void)tree.write("var/org.gone.App/data/mail.mbox", "1");
    (void)tree.symlink("../../elsewhere", "var/org.gone.App/config");
    (void)tree.write("var/org.a.Bee/config/y", "1");
    LeftoverPlaces places;
    for (const char* const home : {"config", "data", "cache", "missing"})
        places.homes.push_back(tree.at(home));
    (void)tree.write("snap/old/common/x", "1");
    (void)tree.write("snap/photos/2019/x.jpg", "1");
    places.flatpakData = tree.at("var");
    places.snapData = tree.at("snap");
    places.never = {tree.at("cache/game/Documents")};
    const LinuxFileSystem files;
    const LeftoverRules rules(claims());
    const std::atomic<bool> never{false};
    const auto found = [&](const std::string& of) {
        Strings out;
        for (const Leftover& each : findLeftovers(files, places, rules, of, never))
            out.push_back(std::string(wordOf(each.grade)) + ' ' +
                          each.path.substr(tree.path().size() + 1) + ' ' +
                          std::to_string(each.bytes) +
                          (each.precious.empty() ? "" : ' ' + each.precious.front()));
        return out;
    };
    EXPECT_THAT(
        found(""),
        ElementsAre("likely config/safe 8 deep/secrets.kdbx", "likely var/org.a.Bee/config 1",
                    "certain var/org.gone.App/cache 4", "likely var/org.gone.App/data 1 mail.mbox",
                    "likely snap/old/common 1"));
    EXPECT_THAT(found("safe"), ElementsAre("likely config/safe 8 deep/secrets.kdbx"));
    EXPECT_THAT(found("org.gone.App").size(), 2U);
    EXPECT_THAT(found("nobody"), IsEmpty());
    ApplicationRecord safe = record(ApplicationType::Deb, "org.safe.Safe", "safe");
    const ApplicationRecord other = record(ApplicationType::Deb, "org.other", "other");
    EXPECT_EQ(findLeftoversOf(files, places, rules, {&other, &safe}, never)[1].size(), 1U);
    safe.path = "/elsewhere";
    EXPECT_EQ(findLeftoversOf(files, places, rules, {&safe}, never)[0].size(), 0U)
        << "a namesake's";
}

// What a stop cut short would look as if no document were in it.
TEST(Leftovers, AreWholeOrToldNotToBe) {
    TestTree tree;
    (void)tree.write("config/game/x", "1");
    (void)tree.write("config/safe/deep/secrets.kdbx", "12345");
    LeftoverPlaces places;
    places.homes = {tree.at("config")};
    const LeftoverRules rules(claims());
    std::atomic<bool> stop{false};
    const auto found = [&](const FileSystem& files) {
        std::string out;
        for (const Leftover& each : findLeftovers(files, places, rules, "safe", stop))
            out += each.isWhole ? "whole" : "part";
        return out;
    };
    (void)tree.setMode("config/safe/deep", 0);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true}, [&] { return found(LinuxFileSystem()); }),
              "part");
    WatchedFiles files;
    EXPECT_EQ(found(files), "whole");
    int folders = 0;
    files.onReadFolder = [&] { stop = ++folders == 3; };  // the home twice, then within
    EXPECT_EQ(found(files), "");
    EXPECT_TRUE(stop);
}

}  // namespace
}  // namespace orrinvale
