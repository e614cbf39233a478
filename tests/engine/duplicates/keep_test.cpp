// Rules that say which copy stays, ticks by folder, and protected copies under every way of
// ticking.
#include "engine/duplicates/keep/KeepRule.h"

#include <rapidcheck.h>

#include "engine/duplicates/keep/KeepTicks.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "platform/linux/LinuxFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using By = KeepRule::By;

struct Copy {
    std::string path;
    std::optional<std::int64_t> modified = 0;
    std::uint64_t inode = 0;  // 0: one of its own
    bool isProtected = false;
    std::string leadsTo = {};  // of a symbolic link
    bool inodePasses = false;
};

struct Group {
    explicit Group(std::vector<Copy> listed) : copies(std::move(listed)) {
        for (std::size_t i = 0; i < copies.size(); ++i) {
            const Copy& copy = copies[i];
            identities.push_back(
                {.device = 1,
                 .inode = copy.inode != 0 ? copy.inode : 100 + i,
                 .type = copy.leadsTo.empty() ? FileType::Regular : FileType::SymbolicLink,
                 .inodePasses = copy.inodePasses});
        }
        for (std::size_t i = 0; i < copies.size(); ++i)
            members.push_back({copies[i].path, copies[i].modified, &identities[i],
                               copies[i].inode != 0 ? 2U : 1U, copies[i].leadsTo,
                               copies[i].isProtected});
    }
    Group(const Group&) = delete;
    std::vector<Copy> copies;
    std::vector<EntryIdentity> identities;
    std::vector<KeepMember> members;

    std::string kept(const KeepRules& rules) const {
        std::vector<std::uint8_t> stays;
        decideKept(rules, members, stays);
        std::string text;
        for (const std::uint8_t each : stays) text += each != 0 ? 's' : 'x';
        return text;
    }
};

TEST(KeepRule, DecidesWhatStays) {
    const KeepRule newest{By::Newest}, oldest{By::Oldest}, path{By::ShortestPath},
        name{By::ShortestName}, inB{By::BestPlace, {"/b"}}, places{By::BestPlace, {"/c", "/b"}};
    const struct {
        const char* what;
        KeepRules rules;
        std::vector<Copy> copies;
        const char* expected;
    } cases[] = {
        {"the newest", {newest}, {{"/a", 1}, {"/b", 3}, {"/c", 2}}, "xsx"},
        {"the oldest", {oldest}, {{"/a", 2}, {"/b", 3}, {"/c", 1}}, "xxs"},
        {"ties by path", {newest}, {{"/c", 1}, {"/b", 1}, {"/d", 1}}, "xsx"},
        {"ties by the next rule", {newest, path}, {{"/a/1", 1}, {"/z", 1}, {"/b", 0}}, "xsx"},
        {"without a date it is not the oldest", {oldest}, {{"/a", {}}, {"/b", 9}}, "xs"},
        {"before 1970", {oldest}, {{"/a", 5}, {"/b", -5}}, "xs"},
        {"letters, not bytes", {path}, {{"/\xC3\xA4\xC3\xB6", 0}, {"/abc", 0}}, "sx"},
        {"names, not paths", {name}, {{"/long/long/x", 0}, {"/a/xy", 0}}, "sx"},
        {"in a folder and below", {inB}, {{"/a/x"}, {"/b/c/x"}, {"/bb/x"}}, "xsx"},
        {"in none of them", {inB, newest}, {{"/a/x", 1}, {"/c/x", 2}}, "xs"},
        {"the best place first", {places}, {{"/b/x"}, {"/c/x"}, {"/a/x"}}, "xsx"},
        {"no rule", {}, {{"/b"}, {"/a"}}, "xs"},
        {"a hard link of what stays", {oldest}, {{"/a", 1, 7}, {"/b", 1, 7}, {"/c", 2}}, "ssx"},
        {"hard links that both go", {oldest}, {{"/a", 2, 7}, {"/b", 2, 7}, {"/c", 1}}, "xxs"},
        {"numbers that do not last tell no names apart",
         {},
         {{"/a", 1, 7, false, "", true},
          {"/b", 1, 8, false, "", true},
          {"/c", 1, 0, false, "", true}},
         "ssx"},
        {"a link is never the copy", {newest}, {{"/l", 9, 0, false, "/x"}, {"/b", 1}}, "xs"},
        {"a link to what stays",
         {newest},
         {{"/l", 9, 0, false, "/b"}, {"/b", 1}, {"/c", 0}},
         "ssx"},
        {"a link to a name of what stays",
         {oldest},
         {{"/l", 9, 0, false, "/b"}, {"/a", 1, 7}, {"/b", 1, 7}, {"/c", 2}},
         "sssx"},
        {"links alone", {newest}, {{"/l", 9, 0, false, "/x"}, {"/m", 1, 0, false, "/y"}}, "ss"},
        {"protected ones stay, all others go",
         {newest},
         {{"/a", 9}, {"/p", 1, 0, true}, {"/q", 2, 0, true}},
         "xss"},
        {"a name of a protected one",
         {newest},
         {{"/a", 9}, {"/p", 1, 7, true}, {"/b", 1, 7}},
         "xss"},
        {"a protected link is no copy",
         {newest},
         {{"/p", 9, 0, true, "/x"}, {"/b", 1}, {"/c", 2}},
         "sxs"},
        {"one alone", {newest}, {{"/a"}}, "s"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(Group(each.copies).kept(each.rules), each.expected) << each.what;
}

TEST(KeepRule, IsWrittenInOneWay) {
    KeepMember behindLink;
    behindLink.path = "/a/l/x";
    behindLink.place = "/b/x";
    for (const char* folder : {"/a/l", "/b"}) EXPECT_TRUE(liesIn(behindLink, folder)) << folder;
    EXPECT_FALSE(liesIn(behindLink, "/c"));
    EXPECT_EQ(keepRuleOf("newest"), KeepRule{By::Newest});
    EXPECT_EQ(keepRuleOf("shortest-name"), KeepRule{By::ShortestName});
    EXPECT_EQ(keepRuleOf("path:/a:b"), (KeepRule{By::BestPlace, {"/a:b"}}));
    EXPECT_EQ(keepRuleOf("path:/b//"), (KeepRule{By::BestPlace, {"/b"}}));
    for (const char* wrong : {"", "Newest", "path:", "path", "new", "path:b", "path:/a/../b"})
        EXPECT_EQ(keepRuleOf(wrong), std::nullopt) << wrong;
}

TEST(KeepRule, TicksByFolderNeverTakeTheLastCopy) {
    const struct {
        const char* what;
        std::vector<Copy> copies;
        const char* before;
        const char* after;
    } cases[] = {
        {"others stay outside", {{"/d/b"}, {"/d/e/a"}, {"/x"}}, "...", "xx."},
        {"all within: the first by path stays", {{"/d/b"}, {"/d/a"}}, "..", "x."},
        {"what stays outside was ticked", {{"/d/b"}, {"/d/a"}, {"/x"}}, "..x", "x.x"},
        {"the clear one within stays", {{"/d/a"}, {"/d/b"}}, "x.", "x."},
        {"nothing is clear", {{"/d/a"}, {"/x"}}, "xx", "xx"},
        {"a protected one is the copy", {{"/d/a"}, {"/d/p", 0, 0, true}}, "..", "x."},
        {"outside is a link alone", {{"/d/a"}, {"/d/b"}, {"/l", 0, 0, false, "/y"}}, "...", ".x."},
        {"a name of what stays outside", {{"/d/a", 0, 7}, {"/x", 0, 7}, {"/d/b"}}, "...", "..x"},
    };
    for (const auto& each : cases) {
        const Group group(each.copies);
        std::vector<std::uint8_t> ticked;
        for (const char c : std::string_view(each.before)) ticked.push_back(c == 'x' ? 1 : 0);
        tickWithin("/d", group.members, ticked);
        std::string after;
        for (const std::uint8_t one : ticked) after += one != 0 ? 'x' : '.';
        EXPECT_EQ(after, each.after) << each.what;
    }
}

// What is asked of a rule, as sentences over all pairs, and the order as a whole sort.
TEST(KeepRule, AgreesWithItsSentences) {
    const auto check = [] {
        const auto number = [](int below) { return *rc::gen::inRange(0, below); };
        std::vector<Copy> copies;
        for (int i = 0, count = 1 + number(6); i < count; ++i) {
            Copy copy{fmt::format("/{}/{}{}",
                                  std::string(std::size_t(1 + number(2)), char('a' + number(3))), i,
                                  std::string(std::size_t(number(3)), 'n'))};
            copy.modified = number(4) == 0 ? std::nullopt : std::optional<std::int64_t>(number(3));
            if (number(3) == 0) copy.inode = 1U + std::uint64_t(number(2));
            copy.isProtected = number(5) == 0;
            if (number(5) == 0)
                copy.leadsTo =
                    copies.empty() ? "/out" : copies[std::size_t(number(int(copies.size())))].path;
            copies.push_back(copy);
        }
        KeepRules rules;
        for (int i = number(4); i > 0; --i)
            rules.push_back({static_cast<By>(number(5)), {"/b", "/aa"}});
        const Group group(copies);
        const auto rank = [&](std::size_t i) {
            const Copy& copy = copies[i];
            std::vector<std::int64_t> keys{copy.isProtected ? 0 : 1};
            const auto slash = copy.path.rfind('/');
            for (const KeepRule& rule : rules) {
                const std::int64_t late = copy.modified ? 0 : 1, date = copy.modified.value_or(0);
                switch (rule.by) {
                    case By::Newest: keys.insert(keys.end(), {late, -date}); break;
                    case By::Oldest: keys.insert(keys.end(), {late, date}); break;
                    case By::ShortestPath: keys.push_back(std::int64_t(copy.path.size())); break;
                    case By::ShortestName:
                        keys.push_back(std::int64_t(copy.path.size() - slash));
                        break;
                    case By::BestPlace:
                        keys.push_back(copy.path.starts_with("/b/")    ? 0
                                       : copy.path.starts_with("/aa/") ? 1
                                                                       : 2);
                        break;
                }
            }
            return std::pair(keys, copy.path);
        };
        std::optional<std::size_t> first;
        for (std::size_t i = 0; i < copies.size(); ++i)
            if (copies[i].leadsTo.empty() && (!first || rank(i) < rank(*first))) first = i;
        std::string expected;
        const auto isOther = [&](const Copy& a, const Copy& b) {  // a hard link of it
            return a.leadsTo.empty() && b.leadsTo.empty() && a.inode != 0 && a.inode == b.inode;
        };
        const auto isBase = [&](std::size_t i) { return first == i || copies[i].isProtected; };
        const auto hasFile = [&](std::size_t i) {
            bool stays = !first || isBase(i);
            for (std::size_t k = 0; k < copies.size(); ++k)
                stays |= isBase(k) && isOther(copies[i], copies[k]);
            return stays;
        };
        for (std::size_t i = 0; i < copies.size(); ++i) {
            bool stays = hasFile(i);
            for (std::size_t k = 0; k < copies.size(); ++k) {
                const Copy& b = copies[k];
                stays |= hasFile(k) && !copies[i].leadsTo.empty() &&
                         copies[i].leadsTo == (b.leadsTo.empty() ? b.path : b.leadsTo);
            }
            expected += stays ? 's' : 'x';
        }
        RC_ASSERT(group.kept(rules) == expected);
    };
    EXPECT_TRUE(rc::check(check));
}

/// A tree of groups with the copies "/N/name", of which the given ones are protected.
class Protected : public ::testing::Test {
protected:
    TreeNode::Pointer add(std::string_view copies) {  // p protected, l a protected link, . neither
        const auto group = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("g"));
        bool isProtected = true;
        for (const char c : copies) {
            auto leaf = SimpleNodeData::leafDataWithName(
                fmt::format("/{}/name", group->numberOfChildren()));
            leaf->setProtected(c != '.');
            leaf->setIdentity(
                EntryIdentity{.device = 1,
                              .inode = ++m_inode,
                              .type = c == 'l' ? FileType::SymbolicLink : FileType::Regular});
            isProtected &= c != '.';
            group->insertChild(SimpleTreeNode::treeNodeWithData(leaf), group->numberOfChildren());
        }
        simpleData(*group)->setProtected(isProtected);
        root->insertChild(group, root->numberOfChildren());
        return group;
    }
    std::string seen() const {
        std::string text;
        for (const auto& group : root->children()) {
            text += std::to_string(simpleData(*group)->selectNum());
            for (const auto& leaf : group->children())
                text += simpleData(*leaf)->selectNum() == 1 ? 'x' : '.';
            text += ' ';
        }
        return text + std::to_string(selection.sums().copies);
    }
    std::shared_ptr<SimpleTreeNode> root =
        SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
    DuplicateSelection selection;
    std::uint64_t m_inode = 0;
};

TEST_F(Protected, IsTickedInNoWay) {
    const auto mixed = add(".p."), whole = add("pp"), linked = add("l..");
    EXPECT_EQ(selection.clickLeaf(mixed->childAtIndex(1)), LeafClick::Protected);
    selection.tickLast(mixed->childAtIndex(1));
    selection.clickGroup(*whole);
    selection.tickAllBut(*whole->childAtIndex(0));
    EXPECT_EQ(seen(), "0... 0.. 0... 0");
    selection.clickGroup(*mixed);
    selection.clickGroup(*linked);
    EXPECT_EQ(seen(), "2x.x 0.. 2.x. 3") << "the protected one is the copy, a link is none";
    selection.clearTree(*root);
    selection.setAll(*root, true);
    EXPECT_EQ(seen(), "2x.x 0.. 2.x. 3");
    selection.tickAllBut(*mixed->childAtIndex(0));
    EXPECT_EQ(seen(), "2..x 0.. 2.x. 2");
    selection.clearTree(*root);
    EXPECT_EQ(selection.clickLeaf(mixed->childAtIndex(0)), LeafClick::Ticked);
    EXPECT_EQ(selection.clickLeaf(mixed->childAtIndex(2)), LeafClick::Ticked)
        << "no question: a copy stays";
    selection.setTicks(*whole, std::vector<std::uint8_t>{1, 1});
    KeepTicks ticks(selection);
    ticks.tickFolder(*root, "/");
    ticks.finish();
    EXPECT_EQ(seen(), "2x.x 0.. 2..x 3");
    ticks.keep(*root, {});
    ticks.finish();
    EXPECT_EQ(seen(), "2x.x 0.. 2..x 3");
    ticks.untickFolder(*root, "/0");
    ticks.finish();
    EXPECT_EQ(seen(), "2..x 0.. 2..x 2");
    EXPECT_EQ(selection.allSelectNumArr().size(), 2U);

    const LinuxFileSystem files;
    simpleData(*mixed->childAtIndex(1))->setSelectNum(1);
    const std::vector<TreeNode::Pointer> taken{mixed->childAtIndex(1), mixed->childAtIndex(0)};
    RemovalPlan plan(files, taken, RemovalPlan::Comparing::Always);
    plan.prepare();
    EXPECT_EQ(plan.size(), 1U) << "what is clear stays, though it is on the list";
    const auto look = plan.judge(0);
    ASSERT_FALSE(look.has_value()) << "also when it came onto the list";
    EXPECT_EQ(look.error().kind, StayReason::Protected);
}

TEST_F(Protected, AllCopiesGoOnlyWhereAPersonSaidSo) {
    const auto both = add(".."), insisted = add(".."), early = add("..."), linked = add(".l");
    KeepTicks ticks(selection);
    const auto elsewhere = [&] {
        ticks.untickFolder(*root, "/elsewhere");
        ticks.finish();
    };
    EXPECT_EQ(selection.clickLeaf(both->childAtIndex(1)), LeafClick::Ticked);
    selection.setAll(*root, true);  // leaves the last as it was
    elsewhere();
    EXPECT_EQ(seen(), "2xx 2x. 2xx. 0.. 5") << "the removal keeps one of both";
    selection.tickLast(insisted->childAtIndex(1));
    elsewhere();
    EXPECT_EQ(seen(), "2xx 1xx 2xx. 0.. 6");
    selection.clearTree(*root);
    selection.tickLast(early->childAtIndex(0));
    selection.clickGroup(*linked);
    EXPECT_EQ(seen(), "0.. 0.. 2x.. 0.. 1") << "of what changed while one was asked";
}

TEST_F(Protected, WhatIsDroppedHalfwayIsOnNoList) {
    for (int i = 0; i < 2000; ++i) static_cast<void>(add(".."));
    selection.setAll(*root, true);
    KeepTicks ticks(selection);
    ticks.keep(*root, {{By::Newest}, {By::BestPlace, {"/1"}}});
    ASSERT_FALSE(ticks.step({}));
    ticks.drop();
    EXPECT_EQ(selection.allSelectNumArr().size(), selection.sums().copies);
}

TEST_F(Protected, ANameThatIsGoneIsNoMoreToWaitFor) {
    const auto group = add("...");
    for (std::size_t i = 0; i < 2; ++i) {
        SimpleNodeData& leaf = *simpleData(*group->childAtIndex(i));
        leaf.setIdentity(EntryIdentity{.device = 1, .inode = 70, .type = FileType::Regular});
        leaf.setFileSize(10);
        leaf.setHardLinks(2);
    }
    const RemovalPlan::Excuse back{group->childAtIndex(0), 5, false};
    RemovalPlan::excuse(std::vector{back});
    EXPECT_EQ(selection.clickLeaf(group->childAtIndex(1)), LeafClick::Ticked);
    EXPECT_EQ(selection.sums().bytes, 0U) << "the other name is there still";
    const RemovalPlan::Excuse gone{group->childAtIndex(0), 6, true};
    RemovalPlan::excuse(std::vector{gone});
    selection.recount();
    EXPECT_EQ(selection.sums().bytes, 10U);
}

TEST_F(Protected, RulesInPiecesTickAsAtOnce) {
    for (int i = 0; i < 2000; ++i) static_cast<void>(add(i % 7 == 0 ? ".p." : "..."));
    KeepTicks ticks(selection);
    ticks.keep(*root, {{By::ShortestPath}});
    int pieces = 0;
    while (!ticks.step({})) ++pieces;
    const std::string inPieces = seen();
    EXPECT_GT(pieces, 4);
    EXPECT_FALSE(ticks.isPending());
    selection.setAll(*root, true);
    ticks.keep(*root, {{By::ShortestPath}});
    ticks.finish();
    EXPECT_EQ(seen(), inPieces);
    EXPECT_EQ(selection.sums().copies, 4000U);
}

}  // namespace
}  // namespace orrinvale
