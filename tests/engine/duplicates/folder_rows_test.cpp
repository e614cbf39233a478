// Whole folders as rows of a result: what boxes and rules make of them, and that nothing is lost
// when they go.
#include <algorithm>
#include <limits>

#include "engine/duplicates/RandomTree.h"
#include "engine/duplicates/folders/FolderContents.h"
#include "engine/duplicates/keep/KeepTicks.h"
#include "engine/duplicates/plan/UndoableRemoval.h"
#include "engine/duplicates/plan/makePlan.h"
#include "engine/duplicates/plan/planOfTicks.h"
#include "engine/duplicates/results/GainOrder.h"
#include "engine/duplicates/results/GoneFolders.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/duplicates/results/ResultViews.h"
#include "engine/removal/PairList.h"

namespace orrinvale {
namespace {

namespace fs = std::filesystem;
using Pointer = TreeNode::Pointer;
using testing::someBytes;

/// A search of folders below one tree, and what a person has ticked in its result.
struct FolderResult {
    explicit FolderResult(TestTree& of) : tree(of) {}

    void search(const Strings& roots, const Strings& protectedFolders = {}) {
        SearchRequest request;
        for (const std::string& root : roots) request.roots.push_back(tree.at(root));
        for (const std::string& each : protectedFolders)
            request.protectedFolders.push_back(tree.at(each));
        request.findsFolders = true;
        const SearchOption option{true, true};
        found.setSearchOption(&option);
        found.beginSearch(request);
        std::shared_ptr<SimpleTreeNode> all;
        if (found.getDuplicateFiles(&all)) views.setResult(std::move(all));
        if (views.tree(0) != nullptr) views.tree(0)->acendingSortName();  // not as the disk lists
    }
    /// A group in a line: its name and its copies, x for what is ticked, - for what goes
    /// with its folder, ! for what is protected.
    std::string seen() const {
        std::string text;
        for (const Pointer& group : all().children()) {
            Strings copies;
            for (const Pointer& leaf : group->children()) {
                const SimpleNodeData& data = *simpleData(*leaf);
                copies.push_back(data.name().substr(tree.at("").size()) +
                                 (data.isProtected()                 ? "!"
                                  : holdOf(data) == FolderHold::Goes ? "-"
                                  : data.selectNum() == 1            ? "x"
                                                                     : ""));
            }
            const bool areFolders = simpleData(*group)->wholeFolder() != nullptr;
            text += fmt::format("{}: {}\n", areFolders ? "folders" : simpleData(*group)->name(),
                                fmt::join(copies, " "));
        }
        return text;
    }
    TreeNode& all() const { return *views.tree(0); }
    Pointer leaf(const std::string& path) const {
        for (const Pointer& group : all().children())
            for (const Pointer& leaf : group->children())
                if (simpleData(*leaf)->name() == tree.at(path)) return leaf;
        ADD_FAILURE() << path;
        return all().firstChild()->firstChild();
    }
    LeafClick tick(const std::string& path) { return tick(leaf(path)); }
    LeafClick tick(const Pointer& leaf) {
        const LeafClick click = selection.clickLeaf(leaf, views.inFolders());
        selection.clearGoing(views.inFolders());
        return click;
    }
    void insist(const std::string& path) {
        EXPECT_EQ(tick(path), LeafClick::Question);
        selection.tickLast(leaf(path), views.inFolders());
        selection.clearGoing(views.inFolders());
    }
    void keep(const KeepRules& rules) {
        KeepTicks ticks(selection);
        ticks.keep(all(), rules);
        ticks.finish();
        selection.clearGoing(views.inFolders());
    }
    /// "path: -" for what went, else why it stays, in the order in which it was decided.
    Strings remove() {
        auto plan = std::make_shared<RemovalPlan>(realFiles, selection.allSelectNumArr().entries(),
                                                  RemovalPlan::Comparing::Never);
        Strings results;
        auto telling = testing::nobodyTold();
        telling.settled = [&](std::size_t index, const RemovalResult& result) {
            results.push_back(plan->path(index).substr(tree.at("").size()) + ": " +
                              (result.gone ? "-" : result.failures.front().reason));
        };
        (void)testing::removeAll(realFiles, tree.at("state"), *plan, telling);
        return results;
    }

    TestTree& tree;
    DuplicateFilesOpt found{realFiles};
    ResultViews views;
    DuplicateSelection selection;
};

/// Two equal folders, of which one file lies elsewhere too.
class WholeFolders : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* folder : {"f/a", "f/b"}) {
            unsigned seed = 0;
            for (const char* name : {"/x", "/sub/y", "/sub/.h"})
                tree.write(std::string(folder) + name, someBytes(4, ++seed));
            tree.folder(std::string(folder) + "/empty");
        }
        tree.write("f/c/x", someBytes(4, 1));
        tree.write("f/c/p", someBytes(900, 9));
        tree.write("f/d/p", someBytes(900, 9));
    }
    TestTree tree;
    FolderResult on{tree};
};

TEST_F(WholeFolders, StandAboveWhatTheyDoNotTellOf) {
    on.search({"f"});
    EXPECT_EQ(on.seen(), "folders: f/a f/b\np: f/c/p f/d/p\nx: f/a/x f/b/x f/c/x\n");
    const FolderFacts& facts = *simpleData(*on.all().firstChild())->wholeFolder();
    EXPECT_EQ(fmt::format("{} {} {} {}", facts.entries, facts.files, facts.bytes, facts.gain),
              "5 3 12 12");
    orderGroups(on.all(), GroupOrder::Gain);
    EXPECT_EQ(on.seen(), "folders: f/a f/b\np: f/c/p f/d/p\nx: f/a/x f/b/x f/c/x\n");
    on.all().decendingSortName();
    orderGroups(on.all(), GroupOrder::Found);
    std::vector<std::uint32_t> places;
    for (const Pointer& group : on.all().children())
        places.push_back(simpleData(*group)->foundAs());
    EXPECT_TRUE(std::ranges::is_sorted(places) && places.size() == 3 && places[0] != places[1]);
}

TEST_F(WholeFolders, TakeAlongWhatLiesInThem) {
    on.search({"f"});
    EXPECT_EQ(on.tick("f/b/x"), LeafClick::Ticked);
    EXPECT_EQ(on.tick("f/b"), LeafClick::Ticked);
    EXPECT_EQ(on.seen(), "folders: f/a f/bx\np: f/c/p f/d/p\nx: f/a/x f/b/x- f/c/x\n");
    EXPECT_EQ(on.selection.sums().copies, 1U);
    EXPECT_EQ(on.selection.sums().bytes, 12U);
    EXPECT_EQ(on.tick("f/b/x"), LeafClick::Protected);
    EXPECT_EQ(on.tick("f/c/x"), LeafClick::Ticked);
    EXPECT_EQ(on.tick("f/a/x"), LeafClick::Question) << "what goes is no copy that stays";

    on.selection.setAll(on.all(), false);
    on.selection.setAll(on.all(), true);
    EXPECT_EQ(on.seen(), "folders: f/ax f/b\np: f/c/px f/d/p\nx: f/a/x- f/b/x f/c/xx\n");
    on.selection.setAll(on.all(), false);
    EXPECT_EQ(on.tick("f/b"), LeafClick::Ticked);
    on.selection.setAll(on.all(), true);
    EXPECT_EQ(countTicked(*on.all().firstChild()), 1U) << "not even where the last was ticked";
}

TEST_F(WholeFolders, HideNoTickOfWhatLiesInTheEqualThatStays) {
    on.search({"f"});
    const auto group = [&] {
        const SimpleNodeData& data = *simpleData(*on.all().lastChild());
        return fmt::format("{} {}", data.selectNum(), data.showSelectNumStr());
    };
    EXPECT_EQ(on.tick("f/a"), LeafClick::Ticked);
    EXPECT_EQ(on.tick("f/b/x"), LeafClick::Ticked);
    on.selection.tickAllBut(*on.leaf("f/c/x"));
    EXPECT_EQ(on.seen(), "folders: f/ax f/b\np: f/c/p f/d/p\nx: f/a/x- f/b/xx f/c/x\n");
    EXPECT_EQ(group(), "2 1/3");
    on.selection.setAll(on.all(), false);
    EXPECT_TRUE(on.selection.allSelectNumArr().empty()) << on.seen();
    EXPECT_EQ(group().substr(0, 2), "0 ");
}

TEST_F(WholeFolders, TakeTheLastCopyOfOthersOnlyWhereThatWasAsked) {
    on.search({"f"});
    const Pointer group = on.all().lastChild();
    const auto state = [&] { return simpleData(*group)->selectNum(); };
    on.tick("f/a/x"), on.tick("f/c/x");
    EXPECT_EQ(on.tick("f/b"), LeafClick::Question) << "the last clear copy lies in it";
    EXPECT_EQ(on.seen(), "folders: f/a f/b\np: f/c/p f/d/p\nx: f/a/xx f/b/x f/c/xx\n");
    EXPECT_FALSE(losesAll(*group));
    on.insist("f/b");
    EXPECT_TRUE(losesAll(*group) && state() == 1) << "as where each of them was ticked";
    EXPECT_EQ(on.tick("f/b"), LeafClick::Cleared);
    EXPECT_TRUE(!losesAll(*group) && state() == 2);

    // Nobody asks at a box of many and at a rule: then a tick gives way.
    on.selection.tickAllBut(*on.leaf("f/a"));
    on.selection.clearGoing(on.views.inFolders());
    EXPECT_EQ(on.seen(), "folders: f/a f/bx\np: f/c/p f/d/p\nx: f/a/xx f/b/x- f/c/x\n");
    EXPECT_EQ(simpleData(*group)->showSelectNumStr(), "1/3");
    // A click on a file looks at no other group.
    simpleData(*group)->setShowSelectNumStr("kept");
    on.tick("f/c/p");
    EXPECT_EQ(simpleData(*group)->showSelectNumStr(), "kept");
    on.tick("f/c/p"), on.tick("f/b"), on.tick("f/b");
    EXPECT_EQ(simpleData(*group)->showSelectNumStr(), "1/3");
    EXPECT_EQ(on.selection.sums().copies, 2U);
    EXPECT_EQ(on.selection.allSelectNumArr().size(), 2U);
}

TEST_F(WholeFolders, GoOnlyAsTheSearchSawThem) {
    using Result = FolderResult;
    const std::string changed = ": changed since the scan",
                      none = ": no other verified copy is left";
    const auto soon = [](Result& r) {  // the times say nothing, so that the bytes have to
        for (const char* each : {"f/a", "f/b"})
            simpleData(*r.leaf(each))->tieToFolders().facts->searched =
                std::numeric_limits<std::int64_t>::max();
    };
    const struct {
        const char* what;
        std::function<void(Result&)> ticks;
        std::function<void(TestTree&)> since;
        Strings results;
        bool isTimeless = false;
    } cases[] = {
        {"a row", [](Result& r) { r.tick("f/b"); }, {}, {"f/b: -"}},
        {"a file was added",
         [](Result& r) { r.tick("f/b"); },
         [](TestTree& t) { t.write("f/b/sub/new", ""); },
         {"f/b" + changed}},
        {"a file that no search lists was written",
         [](Result& r) { r.tick("f/b"); },
         [](TestTree& t) { t.write("f/b/sub/.h", someBytes(4, 7)); },
         {"f/b" + changed}},
        {"the one that stays was changed",
         [](Result& r) { r.tick("f/b"); },
         [](TestTree& t) { fs::remove(t.at("f/a/empty")); },
         {"f/b" + none}},
        {"other bytes with the times of before",
         [](Result& r) { r.tick("f/b"); },
         [](TestTree& t) {
             const auto before = fs::last_write_time(t.at("f/b/sub/y"));
             std::ofstream(t.at("f/b/sub/y"), std::ios::in) << "odd!";
             fs::last_write_time(t.at("f/b/sub/y"), before);
         },
         {"f/b: its contents are not those of the copy that stays"},
         true},
        {"both, as the person insisted",
         [](Result& r) { r.tick("f/a"), r.insist("f/b"); },
         {},
         {"f/a: -", "f/b: -"}},
        {"both, but one has more by now",
         [](Result& r) { r.tick("f/a"), r.insist("f/b"); },
         [](TestTree& t) { t.write("f/b/new", "only here"); },
         {"f/a: -", "f/b" + changed}},
        {"a file of the folder that stays, ticked first",
         [](Result& r) { r.tick("f/a/x"), r.tick("f/b"); },
         {},
         {"f/b: -", "f/a/x: -"}},
        {"the other two names of a file, as the person insisted",
         [](Result& r) { r.tick("f/a/x"), r.tick("f/b"), r.insist("f/c/x"); },
         {},
         {"f/b: -", "f/a/x: -", "f/c/x: -"}},
        {"the last copy of a file with the folder, as the person insisted",
         [](Result& r) { r.tick("f/a/x"), r.tick("f/c/x"), r.insist("f/b"); },
         {},
         {"f/b: -", "f/a/x: -", "f/c/x: -"}},
    };
    for (const auto& [what, ticks, since, results, isTimeless] : cases) {
        TestTree own;
        fs::copy(tree.at("f"), own.at("f"), fs::copy_options::recursive);
        Result result(own);
        result.search({"f"});
        ticks(result);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // a tick of the disk's clock
        if (since) since(own);
        if (isTimeless) soon(result);
        EXPECT_EQ(result.remove(), results) << what;
    }
}

TEST_F(WholeFolders, LeaveTheListWithWhatLiesInThem) {
    on.search({"f"});
    on.tick("f/b");
    on.views.removeLeaves(std::vector{on.leaf("f/b")});
    EXPECT_EQ(on.seen(), "p: f/c/p f/d/p\nx: f/a/x f/c/x\n");
    on.selection.setAll(on.all(), true);
    EXPECT_EQ(on.seen(), "p: f/c/px f/d/p\nx: f/a/xx f/c/x\n") << "no counterpart any more";
}

TEST_F(WholeFolders, ThatAreProtectedAreTheOnesThatStay) {
    on.search({"f/b", "f/c", "f/a"}, {"f/a"});
    on.selection.setAll(on.all(), true);
    EXPECT_EQ(on.seen(),
              "folders: f/a! f/bx\n"
              "x: f/a/x! f/b/x- f/c/xx\n");
    EXPECT_EQ(on.tick("f/a"), LeafClick::Protected);
    auto plan = planOfTicks(on.selection.allSelectNumArr().entries(),
                            {{tree.at("f")}, {tree.at("f/a")}, {}});
    EXPECT_TRUE(faultOf(plan)) << "nobody has listed them";
    EXPECT_EQ(addListings(plan, realFiles, on.found), 0U);
    EXPECT_EQ(faultOf(plan).value_or(""), "");
    tree.write("f/b/new", "");
    for (PlanGroup& group : plan.groups)
        for (PlanMember& member : group.members) member.listing.reset();
    EXPECT_EQ(addListings(plan, realFiles, on.found), 1U);
    EXPECT_EQ(plan.groups.size(), 1U);
}

// Two folders of 50 folders each are listed three times before anything of them is touched.
TEST_F(WholeFolders, HearAStopWhileTheyAreListed) {
    for (int i = 0; i < 50; ++i)
        for (const char* folder : {"f/a", "f/b"})
            tree.write(fmt::format("{}/many{}/z", folder, i), someBytes(9, 3));
    on.search({"f"});
    on.tick("f/b");
    for (const bool isUndoable : {false, true})
        for (const int readsBefore : {0, 30, 70, 130, 180, 220}) {
            WatchedFiles files;
            std::atomic<bool> stop{false};
            int reads = 0;
            files.onReadFolder = [&] { stop = ++reads > readsBefore; };
            const auto ticked = on.selection.allSelectNumArr().entries();
            std::shared_ptr<RemovalList> list =
                std::make_shared<RemovalPlan>(files, ticked, RemovalPlan::Comparing::Never);
            if (isUndoable)
                list = std::make_shared<UndoableRemoval>(
                    files, tree.at("state"), list, [&](const std::atomic<bool>& heard) {
                        DuplicatePlan plan = planOfTicks(ticked, {{tree.at("f")}, {}, {}});
                        noteListings(plan, files, on.found, heard);
                        return plan;
                    });
            PlainDoor door(files, {});
            const RemovalOutcome outcome =
                RemovalRun(files, tree.at("state"), *list, door, stop, testing::nobodyTold()).run();
            EXPECT_LT(reads, readsBefore + 4) << "a stop is no reason to read on";
            EXPECT_TRUE(outcome.stopped);
            EXPECT_EQ(outcome.failed + outcome.removed + outcome.stayed.size(), 0U)
                << (outcome.stayed.empty() ? std::string() : outcome.stayed[0].reason);
            EXPECT_TRUE(fs::exists(tree.at("f/b/sub/y")));
        }
    // And once more when the one is aside, from where it comes back.
    WatchedFiles files;
    std::atomic<bool> stop{false};
    bool isAside = false;
    int reads = 0;
    files.beforeRemoval = [&](std::string_view operation) {
        isAside = isAside || operation == "renameInside";
        if (isAside && operation == "readFolder") stop = ++reads > 10;
    };
    RemovalPlan list(files, on.selection.allSelectNumArr().entries(),
                     RemovalPlan::Comparing::Never);
    PlainDoor door(files, {});
    const RemovalOutcome outcome =
        RemovalRun(files, tree.at("state"), list, door, stop, testing::nobodyTold()).run();
    EXPECT_LT(reads, 15);
    EXPECT_TRUE(isAside && outcome.stopped);
    EXPECT_EQ(outcome.failed + outcome.removed + outcome.stayed.size(), 0U);
    EXPECT_TRUE(fs::exists(tree.at("f/b/many7/z")));
}

TEST_F(WholeFolders, ShowWhatIsInThemNow) {
    fs::create_symlink("nowhere", tree.at("f/a/sub/link"));
    tree.write("f/a/sub.d", "four");
    const std::atomic<bool> never{false};
    const auto inA = [&](const std::atomic<bool>& stop) {
        const FolderContents contents = contentsOf(realFiles, tree.at("f/a"), stop);
        std::string text = contents.fault;
        for (const auto& [path, bytes, modified] : contents.entries)
            text += fmt::format("{} {}, ", path, modified > 0 ? int(bytes) : -1);
        return text;
    };
    EXPECT_EQ(inA(never), "empty 0, sub/.h 4, sub/link 7, sub/y 4, sub.d 4, x 4, ");
    EXPECT_EQ(inA(std::atomic<bool>{true}), "Operation canceled");
    fs::remove_all(tree.at("f/a"));
    EXPECT_EQ(inA(never), "No such file or directory");
}

TEST(WholeFolderRows, LayInFoldersThatAreGoneByTheirPaths) {
    const GoneFolders gone({"/f/b c", "/f/b", "/f/b/in it", "/f/b!"});
    const struct {
        const char* path;
        const char* place;
        bool isLink;
        bool held;
    } cases[] = {
        {"/f/b/x", "", false, true},         {"/f/b/in it/x", "", false, true},
        {"/f/b c/x", "", false, true},       {"/f/b!/y/z", "", false, true},
        {"/f/b", "", false, false},          {"/f/bc/x", "", false, false},
        {"/f/b d/x", "", false, false},      {"/f/a/x", "", false, false},
        {"/f/l/x", "/f/b/x", false, true},   {"/f/l", "/f/b/x", true, false},
        {"/f/l/x", "/f/bc/x", false, false},
    };
    for (const auto& [path, place, isLink, held] : cases) {
        const auto leaf = SimpleNodeData::leafDataWithName(path);
        leaf->setPlace(place);
        leaf->setIdentity(
            EntryIdentity{.type = isLink ? FileType::SymbolicLink : FileType::Regular});
        EXPECT_EQ(gone.held(*leaf), held) << path << ' ' << place;
    }
}

/// What goes and what stays of it, by path.
std::set<std::string> decidedIn(const DuplicatePlan& plan) {
    std::set<std::string> decided;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members)
            decided.insert((member.goes ? "- " : "+ ") + member.path);
    return decided;
}

std::set<std::string> contentsIn(const std::string& folder) {
    std::set<std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && !entry.is_symlink())
            contents.insert(testing::contentOf(entry.path()));
    return contents;
}

bool losesEach(const Pointer& group) { return losesAll(*group); }

TEST(WholeFolderRows, AreDecidedAsInTheTerminalAndLoseNothing) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        TestTree tree;
        testing::RandomTree(tree, seed).fill("f", 4);
        const KeepRules rules{{seed % 2 == 0 ? KeepRule::By::ShortestPath : KeepRule::By::Newest}};
        FolderResult on(tree);
        on.search({"f"});
        if (on.views.tree(0) == nullptr) continue;
        const PlanOrigin origin{{tree.at("f")}, {}, rules, &realFiles};
        on.keep(rules);
        DuplicatePlan ticked = planOfTicks(on.selection.allSelectNumArr().entries(), origin);
        EXPECT_EQ(decidedIn(ticked), decidedIn(makePlan(on.found, origin))) << seed;
        EXPECT_FALSE(std::ranges::any_of(on.all().children(), losesEach)) << seed;

        // And by boxes, at random.
        std::mt19937 random(seed);
        on.selection.setAll(on.all(), false);
        for (const Pointer& group : on.all().children())
            for (const Pointer& leaf : group->children())
                if (random() % 2 == 0) on.tick(leaf);
        EXPECT_FALSE(std::ranges::any_of(on.all().children(), losesEach)) << seed;
        const auto before = contentsIn(tree.at("f"));
        const Strings results = on.remove();
        EXPECT_EQ(contentsIn(tree.at("f")), before)
            << seed << ' ' << fmt::format("{}", fmt::join(results, ", "));
    }
}

}  // namespace
}  // namespace orrinvale
