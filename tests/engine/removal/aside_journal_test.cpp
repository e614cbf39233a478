// What a removal that ended in the middle leaves behind, and what the next start makes of it.
#include "engine/removal/AsideJournal.h"

#include "engine/files/asideName.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr const char* token = "0123456789abcdef";

AsideRecord asideRecordOf(const TestTree& tree, const std::string& name) {
    struct stat entry {};
    struct stat folder {};
    (void)::lstat(tree.at(name).c_str(), &entry);
    (void)::stat(tree.path().c_str(), &folder);
    return {token, tree.at(name), folder.st_dev, entry.st_ino,
            S_ISDIR(entry.st_mode) ? FileType::Folder : FileType::Regular};
}

void setAside(const TestTree& tree, const std::string& name) {
    ASSERT_EQ(::rename(tree.at(name).c_str(), tree.at(asideName(token, name)).c_str()), 0);
}

TEST(AsideJournal, EachRecordComesBackByteForByte) {
    const std::vector<AsideRecord> records{
        {token, "/a", 1, 2, FileType::Regular},
        {token, "/line\nbreak \\n \\ and space", 3, ~0ULL, FileType::Folder},
        {token, std::string("/\xff\xfe/") + std::string(255, 'x'), 5, 6, FileType::SymbolicLink}};
    const std::string text = writeAsideJournal(records);
    EXPECT_EQ(parseAsideJournal(text), records);
    // As the power leaves it: the last line is not whole.
    for (std::size_t cut = 1; cut < 40; ++cut)
        EXPECT_EQ(parseAsideJournal(std::string_view(text).substr(0, text.size() - cut)).size(), 2U)
            << cut;
}

TEST(AsideJournal, WhatCouldLeadElsewhereIsNoRecord) {
    const std::string head = writeAsideJournal({});
    for (const std::string line :
         {"0123456789abcdef 1 2 1 a", "0123456789abcdef 1 2 1 /a/../b",
          "0123456789abcdef 1 2 1 /a/", "0123456789abcdef 1 2 1 //a", "0123456789abcdef 1 2 1 /",
          "0123456789abcdef 1 2 1 ", "0123456789abcdef 1 2 99 /a", "0123456789abcdef 1 -2 1 /a",
          "0123456789ABCDEF 1 2 1 /a", "../../../../../x 1 2 1 /a", "0123456789abcdef 1 2 1 /a\\x",
          "0123456789abcdef 1 2 /a", ""})
        EXPECT_THAT(parseAsideJournal(head + line + '\n'), IsEmpty()) << line;
    EXPECT_THAT(parseAsideJournal("0123456789abcdef 1 2 1 /a\n"), IsEmpty()) << "no journal";
}

TEST(AsideJournal, TheNextStartBringsBackWhatIsAsideAndNothingElse) {
    struct Case {
        const char* what;
        std::function<void(TestTree&)> meanwhile;
        std::size_t broughtBack, stayed, later;
        const char* content;  // under the own name afterwards
    };
    const auto aside = [](TestTree& tree) { setAside(tree, "f"); };
    const std::vector<Case> cases{
        {"it is aside", aside, 1, 0, 0, "mine"},
        {"it was not touched yet", [](TestTree&) {}, 0, 0, 0, "mine"},
        {"it is gone", [](TestTree& tree) { ::unlink(tree.at("f").c_str()); }, 0, 0, 0, ""},
        {"its name was taken",
         [&](TestTree& tree) {
             aside(tree);
             tree.write("f", "another");
         },
         0, 1, 0, "another"},
        {"another entry bears the name aside",
         [](TestTree& tree) {
             ::unlink(tree.at("f").c_str());
             tree.folder(asideName(token, "f"));
         },
         0, 1, 0, ""},
    };
    for (const Case& c : cases) {
        TestTree tree;
        TestTree state;
        ASSERT_TRUE(tree.write("f", "mine"));
        {
            auto journal = AsideJournal::begin(state.at("removals"));
            ASSERT_TRUE(journal.has_value());
            const std::vector<AsideRecord> records{asideRecordOf(tree, "f")};
            ASSERT_TRUE(journal->add(records).has_value());
            c.meanwhile(tree);
            EXPECT_THAT(bringBackAside(LinuxFileSystem(), state.at("removals")).broughtBack,
                        IsEmpty())
                << "the removal still runs";
        }
        const AsideRecovery recovery = bringBackAside(LinuxFileSystem(), state.at("removals"));
        EXPECT_EQ(recovery.broughtBack.size(), c.broughtBack) << c.what;
        EXPECT_EQ(recovery.stayed.size(), c.stayed) << c.what;
        EXPECT_EQ(recovery.later, c.later) << c.what;
        EXPECT_EQ(contentOf(tree.at("f")), c.content) << c.what;
        const AsideRecovery again = bringBackAside(LinuxFileSystem(), state.at("removals"));
        EXPECT_EQ(again.broughtBack.size() + again.stayed.size() + again.later, 0U) << c.what;
    }
}

// A link that took the name, as far as it came: taken back only where nothing is lost by it.
TEST(AsideJournal, ALinkGivesTheNameBackAtAnyStep) {
    struct Case {
        const char* what;
        std::function<void(TestTree&, const std::string& aside)> meanwhile;
        bool isReplaced;
        std::size_t stayed;
        Strings left;
    };
    const std::string aside = asideName(token, "f");
    const auto linked = [](TestTree& tree, const std::string& own) {
        setAside(tree, "f");
        ASSERT_TRUE(tree.hardLink("kept", own));
    };
    const auto exchanged = [](TestTree& tree, const std::string& name) {
        ASSERT_TRUE(tree.hardLink("kept", name));
    };
    const std::vector<Case> cases{
        {"linked",
         [&](TestTree& tree, const std::string&) { linked(tree, "f"); },
         true,
         0,
         {"f", "kept"}},
        {"linked by somebody to what has other rights",
         [&](TestTree& tree, const std::string&) {
             linked(tree, "f");
             tree.setMode("kept", 0600);
         },
         true,
         1,
         {"f", "kept", aside}},
        {"on its way back", exchanged, true, 0, {"f", "kept"}},
        {"no link was to be made", exchanged, false, 1, {"f", "kept", aside}},
        {"the last name of a file",
         [&](TestTree& tree, const std::string& name) {
             exchanged(tree, name);
             ::unlink(tree.at("kept").c_str());
         },
         true,
         1,
         {"f", aside}},
    };
    for (const Case& c : cases) {
        TestTree tree;
        const TestTree state;
        ASSERT_TRUE(tree.write("f", "mine") && tree.write("kept", "mine"));
        AsideRecord record = asideRecordOf(tree, "f");
        record.isReplaced = c.isReplaced;
        {
            auto journal = AsideJournal::begin(state.at("removals"));
            ASSERT_TRUE(journal.has_value() && journal->add({&record, 1}).has_value());
        }
        c.meanwhile(tree, aside);
        const AsideRecovery recovery = bringBackAside(LinuxFileSystem(), state.at("removals"));
        EXPECT_EQ(recovery.stayed.size(), c.stayed) << c.what;
        EXPECT_EQ(recovery.broughtBack.size(), 1 - c.stayed) << c.what;
        EXPECT_EQ(namesIn(tree.path()), c.left) << c.what;
        EXPECT_EQ(asideRecordOf(tree, "f").inode == record.inode,
                  c.what != std::string("linked by somebody to what has other rights"))
            << c.what;
    }
}

// Its disk is out: nobody knows what stands there, so that a later start asks again.
TEST(AsideJournal, AVolumeThatIsAbsentIsAskedLater) {
    TestTree tree;
    TestTree state;
    ASSERT_TRUE(tree.write("disk/f", "mine"));
    AsideRecord record = asideRecordOf(tree, "disk/f");
    ++record.device;
    {
        auto journal = AsideJournal::begin(state.at("removals"));
        ASSERT_TRUE(journal.has_value() && journal->add({&record, 1}).has_value());
    }
    ASSERT_EQ(::rename(tree.at("disk").c_str(), tree.at("out").c_str()), 0);
    for (int start = 0; start < 2; ++start)
        EXPECT_EQ(bringBackAside(LinuxFileSystem(), state.at("removals")).later, 1U);
}

TEST(AsideJournal, AJournalOfSomebodyElseOrBehindALinkIsLeftAlone) {
    TestTree tree;
    TestTree state;
    ASSERT_TRUE(tree.write("f", "mine"));
    const std::vector<AsideRecord> records{asideRecordOf(tree, "f")};
    setAside(tree, "f");
    ASSERT_TRUE(state.write("elsewhere", writeAsideJournal(records)));
    ASSERT_TRUE(state.symlink("../elsewhere", "removals/a.aside"));
    ASSERT_TRUE(state.fifo("removals/b.aside"));
    ASSERT_TRUE(state.write("removals/c.aside", writeAsideJournal(records)));
    if (::geteuid() == 0) ASSERT_EQ(::chown(state.at("removals/c.aside").c_str(), 65534, 65534), 0);
    else ASSERT_EQ(::unlink(state.at("removals/c.aside").c_str()), 0);
    EXPECT_THAT(bringBackAside(LinuxFileSystem(), state.at("removals")).broughtBack, IsEmpty());
    EXPECT_FALSE(isThere(tree.at("f")));
}

}  // namespace
}  // namespace orrinvale
