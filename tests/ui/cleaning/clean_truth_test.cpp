// What the cleaning page says is so, and what goes is what a person saw: under a filter, after a
// scan that was stopped, while others remove, at the end of the program.
#include <QLineEdit>
#include <QTreeView>

#include "engine/cleaning/KeepList.h"
#include "engine/files/DurableFile.h"
#include "engine/removal/AsideJournal.h"
#include "engine/removal/RemovalTurn.h"
#include "ui/cleaning/CleanDesk.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;
using State = MainViewController::State;

// While it lives nobody else replaces the file.
std::unique_ptr<DurableFile> writer(const std::string& file) {
    static_cast<void>(DurableFile::makeFolder(folderOf(file)));
    auto begun = DurableFile::begin(file);
    EXPECT_TRUE(begun.has_value());
    return std::make_unique<DurableFile>(std::move(*begun));
}

TEST(CleanTruth, AFilterKnowsNoCaseOfAnyLetter) {
    struct Case {
        const char *name, *words;
        bool isShown;
    };
    for (const auto& [name, words, isShown] :
         {Case{"Report.PDF", "PORT.pdf", true}, Case{"a@b", "a`b", false}, Case{"x", "", true},
          Case{"", "x", false}, Case{"\u00c4rger.txt", "\u00e4RG", true},
          Case{"plain", "\u00e4", false}, Case{"\u00e4 Z", "z", true}})
        EXPECT_EQ(hasWords(name, QString::fromUtf8(words)), isShown) << name << ' ' << words;
}

TEST(CleanTruth, WhatAFilterHidesStaysAndIsTold) {
    CleanDesk desk{{".cache/alpha", 1'000},
                   {".cache/beta", 2'000},
                   {"Downloads/alpha.iso", 4'000},
                   {".local/share/Trash/files/old", 8'000}};
    desk.tickOnly({UserCaches, UserTrash, UserDownloads});
    ASSERT_TRUE(desk.scan());
    auto& field = desk.control<QLineEdit>("filterField");
    auto& outline = desk.control<QTreeView>("outline");
    auto& box = desk.control<TickBox>("button");
    const int width = field.width();
    QTest::keyClicks(&field, QStringLiteral("ALPHA"));
    QTest::qWait(20);
    EXPECT_EQ(field.width(), width) << "the bar does not move under who types";
    EXPECT_EQ(desk.sentence("stateTextField"), "2 of 2 selected, 5.00 KB will free up.");
    EXPECT_EQ(desk.textOf("cleanButton"), "Clean 5.00 KB");
    // All that is shown is ticked: the box above clears that, and nothing else.
    box.click();
    EXPECT_EQ(desk.settings(), "020010");
    EXPECT_EQ(int(box.state()), int(TickState::Nothing));
    EXPECT_FALSE(desk.isEnabled("cleanButton"));
    desk.tick(outline, desk.rowOf(outline, "/alpha"));
    EXPECT_EQ(int(box.state()), int(TickState::Some));
    box.click();
    EXPECT_EQ(desk.settings(), "010011");
    EXPECT_EQ(int(box.state()), int(TickState::All));
    desk.page->shouldSelectRow(2);
    EXPECT_EQ(desk.textOf("oneListCleanButton"), "Clean 1.00 KB");
    desk.control<TickBox>("selectButton1").click();
    EXPECT_FALSE(desk.isEnabled("oneListCleanButton"));
    desk.control<TickBox>("selectButton1").click();
    desk.page->shouldSelectRow(0);
    desk.dialogs.willAnswer(0);
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.dialogs.alerts().at(1).text.toStdString(),
              "2 entries, 5.00 KB. They cannot be brought back. 2 more are ticked that the filter "
              "hides; they stay.");
    EXPECT_FALSE(desk.has(".cache/alpha") || desk.has("Downloads/alpha.iso"));
    EXPECT_TRUE(desk.has(".cache/beta") && desk.has(".local/share/Trash/files/old"));
    EXPECT_EQ(desk.sentence("stateTextField"), "5.00 KB is cleaned");
    EXPECT_EQ(desk.outline(), "User Caches 1/1 2.00 KB x\nTrash 1/1 8.00 KB x\n");
    // A filter that nobody sees is none.
    QTest::keyClicks(&field, QStringLiteral("beta"));
    desk.page->shouldSelectRow(9);
    desk.page->shouldSelectRow(0);
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(desk.textOf("cleanButton"), "Clean 10.00 KB");
    // Nor does Escape take back what is not there.
    desk.click("scanButton");
    EXPECT_TRUE(desk.isShown("v3MainView") && desk.isShown("outlineButton"));
    desk.page->shouldSelectRow(2);
    EXPECT_FALSE(desk.isShown("outlineButton")) << "it leads from the overview";
    for (const char* const shown : {"v3MainView", "startView"}) {
        desk.control("scanButton").setFocus();
        QTest::keyClick(&desk.control("scanButton"), Qt::Key_Escape);
        EXPECT_TRUE(desk.isShown(shown));
    }
}

TEST(CleanTruth, WhatIsTickedAtTheAnswerIsWhatWasAsked) {
    CleanDesk desk{{".cache/a", 1'000}, {".cache/b", 1'000}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    desk.list(UserCaches).toggleRow(0);
    desk.dialogs.willAnswer(0);
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_TRUE(desk.page->isAsking());
    // The sums stay the same.
    desk.list(UserCaches).toggleRow(0);
    desk.list(UserCaches).toggleRow(1);
    ASSERT_TRUE(desk.waitForRest());
    ASSERT_SOON(desk.dialogs.alerts().size() == 2);
    EXPECT_EQ(desk.dialogs.alerts()[1].title.toStdString(), "Nothing was removed.");
    EXPECT_TRUE(desk.has(".cache/a") && desk.has(".cache/b"));
    EXPECT_TRUE(desk.isEnabled("cleanButton"));
}

TEST(CleanTruth, AlwaysKeepTakesTheRowAloneAndIsNotForgotten) {
    CleanDesk desk{
        {".cache/a", 1'000}, {".cache/b", 2'000}, {".cache/c", 3'000}, {"Downloads/d", 4'000}};
    desk.tickOnly({UserCaches, UserDownloads});
    ASSERT_TRUE(desk.scan());
    auto& outline = desk.control<QTreeView>("outline");
    outline.expandAll();
    outline.setCurrentIndex(desk.rowOf(outline, "/d"));
    const auto keep = [&](const char* name) {
        return CleanDesk::chooseInMenu(outline, desk.rowOf(outline, name), "Always Keep");
    };
    ASSERT_TRUE(keep("/d"));
    ASSERT_SOON(desk.outline() == "User Caches 3/3 6.00 KB xxx\n");
    EXPECT_TRUE(outline.isExpanded(outline.model()->index(0, 0)));
    ASSERT_TRUE(keep("/b"));
    ASSERT_SOON(desk.outline() == "User Caches 2/2 4.00 KB xx\n");
    EXPECT_TRUE(outline.isExpanded(outline.model()->index(0, 0)));
    EXPECT_EQ(desk.textOf("cleanButton"), "Clean 4.00 KB");
    EXPECT_EQ(desk.textOf("quietLine"), "kept: 2 entries, 6.00 KB");
    EXPECT_EQ(desk.textOf("keptReason"), "because: you asked to keep it");
    desk.page->shouldSelectRow(2);
    auto& list = desk.control<QTreeView>("list1");
    EXPECT_EQ(list.model()->rowCount(), 2);
    desk.tick(list, desk.rowOf(list, "/c"));
    EXPECT_EQ(desk.outline(), desk.list(UserCaches).scanFiles->at(0)->bIsSelected
                                  ? "User Caches 1/2 4.00 KB x.\n"
                                  : "User Caches 1/2 4.00 KB .x\n");
    desk.tick(list, desk.rowOf(list, "/c"));
    desk.page->shouldSelectRow(0);

    // A scan that looked at the caches before the wish was noted.
    auto writing = writer(KeepList::fileIn(desk.home.tree.at("settings")));
    ASSERT_TRUE(keep("/a"));
    EXPECT_EQ(desk.outline(), "User Caches 1/1 3.00 KB x\n");  // nor can a clean take it now
    desk.held.hold(desk.home.tree.at("Downloads"));
    desk.click("rescanButton");
    ASSERT_SOON(desk.page->finishScanCount() == 1);
    writing.reset();
    ASSERT_SOON(contentOf(KeepList::fileIn(desk.home.tree.at("settings"))).find("/a\n") !=
                std::string::npos);
    QTest::qWait(50);  // the word of it
    desk.held.letAllGo();
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.outline(), "User Caches 1/1 3.00 KB x\n");
    desk.page->shouldSelectRow(2);
    EXPECT_EQ(list.model()->rowCount(), 1);
}

TEST(CleanTruth, TheTrashTellsWhatIsInItNow) {
    CleanDesk desk{{".local/share/Trash/files/t", 1'000}, {".local/share/Trash/files/u", 2'000}};
    desk.tickOnly({UserTrash});
    ASSERT_TRUE(desk.scan());
    desk.page->shouldSelectRow(5);
    const auto says = [&desk](const char* words) {
        return desk.sentence("noteTextField").find(words) != std::string::npos;
    };
    EXPECT_TRUE(says("2 entries"));
    desk.write(".local/share/Trash/files/v", 3'000);
    desk.click("rescanButton");
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_TRUE(says("3 entries")) << desk.sentence("noteTextField");
    auto& list = desk.control<QTreeView>("list4");
    ASSERT_TRUE(CleanDesk::chooseInMenu(list, desk.rowOf(list, "/u"), "Always Keep"));
    EXPECT_TRUE(says("2 entries")) << desk.sentence("noteTextField");
}

// Nothing is called tidy that nobody has looked at.
TEST(CleanTruth, AScanThatWasStoppedOrClosedSaysSo) {
    CleanDesk desk;
    const auto picture = [&desk] {
        return desk.control("emptyView").findChild<PictureView*>()->name().toStdString();
    };
    desk.held.hold(desk.home.tree.at("Downloads"));
    desk.write("Downloads/a", 1'000);
    desk.write(".cache/b/.git/x", 1);
    desk.click("startButton");
    ASSERT_SOON(desk.page->finishScanCount() == 1);
    desk.click("stopButton");
    desk.held.letAllGo();
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.textOf("titleLabel"), "Stopped before its end: there may be more");
    EXPECT_EQ(desk.textOf("emptyLabel"), "The scan was stopped before its end. There may be more.");
    EXPECT_EQ(picture(), "empty_search");
    EXPECT_FALSE(desk.isShown("stateTextField")) << "0 of 0";
    desk.page->shouldSelectRow(6);
    EXPECT_EQ(desk.textOf("emptyLabel"), "Downloads: the scan was stopped before its end.");
    desk.page->shouldSelectRow(2);
    EXPECT_EQ(desk.textOf("emptyLabel"), "Nothing in User Caches can go.");
    EXPECT_EQ(picture(), "empty_done");
    desk.page->shouldSelectRow(0);

    ASSERT_TRUE(desk.home.tree.write("settings/always-keep", "no path\n"));
    ASSERT_TRUE(desk.scan());
    EXPECT_EQ(desk.textOf("titleLabel"), "Nothing can go");
    EXPECT_EQ(desk.textOf("emptyLabel"),
              "Nothing was found that can go, but not everything could be looked at.");
    desk.page->shouldSelectRow(2);
    EXPECT_TRUE(desk.textOf("emptyLabel").starts_with("User Caches was left alone: "))
        << desk.textOf("emptyLabel");
    EXPECT_EQ(picture(), "empty_error");
    CategoryListing silent;
    silent.closed.push_back({{}, "no answer for 5 seconds"});
    CategoryListing open = silent;
    for (const auto& [bytes, words] : {std::pair(10, "its socket"), {2'000, "it is open"}}) {
        CleanRow& row = open.kept.emplace_back();
        row.keptBytes = std::uint64_t(bytes);
        row.keptWords = words;
    }
    const KeptWords kept = keptWords({{QStringLiteral("Trash"), &open}});
    EXPECT_EQ(kept.count, QStringLiteral("kept: 3 entries, 2.01 KB"));
    EXPECT_EQ(kept.because, QStringLiteral("because: it is open; and for other reasons"));
    EXPECT_EQ(keptLines({{QStringLiteral("Trash"), &silent}}).back().trimmed(),
              QStringLiteral("Trash"));
}

// What the disk gave back is told with what was promised, and to the clean that it belongs to.
TEST(CleanTruth, TheGainOfAnEarlierCleanIsNotToldLate) {
    CleanDesk desk{{".cache/a", 1'000}, {".cache/b", 9'000'000}, {".cache/k/.git/x", 1}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    desk.list(UserCaches).toggleRow(desk.list(UserCaches).scanFiles->at(0)->name == "a" ? 1 : 0);
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.state() == State::CleaningAll);
    ASSERT_TRUE(desk.waitForRest());
    // Before the event loop has its turn again.
    desk.page->scanButtonAction();
    ASSERT_TRUE(desk.waitForRest());
    QTest::qWait(50);
    EXPECT_FALSE(desk.isShown("gainLabel") || desk.isShown("gainReason"));
    EXPECT_TRUE(desk.isShown("keptReason"));
    EXPECT_EQ(desk.noted(), 1'000U);
    EXPECT_SOON(desk.sentence("noteTextField").starts_with("1.00 KB"));
    desk.list(UserCaches).toggleRow(0);
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.state() == State::CleaningAll);
    ASSERT_TRUE(desk.waitForRest());
    ASSERT_SOON(desk.isShown("gainLabel"));
    EXPECT_TRUE(desk.isShown("quietLine") && !desk.isShown("keptReason")) << "no room for both";
    const auto isReason = [](const QString& words) {
        return words.startsWith(QStringLiteral("9.00 MB were"));
    };
    EXPECT_TRUE(isReason(desk.control("gainLabel").toolTip()));
    EXPECT_TRUE(isReason(desk.control("gainReason").accessibleDescription()));
    desk.dialogs.willAnswer(0);
    desk.control("gainReason").setFocus(Qt::TabFocusReason);
    QTest::keyClick(&desk.control("gainReason"), Qt::Key_Space);
    EXPECT_TRUE(isReason(desk.dialogs.alerts().back().text));
}

TEST(CleanTruth, WaitsForAnotherRemovalAndMayBeStoppedMeanwhile) {
    for (const bool isStopped : {false, true}) {
        CleanDesk desk{{".cache/a", 1'000}, {"Downloads/b", 1'000}};
        desk.tickOnly({UserCaches});
        ASSERT_TRUE(desk.scan());
        const std::atomic<bool> never{false};
        auto other = std::make_unique<RemovalTurn>(asideJournalFolder(desk.home.tree.at("state")),
                                                   never, [] {});
        desk.dialogs.willAnswer(0);
        desk.click("cleanButton");
        ASSERT_SOON(desk.textOf("titleLabel") == "Waiting for another removal to end");
        EXPECT_TRUE(desk.page->isRemoving());
        if (isStopped) {
            desk.click("stopButton");
            ASSERT_TRUE(desk.waitForRest());
            EXPECT_EQ(desk.free, 1'000'000'000U) << "nothing was prepared for a turn of others";
        }
        other.reset();
        ASSERT_TRUE(desk.waitForRest());
        EXPECT_EQ(desk.has(".cache/a"), isStopped);
        EXPECT_EQ(desk.sentence("stateTextField"),
                  isStopped ? "0.00 KB is cleaned" : "1.00 KB is cleaned");
    }
}

TEST(CleanTruth, TheProgramEndsOnceTheCleanIsNoted) {
    CleanDesk desk{{".cache/a", 1'000}};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    auto writing = writer(desk.home.tree.at("state/.kelpford.log.bin"));
    desk.dialogs.willAnswer(0);
    desk.click("cleanButton");
    ASSERT_SOON(desk.state() == State::CleaningAll);
    ASSERT_TRUE(desk.waitForRest());
    desk.page->giveUp();  // the program is asked to end
    EXPECT_TRUE(desk.page->isRemoving());
    EXPECT_EQ(desk.noted(), 0U);
    writing.reset();
    ASSERT_SOON(!desk.page->isRemoving());
    EXPECT_EQ(desk.noted(), 1'000U);
}

}  // namespace
}  // namespace orrinvale::testing
