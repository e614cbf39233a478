// What a search is asked for: several folders, protected ones, and what is left out.
#include <sys/stat.h>

#include "engine/duplicates/SearchRun.h"
#include "engine/duplicates/keep/GroupMembers.h"
#include "engine/duplicates/scope/NamedSearches.h"
#include "engine/duplicates/scope/PathPattern.h"
#include "engine/duplicates/scope/SearchRequest.h"
#include "support/OwnMounts.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

TEST(PathPattern, Matches) {
    const struct {
        const char* pattern;
        const char* matching;  // with commas; a "/" at the end: a folder
        const char* others;
    } cases[] = {
        {"*.tmp", "a.tmp,.tmp,a.tmp/", "a.tmpx,tmp"},
        {"*a*b*c*", "abc,xaxbxcx,aabbcc", "acb,ab"},
        {"a?c",
         "abc,a\xC3\xA4"
         "c",
         "ac,abbc"},
        {"[a-cx]", "a,b,x", "d,ab,-"},
        {"[!a-c]", "d", "a,"},
        {"[]a]", "],a", "b"},
        {"[a-]", "a,-", "b"},
        {"[\xC3\xA4-\xC3\xB6]", "\xC3\xB5", "a"},
        {"\\*\\[", "*[", "a["},
        {"cache/", "cache/", "cache"},
        {"build/tmp", "build/tmp,/build/tmp", "x/build/tmp,build/tmp/x,tmp"},
        {"a/*/c", "a/b/c", "a/c,a/b/b/c"},
        {"**/c", "c,a/c,a/b/c", "ca,c/a"},
        {"a/**/c", "a/c,a/b/c,a/b/b/c", "a/b,b/c"},
        {"a/**", "a/b,a/b/c", "a,b/a"},
        {"**/a/**/b*", "a/b,x/a/y/bc", "b,a"},
        {"/home/*/x", "/home/me/x", "/home/x,/a/home/me/x"},
    };
    for (const auto& each : cases) {
        const auto pattern = PathPattern::parse(each.pattern);
        ASSERT_TRUE(pattern) << each.pattern;
        for (const bool expected : {true, false}) {
            std::istringstream texts(expected ? each.matching : each.others);
            for (std::string text; std::getline(texts, text, ',');) {
                const bool isFolder = text.ends_with('/');
                if (isFolder) text.pop_back();
                EXPECT_EQ(pattern->matches(text, isFolder), expected)
                    << each.pattern << " on " << text;
            }
        }
    }
    EXPECT_TRUE(PathPattern::folder("/a[b]*\\/c?/").matches("/a[b]*\\/c?", true));
    EXPECT_FALSE(PathPattern::folder("/a*").matches("/ab", true));
    const auto stars = PathPattern::parse(std::string(2000, '*') + "a*a*a*a*a*b");
    EXPECT_FALSE(stars->matches(std::string(4000, 'a'), false)) << "and soon";
}

TEST(PathPattern, TellsWhereItIsWrong) {
    const struct {
        const char* pattern;
        std::size_t place;
    } cases[] = {{"", 1},        {"/", 2},       {"ab[c", 3},  {"[]", 1},        {"[a\\", 1},
                 {"a/[z-a]", 6}, {"x\\", 2},     {"a//b", 3},  {"a/../b", 3},    {"\\\\[", 3},
                 {"a[x/y]", 2},  {"./a", 1},     {"/[", 2},    {"\\[a[", 4},     {"[ -/]", 1},
                 {"[.-/]", 1},   {"[a-\\/]", 1}, {"a\\/b", 2}, {"/\xC3\xA4[", 3}};
    for (const auto& [text, place] : cases) {
        const auto pattern = PathPattern::parse(text);
        ASSERT_FALSE(pattern) << text;
        EXPECT_EQ(pattern.error().place, place) << text << ": " << pattern.error().reason;
    }
    EXPECT_EQ(PathPattern::parseLine("![").error().place, 2U);
}

class Scope : public ::testing::Test {
protected:
    struct Result {
        std::string leaves;  // below the tree, sorted; a "!" behind each that is protected
        std::string covered, skipped;
    };
    Result search(SearchRequest request) {
        for (auto* const paths : {&request.roots, &request.protectedFolders})
            for (std::string& path : *paths) path = path.empty() ? tree.path() : tree.at(path);
        DuplicateFilesOpt search(files);
        search.beginSearch(request);
        const duplicateFind& state = *search.search();
        Strings leaves;
        search.visitGroups([&](const DuplicateGroup& group) {
            for (const auto* file : group.files)
                leaves.push_back(file->filePathName() + (state.isProtected(*file) ? "!" : ""));
            for (const auto* bundle : group.bundles)
                leaves.push_back(bundle->DirectoryPathName +
                                 (state.isProtected(*bundle) ? "!" : ""));
        });
        std::sort(leaves.begin(), leaves.end());
        Result result;
        for (const std::string& leaf : leaves) result.leaves += below(leaf) + ' ';
        for (const CoveredRoot& root : state.coveredRoots())
            result.covered +=
                fmt::format("{}{}{} ", below(root.path), root.isSame ? "=" : "<", below(root.by));
        for (const Error& error : state.skipped().entries())
            result.skipped += below(error.path) + ' ';
        return result;
    }
    [[nodiscard]] std::string below(const std::string& path) const {
        return path == tree.path() ? "." : path.substr(tree.path().size() + 1);
    }
    TestTree tree;
    LinuxFileSystem files;
};

TEST_F(Scope, SeveralFoldersAreOneSearch) {
    for (const char* name : {"a/1", "a/in/2", "b/3", "c/4"}) ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.symlink("a", "way") && tree.symlink("../b", "c/link"));
    const struct {
        Strings roots;
        const char* leaves;
        const char* covered;
    } cases[] = {
        {{"a", "b"}, "a/1 a/in/2 b/3 ", ""},
        {{"a/in", "a"}, "a/1 a/in/2 ", "a/in<a "},
        {{"a", "a/in", "a"}, "a/1 a/in/2 ", "a/in<a a=a "},
        {{"way", "a", "b"}, "b/3 way/1 way/in/2 ", "a=way "},
        {{"a", "way/in", "b"}, "a/1 a/in/2 b/3 ", "way/in<a "},
        {{"b", "c"}, "b/3 c/4 ", ""},  // the link in c leads to what is listed already
    };
    for (const auto& each : cases) {
        const Result found = search({each.roots});
        EXPECT_EQ(found.leaves, each.leaves) << ::testing::PrintToString(each.roots);
        EXPECT_EQ(found.covered, each.covered) << ::testing::PrintToString(each.roots);
    }
    const Result leftOut =
        search({{"a", "a/in"}, {}, 0, {.exclusions = {*PathPattern::parse("in")}}});
    EXPECT_EQ(leftOut.leaves + leftOut.covered, "a/1 a/in/2 ");
    const Result gone = search({{"none", "a"}});
    EXPECT_EQ(gone.leaves + gone.skipped, "a/1 a/in/2 none ");
}

// A check that has an own table of mounts, with /mnt/a and a tree in it.
std::string amongMounts(const std::function<std::string(TestTree&)>& check) {
    if (!mountRam("/mnt/a") || !mountRam("/mnt/b")) return "skip: no mounts here";
    TestTree tree("/mnt/a");
    return check(tree);
}

std::string foundWith(const SearchRequest& request) {
    const LinuxFileSystem files;
    DuplicateFilesOpt search(files);
    search.beginSearch(request);
    std::string text;
    search.visitGroups([&](const DuplicateGroup& group) {
        for (const auto* file : group.files)
            text += file->filePathName() + (search.search()->isProtected(*file) ? "! " : " ");
        for (const auto* bundle : group.bundles)
            text +=
                bundle->DirectoryPathName + (search.search()->isProtected(*bundle) ? "! " : " ");
    });
    return text;
}

TEST(ScopeOfMounts, ProtectionHoldsThroughOtherMounts) {
    withOwnMounts([] {
        return amongMounts([](TestTree& tree) -> std::string {
            for (const char* name :
                 {"p/in/X.app/1", "p/in/X.app/k/1", "p/in/2", "q/Y.app/1", "q/Y.app/k/1", "q/2"})
                if (!tree.write(name, "same")) return "not written";
            if (!bindMount(tree.at("p/in"), "/mnt/b")) return "skip: no mounts here";
            SearchRequest request{{"/mnt/b", tree.at("q"), tree.at("p")}};
            request.protectedFolders = {tree.at("p")};
            const std::string found = foundWith(request);
            for (const char* guarded : {"/mnt/b/X.app! ", "/mnt/b/2! "})
                if (found.find(guarded) == std::string::npos) return found;
            if (std::ranges::count(found, ' ') != 4) return found;
            if (!mountRam("/mnt/c") || !bindMount(tree.at("p"), "/mnt/c")) return "no mount";
            request.roots = {"/mnt/c/in", tree.at("q")};
            const std::string above = foundWith(request);
            if (above.find("X.app! ") == std::string::npos) return above;
            // A bundle that holds one.
            request.roots = {"/mnt/b", tree.at("q")};
            if (!mountRam("/mnt/d") || !bindMount(tree.at("p/in/X.app/k"), "/mnt/d"))
                return "no mount";
            for (const std::string& held : {tree.at("p/in/X.app/k"), std::string("/mnt/d")}) {
                request.protectedFolders = {held};
                const std::string holding = foundWith(request);
                const bool isAllElse = std::ranges::count(holding, '!') == 1;
                if (!isAllElse || holding.find("X.app! ") == std::string::npos)
                    return held + ": " + holding;
            }
            return {};
        });
    });
}

// The protected folder's own search leaves them out.
TEST(ScopeOfMounts, WhatASecondMountShowsOfAProtectedFolderIsProtected) {
    withOwnMounts([] {
        return amongMounts([](TestTree& tree) -> std::string {
            if (!tree.write("p/in/deep/1", "same") || !tree.write("q/2", "same"))
                return "not written";
            if (!bindMount(tree.at("p"), "/mnt/b") || !tree.symlink("/mnt/b/in", "q/way"))
                return "skip: no mounts here";
            for (const std::string root : {"/mnt/b/in/deep", "/mnt/b/in", ""}) {
                SearchRequest request{{tree.at("q")}};
                if (!root.empty()) request.roots.push_back(root);
                request.protectedFolders = {tree.at("p")};
                request.filter.exclusions = {PathPattern::folder(tree.at("p/in"))};
                const std::string found = foundWith(request);
                if (found.find("1! ") == std::string::npos) return root + ": " + found;
            }
            return "";
        });
    });
}

// A folder with two spellings, where numbers of inodes pass.
TEST(ScopeOfMounts, OneFolderIsOneHoweverItIsWritten) {
    class Passing final : public ForwardingFiles {
    public:
        using ForwardingFiles::ForwardingFiles;
        std::vector<std::uint64_t> devicesOfPassingInodes() const override {
            return {attributes(noParent, "/mnt/a", Links::Follow)->device};
        }
    };
    withOwnMounts([] {
        return amongMounts([](TestTree& tree) -> std::string {
            if (!tree.write("Photos/in/1", "same") || !tree.write("b/2", "same") ||
                !tree.folder("photos") || !bindMount(tree.at("Photos"), tree.at("photos")))
                return "skip: no mounts here";
            const LinuxFileSystem real;
            const Passing files(real);
            SearchRequest request{
                {tree.at("Photos"), tree.at("photos/in"), tree.at("b"), tree.at("photos")}};
            request.protectedFolders = {tree.at("photos/in")};
            DuplicateFilesOpt search(files);
            search.beginSearch(request);
            if (search.search()->coveredRoots().size() != 2) return "not one folder";
            std::string text;
            search.visitGroups([&](const DuplicateGroup& group) {
                for (const auto* file : group.files)
                    text += search.search()->isProtected(*file) ? '!' : '.';
            });
            return text == "!." || text == ".!" ? "" : "protected: " + text;
        });
    });
}

TEST(ScopeOfMounts, FoldersThatLieInEachOtherAreSearched) {
    withOwnMounts([] {
        return amongMounts([](TestTree& tree) -> std::string {
            if (!tree.write("a/1", "same") || !tree.write("a/2", "same") || !tree.folder("a/b"))
                return "not written";
            if (!bindMount(tree.path(), tree.at("a/b"))) return "skip: no mounts here";
            const std::string found = foundWith({{tree.at("a/b"), tree.at("a"), tree.path()}});
            return std::ranges::count(found, ' ') == 2 ? "" : "found " + found;
        });
    });
}

// A search of all enters nothing of the kernel's by itself.
TEST(SearchRoots, WhatAnotherSearchDoesNotEnterIsSearchedByItself) {
    const LinuxFileSystem real;
    const SearchFilter filter;
    const auto found = findRoots(real, {"/", "/proc/sys"}, {filter, true, true});
    EXPECT_EQ(found.roots, (Strings{"/", "/proc/sys"}));
    EXPECT_TRUE(found.covered.empty());
}

TEST(ScopeOfMounts, AnEntryThroughTwoMountsCountsOnce) {
    withOwnMounts([]() -> std::string {
        if (!mountRam("/mnt/a") || !mountRam("/mnt/b") || !bindMount("/mnt/a", "/mnt/b"))
            return "skip: no mounts here";
        TestTree tree("/mnt/a");
        if (!tree.write("x/1", "same") || !tree.write("y/2", "same")) return "not written";
        const std::string other = "/mnt/b" + tree.path().substr(6);
        const LinuxFileSystem files;
        DuplicateFilesOpt search(files);
        SearchRequest request{{tree.at("x"), other + "/x", other + "/y"}};
        request.protectedFolders = {tree.at("y")};
        search.beginSearch(request);
        const Found found = foundBy(search);
        if (found.leaves != Strings{tree.at("x/1"), other + "/y/2"})
            return ::testing::PrintToString(found.leaves);
        std::size_t guarded = 0;
        search.visitGroups([&](const DuplicateGroup& group) {
            for (const auto* file : group.files)
                guarded += search.search()->isProtected(*file) ? 1U : 0U;
        });
        return guarded == 1 ? "" : "not protected by the other way";
    });
}

TEST_F(Scope, FiltersLeaveOut) {
    const auto pattern = [](const char* text) { return *PathPattern::parse(text); };
    for (const char* folder : {"a", "b/c"})
        for (const auto& [name, size] : {std::pair{"x.txt", 10}, {"y.jpg", 20}, {"z.app/in", 30}})
            ASSERT_TRUE(tree.write(fmt::format("{}/{}", folder, name),
                                   someBytes(std::size_t(size), unsigned(size))));
    const std::string texts = "a/x.txt b/c/x.txt ", pictures = "a/y.jpg b/c/y.jpg ",
                      apps = "a/z.app b/c/z.app ";
    const std::string all = "a/x.txt a/y.jpg a/z.app b/c/x.txt b/c/y.jpg b/c/z.app ";
    const struct {
        const char* what;
        SearchFilter filter;
        std::string leaves;
    } cases[] = {
        {"nothing", {}, all},
        {"small ones", {.smallest = 11, .largest = 29}, pictures},
        {"bounds count", {.smallest = 20, .largest = 20}, pictures},
        {"large ones, by the size of the whole", {.smallest = 30}, apps},
        {"documents", {.kinds = {FileKind::Documents}}, texts},
        {"others are bundles too", {.kinds = {FileKind::Others}}, apps},
        {"by name",
         {.kinds = {FileKind::Documents, FileKind::Pictures}, .exclusions = {pattern("x.*")}},
         pictures},
        {"a bundle by name", {.exclusions = {pattern("z.app"), pattern("x.txt")}}, pictures},
        {"not within bundles", {.smallest = 30, .exclusions = {pattern("in")}}, apps},
        {"a folder by path", {.exclusions = {pattern("b/c/")}}, ""},
        {"no file of that path", {.exclusions = {pattern("a/x.txt/")}}, all},
        {"a whole path", {.exclusions = {PathPattern::folder(tree.at("a"))}}, ""},
        {"everything", {.exclusions = {pattern("*")}}, ""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(search({{""}, {}, 0, each.filter}).leaves, each.leaves) << each.what;
}

TEST_F(Scope, ExclusionFilesCountWhereTheyAreAskedFor) {
    for (const char* name : {"a/x", "a/y", "b/x", "b/deep/y", "b/keep/x", "c/x", "c/y"})
        ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.write(".orrinvaleignore", "# words\n/c/\n  \ny \r\nb/*\n!b/keep\n[\n"));
    ASSERT_TRUE(tree.write("a/.orrinvaleignore", "!y\n\\x\n") &&
                tree.fifo("b/keep/.orrinvaleignore"));
    EXPECT_EQ(search({{""}}).skipped, "");
    const Result found = search({{""}, {}, 0, {.readsFiles = true}});
    EXPECT_EQ(found.leaves, "a/y b/keep/x ");
    EXPECT_EQ(found.skipped, ".orrinvaleignore b/keep/.orrinvaleignore ");
    EXPECT_EQ(exclusionFault(files, tree.at(".orrinvaleignore")),
              "line 7, character 1: no ] closes this [");
    ASSERT_TRUE(tree.write(".orrinvaleignore", std::string(70'000, 'y')));
    EXPECT_EQ(search({{"", "a"}, {}, 0, {.readsFiles = true}}).skipped.substr(0, 17),
              ".orrinvaleignore ")
        << "too large";
}

TEST_F(Scope, ProtectedFoldersAreKnownByEveryWay) {
    for (const char* name : {"a/1", "p/2", "p/in/3", "pp/4", "q.app/x", "r.app/x"})
        ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.symlink("p", "way") && tree.symlink("../p/in", "a/link"));
    const std::string bundles = " q.app r.app ";
    const struct {
        const char* what;
        Strings roots, guarded;
        const char* leaves;
    } cases[] = {
        {"none", {"a", "pp"}, {}, "a/1 a/link/3 pp/4 "},
        {"one of two", {"a", "p"}, {"p"}, "a/1 p/2! p/in/3! "},
        {"behind a link within", {"a", "pp"}, {"p"}, "a/1 a/link/3! pp/4 "},
        {"named through a link", {"p", "a"}, {"way/in"}, "a/1 p/2 p/in/3! "},
        {"searched through a link", {"way", "a"}, {"p/in"}, "a/1 way/2 way/in/3! "},
        {"not there", {"p", "a"}, {"p/none"}, "a/1 p/2 p/in/3 "},
        {"above what is searched", {"p"}, {""}, "p/2! p/in/3! "},
        {"a bundle that holds one", {""}, {"q.app/x"}, "a/1 p/2 p/in/3 pp/4 q.app! r.app "},
    };
    for (const auto& each : cases)
        EXPECT_EQ(search({each.roots, each.guarded}).leaves, each.leaves) << each.what;
}

// The protected folder's name is a link that goes while the search runs.
TEST_F(Scope, WhatWasProtectedAtTheBeginningStaysSo) {
    class Leaving final : public ForwardingFiles {
    public:
        Leaving(const FileSystem& files, std::string link)
            : ForwardingFiles(files), m_link(std::move(link)) {}
        SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
            ::unlink(m_link.c_str());
            return ForwardingFiles::readFolder(folder, batch);
        }

    private:
        const std::string m_link;
    };
    ASSERT_TRUE(tree.write("a/1", "same") && tree.write("p/2", "same"));
    ASSERT_TRUE(tree.symlink("p", "way"));
    SearchRequest request{{tree.at("a"), tree.at("p")}, {tree.at("way")}};
    const Leaving leaving(files, tree.at("way"));
    DuplicateFilesOpt search(leaving);
    search.beginSearch(request);
    std::size_t guarded = 0;
    search.visitGroups([&](const DuplicateGroup& group) {
        for (const auto* file : group.files) guarded += search.search()->isProtected(*file);
    });
    EXPECT_EQ(guarded, 1U);
}

// A link to a bundle, and copies in a folder that is searched through a link, as rules see them.
TEST_F(Scope, RulesSeeWhereCopiesLie) {
    for (const char* name : {"out/X.app/in", "a/Y.app/in", "a/1", "a/2"})
        ASSERT_TRUE(tree.write(name, "same"));
    ASSERT_TRUE(tree.symlink("../out/X.app", "a/L.app") && tree.symlink("a", "way"));
    DuplicateFilesOpt search(files);
    search.beginSearchAtPath(tree.at("way"), 0);
    GroupMembers members(*search.search());
    std::string told;
    search.visitGroups([&](const DuplicateGroup& group) {
        for (const KeepMember& each : members.of(group))
            told += below(std::string(each.path)) + (each.isSymbolicLink() ? "@" : "=") +
                    below(std::string(each.place)) + ' ';
    });
    EXPECT_EQ(told, "way/Y.app=a/Y.app way/L.app@out/X.app way/2=a/2 way/1=a/1 ");
}

TEST(NamedSearches, ComeBackAndAreForgotten) {
    TestTree tree;
    const NamedSearches searches(tree.at("state/searches"));
    EXPECT_TRUE(searches.all().empty());
    const SearchScope full{
        "b/\n\\ \xFF", {"/a\n", "/b"}, {"/b"}, {"*.tmp", "\\*"}, 1, 2, {FileKind::Music}, true};
    const SearchScope bare{.name = "a"};
    ASSERT_TRUE(searches.save(full) && searches.save({.name = "a", .roots = {"/x"}}));
    ASSERT_TRUE(searches.save(bare));
    EXPECT_EQ(searches.all(), (std::vector<SearchScope>{bare, full}));
    const Strings names = namesIn(tree.at("state/searches"));
    ASSERT_EQ(names.size(), 2U);
    struct stat seen {};
    ASSERT_EQ(::stat(tree.at("state/searches/" + names[0]).c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 0777U, 0600U);

    // Each of these costs its own search, and no other.
    const std::string text = textOfSearch(full);
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_EQ(searchOfText(text.substr(0, length)), std::nullopt) << length;
    for (const char* bad :
         {"", "x", "orrinvale search 2\nname x\nend\n", "orrinvale search 1\nend\n",
          "orrinvale search 1\nname x\nroot x\nend\n", "orrinvale search 1\nname x\nmin 1e9\nend\n",
          "orrinvale search 1\nname x\nkind x\nend\n", "orrinvale search 1\nname \\x\nend\n",
          "orrinvale search 1\nname x\nend\nmore\n"}) {
        ASSERT_TRUE(tree.write("state/searches/" + names[0], bad));
        EXPECT_EQ(searches.all().size(), 1U) << bad;
    }
    EXPECT_TRUE(searches.clear());
    EXPECT_EQ(namesIn(tree.at("state/searches")), Strings{});
    EXPECT_EQ(full.request()->filter.exclusions.size(), 2U);
    EXPECT_EQ((SearchScope{.patterns = {"a", "[b"}}.request().error().text), "[b");
}

}  // namespace
}  // namespace orrinvale::testing
