// Folders that are dropped while a page shows something already, and several at once.
#include <QTreeView>

#include "support/test.h"
#include "ui/support/LargePage.h"
#include "ui/support/PageWindow.h"
#include "ui/support/dropOn.h"

namespace orrinvale {
namespace {

using testing::dropOn;
using testing::LargePage;
using testing::PageWindow;

TEST(DroppedFolders, AreSearchedFromTheResultToo) {
    PageWindow on;
    for (const char* name : {"f/a.txt", "f/b.txt", "g/a.jpg", "g/b.jpg"})
        ASSERT_TRUE(on.tree.write(name, "same"));
    ASSERT_TRUE(on.search(on.tree.at("f")));
    const auto done = [&](const char* folder) {
        return on.waitFor([&] {
            return on.page().searchPath() == on.tree.at(folder) && on.page().bSearchFinished() &&
                   on.isShown("detailView");
        });
    };
    QWidget& list = *on.control<QTreeView>("outline").viewport();
    dropOn(list, {on.tree.at("g")});
    ASSERT_TRUE(done("g"));
    EXPECT_FALSE(on.isShown("onlyOneNote"));
    // With ticks the person is asked, and may think better of it.
    on.click("button");
    for (const int button : {1, 0}) {
        on.dialogs.willAnswer(button);
        dropOn(list, {on.tree.at("f")});
        QTest::qWait(10);
        EXPECT_EQ(on.page().searchPath() == on.tree.at("f"), button == 0);
    }
    ASSERT_TRUE(done("f"));
    EXPECT_EQ(on.dialogs.alerts().size(), 2U);
    EXPECT_FALSE(on.isShown("gainLabel"));
    // Of two the first, and the page says so during the search and after it.
    dropOn(list, {on.tree.at("g"), on.tree.at("f")});
    EXPECT_TRUE(on.isShown("onlyOneLabel"));
    ASSERT_TRUE(done("g"));
    EXPECT_EQ(on.textOf("onlyOneNote"), "One folder at a time: only g is searched");
    EXPECT_TRUE(on.isShown("onlyOneNote"));
}

TEST(DroppedFolders, AreLookedIntoFromTheListOfLargeFilesToo) {
    LargePage on;
    ASSERT_TRUE(on.tree.write("f/a", "1") && on.tree.write("g/b", "22"));
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    const auto title = [&] { return on.textOf("titleLabel"); };
    dropOn(*on.outline().viewport(), {on.tree.at("g"), on.tree.at("f")});
    EXPECT_EQ(title(), on.tree.at("g"));
    EXPECT_EQ(on.textOf("onlyOneNote"), "One folder at a time: only g is looked into");
    ASSERT_SOON(!on.page().isScan());
    on.tick("b");
    for (const int button : {1, 0}) {
        on.dialogs.willAnswer(button);
        dropOn(*on.outline().viewport(), {on.tree.at("f")});
        QTest::qWait(10);
        EXPECT_EQ(title(), on.tree.at(button == 0 ? "f" : "g"));
    }
    EXPECT_FALSE(on.isShown("onlyOneNote"));
    ASSERT_SOON(!on.page().isScan());
}

}  // namespace
}  // namespace orrinvale
