// duplicates --folders and --order as a person runs them, and what a plan does with whole folders.
#include "cli/DuplicatesTest.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

/// Two equal folders, one more that has most of them, and a file that has a copy in each.
void makeBackups(TestTree& tree) {
    for (const char* const folder : {"Backup/", "Backup (copy)/", "Old/"})
        for (unsigned i = 0; i < 9; ++i)
            ASSERT_TRUE(tree.write(fmt::format("data/{}in/{}", folder, i), someBytes(1000, i)));
    for (const char* const folder : {"Backup/", "Backup (copy)/"})
        ASSERT_TRUE(tree.write(fmt::format("data/{}.hidden", folder), "seen") &&
                    tree.folder(fmt::format("data/{}empty", folder)));
    ASSERT_TRUE(tree.write("data/Old/own", someBytes(1000, 99)) &&
                tree.write("data/big1", someBytes(5000, 50)) &&
                tree.write("data/big2", someBytes(5000, 50)) && tree.folder("home"));
}

ProgramRun foldersRun(const TestTree& tree, std::string command, Strings arguments) {
    ProgramRun run = commandRun(std::move(command), std::move(arguments));
    run.environment.push_back("HOME=" + tree.at("home"));
    return run;
}

TEST(FoldersCommand, TellsFoldersInPlaceOfTheirFiles) {
    TestTree tree;
    makeBackups(tree);
    const Json found = search({"--folders", "--keep", "path:" + tree.at("data/Backup"), "--order",
                               "gain", tree.at("data")});
    ASSERT_EQ(found["folders"].size(), 2U) << found.dump(1);
    // All three have an equal folder in them.
    const Json& whole = found["folders"][1];
    EXPECT_EQ(found["folders"][0]["members"].size(), 3U);
    EXPECT_EQ(found["folders"][0]["gain"], 18000);
    EXPECT_EQ(whole["files"], 10);
    EXPECT_EQ(whole["entries"], 12);
    EXPECT_EQ(whole["bytes"], 9004);
    EXPECT_EQ(whole["gain"], 9004);
    for (const Json& member : whole["members"])
        EXPECT_EQ(member["keep"], member["path"] == tree.at("data/Backup"));
    EXPECT_EQ(leavesOf(found).size(), 2U) << "of the files those that lie in no equal folders";
    EXPECT_EQ(found["summary"]["inFolders"], 9);
    for (const Json& part : found["partly"]) {
        EXPECT_EQ(part["percent"], part["path"] == tree.at("data/Old") ? 90 : 100);
        EXPECT_EQ(part["files"], 9);
    }
    EXPECT_EQ(found["partly"].size(), 2U);

    const auto text = foldersRun(tree, "duplicates", {"--folders", tree.at("data")}).run();
    EXPECT_THAT(text.output, HasSubstr("Backup"));
    EXPECT_THAT(text.output, HasSubstr("  10 files of 9.00 KB in each, 9.00 KB can be freed\n"));
    EXPECT_THAT(text.output, HasSubstr("100 % of " + tree.at("data/Backup") + " is also in "));
    EXPECT_THAT(text.output, HasSubstr("2 groups of equal folders: 18.00 KB can be freed.\n"));
    EXPECT_THAT(text.output, HasSubstr("9 of these groups are of the equal folders.\n"));
    EXPECT_EQ(foldersRun(tree, "duplicates", {"--order", "size", tree.at("data")}).run().status, 2);
}

TEST(FoldersCommand, TheBiggestGainComesFirstWhereItIsAskedFor) {
    TestTree tree;
    const std::pair<const char*, std::size_t> files[] = {{"s", 10}, {"l", 900}, {"m", 300}};
    for (const auto& [name, size] : files)
        for (const char* const copy : {"1", "2"})
            ASSERT_TRUE(
                tree.write("data/" + (name + std::string(copy)), someBytes(size, unsigned(size))));
    ASSERT_TRUE(tree.write("data/h1", someBytes(5000, 3)) && tree.hardLink("data/h1", "data/h2"));
    const Json found = search({"--order", "gain", tree.at("data")});
    // Each of two copies has a further name elsewhere, so that neither gives anything.
    for (const char* const copy : {"1", "2"})
        ASSERT_TRUE(tree.hardLink(std::string("data/l") + copy, std::string("away/l") + copy));
    const Json named = search({"--order", "gain", tree.at("data")});
    EXPECT_EQ(named["summary"]["reclaimable"], 310);
    EXPECT_EQ(named["groups"][0]["name"].get<std::string>().substr(0, 1), "m");
    Strings names;
    for (const Json& group : found["groups"])
        names.push_back(group["name"].get<std::string>().substr(0, 1));
    EXPECT_EQ(names, (Strings{"l", "m", "s", "h"}));
}

TEST(FoldersCommand, APlanTakesAFolderWhenAllOfItIsThereElsewhere) {
    for (const char* const change : {"", "Backup (copy)/in/3", "Backup/.hidden", "Backup/more"}) {
        TestTree tree;
        makeBackups(tree);
        const auto planned =
            foldersRun(tree, "duplicates",
                       {"--quiet", "--folders", "--keep", "path:" + tree.at("data/Backup"),
                        "--plan", tree.at("plan"), tree.at("data")})
                .run();
        ASSERT_EQ(planned.status, 0) << planned.error;
        const std::string changed = "data/" + std::string(change);
        ASSERT_TRUE(*change == 0 || tree.write(changed, "changed"));
        const auto removed =
            foldersRun(tree, "remove", {"--plan", tree.at("plan"), "--yes", "--json"}).run();
        const bool stays = *change != 0;
        EXPECT_EQ(isThere(tree.at("data/Backup (copy)")), stays) << change << removed.output;
        EXPECT_EQ(removed.status, stays ? 1 : 0) << change << removed.error;
        EXPECT_FALSE(isThere(tree.at("data/Old/in"))) << "in its equal's own group";
        EXPECT_TRUE(isThere(tree.at("data/Old/own")));
        EXPECT_EQ(namesIn(tree.at("data/Backup/in")).size(), 9U) << "nothing goes out of it";
        EXPECT_EQ(isThere(tree.at("data/big1")), !isThere(tree.at("data/big2")));
    }
}

// What is told to go is one entry by two paths where links lead into folders that are equal.
TEST(FoldersCommand, AllThatIsToldToGoMayGoWhereLinksLeadIntoThem) {
    for (const char* const part : {"B", ".B"})
        for (const bool linksCameFirst : {true, false}) {
            TestTree tree;
            const auto link = [&] {
                for (const char* const folder : {"X", "Y"})
                    ASSERT_TRUE(tree.symlink(std::string(folder) + "/" + part,
                                             std::string("data/to ") + folder));
            };
            ASSERT_TRUE(tree.folder("data") && tree.folder("home"));
            if (linksCameFirst) link();
            const std::pair<std::string, int> files[] = {{"X/g", 400},
                                                         {std::string("X/") + part + "/f", 100},
                                                         {"Y/g", 200},
                                                         {std::string("Y/") + part + "/f", 300}};
            for (const auto& [name, time] : files) {
                ASSERT_TRUE(tree.write("data/" + name, name.ends_with("g") ? "gggg" : "ff"));
                const timespec times[] = {{time, 0}, {time, 0}};
                ASSERT_EQ(::utimensat(AT_FDCWD, tree.at("data/" + name).c_str(), times, 0), 0);
            }
            if (!linksCameFirst) link();
            const auto told =
                foldersRun(tree, "duplicates",
                           {"--quiet", "--folders", "--keep", "newest", "-0", tree.at("data")})
                    .run();
            const Json found = search({"--folders", tree.at("data")});
            ASSERT_EQ(found["folders"].size(), 1U) << part << linksCameFirst;
            EXPECT_EQ(found["folders"][0]["members"].size(), 2U);
            std::istringstream paths(told.output);
            for (std::string path; std::getline(paths, path, '\0');)
                std::filesystem::remove_all(path);
            EXPECT_EQ(isThere(tree.at(std::string("data/X/") + part + "/f")) ||
                          isThere(tree.at(std::string("data/Y/") + part + "/f")),
                      true)
                << part << linksCameFirst << told.output;
            EXPECT_EQ(isThere(tree.at("data/Y/g")), false);
        }
}

TEST(FoldersCommand, OfALinkThatIsSearchedGoesWhatItLeadsTo) {
    TestTree tree;
    for (const char* const name : {"one/f", "two/f", "one/g", "two/g"})
        ASSERT_TRUE(tree.write(name, name + 4));
    ASSERT_TRUE(tree.symlink("two", "way") && tree.folder("home"));
    ASSERT_EQ(foldersRun(tree, "duplicates",
                         {"--quiet", "--folders", "--keep", "path:" + tree.at("one"), "--plan",
                          tree.at("plan"), tree.at("way"), tree.at("one")})
                  .run()
                  .status,
              0);
    auto asked = foldersRun(tree, "remove", {"--plan", tree.at("plan")});
    asked.inputTerminal = true;
    asked.typed = {
        {"y\n", [](const std::string& error) { return error.find("[y/N]") != std::string::npos; }}};
    const auto removed = asked.run();
    EXPECT_EQ(removed.status, 0) << removed.output;
    EXPECT_THAT(removed.error, HasSubstr("Remove 1 folder, "));
    EXPECT_FALSE(isThere(tree.at("two")));
    EXPECT_EQ(namesIn(tree.at("one")).size(), 2U);
}

TEST(FoldersCommand, AFolderComesBackFromTheTrash) {
    TestTree tree;
    makeBackups(tree);
    ASSERT_EQ(foldersRun(tree, "duplicates",
                         {"--quiet", "--folders", "--plan", tree.at("plan"), tree.at("data")})
                  .run()
                  .status,
              0);
    const auto before = namesIn(tree.at("data"));
    EXPECT_EQ(
        foldersRun(tree, "remove", {"--plan", tree.at("plan"), "--yes", "--trash"}).run().status,
        0);
    EXPECT_NE(namesIn(tree.at("data")), before);
    EXPECT_EQ(foldersRun(tree, "undo", {}).run().status, 0);
    EXPECT_EQ(namesIn(tree.at("data")), before);
    EXPECT_EQ(contentOf(tree.at("data/Backup (copy)/.hidden")), "seen");
}

}  // namespace
}  // namespace orrinvale::testing
