// Ticks of whole views: by a rule from the menu "Keep", and by folder from the menu of a row.
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTreeView>

#include "support/test.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

class Keeping : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string two = testing::someBytes(3000, 1), three = testing::someBytes(1000, 2);
        std::int64_t age = 0;
        for (const char* name : {"f/a/two.txt", "f/b/two.txt"}) write(name, two, ++age);
        for (const char* name : {"f/b/three.jpg", "f/a/three.jpg", "f/c/three.jpg"})
            write(name, three, ++age);
        ASSERT_TRUE(on.search(on.tree.at("f")));
    }
    void write(const char* name, const std::string& bytes, std::int64_t age) {
        ASSERT_TRUE(on.tree.write(name, bytes));
        const timespec times[2] = {{1'700'000'000 - age, 0}, {1'700'000'000 - age, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, on.tree.at(name).c_str(), times, 0), 0);
    }
    /// Opens the menu by its button or its key, and takes an entry. False where there is none.
    bool keep(const char* entry, bool byKey = false) {
        if (byKey) QTest::keyClick(&outline, Qt::Key_K, Qt::ControlModifier);
        else on.click("keepBtn");
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) return false;
        QAction* chosen = nullptr;
        for (QAction* const each : menu->actions())
            if (each->text() == QString::fromUtf8(entry)) chosen = each;
        if (chosen != nullptr) chosen->trigger();
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return chosen != nullptr;
    }
    /// The copies that are ticked, sorted.
    std::string ticked() {
        std::set<std::string> names;
        for (int g = 0; g < on.model().rowCount(); ++g) {
            const QModelIndex group = on.model().index(g, 0);
            for (int i = 0; i < on.model().rowCount(group); ++i) {
                const QModelIndex copy = on.model().index(i, 0, group);
                if (copy.data(TickModel::StateRole).toInt() == 1)
                    names.insert(on.nameOf(copy).substr(on.tree.at("f/").size()));
            }
        }
        std::string text;
        for (const std::string& name : names) text += name + ' ';
        return text;
    }

    testing::PageWindow on;
    QTreeView& outline = on.control<QTreeView>("outline");
};

TEST_F(Keeping, ARuleTicksTheViewAndTheNumbersFollow) {
    EXPECT_EQ(on.textOf("stopBtn"), "Remove");
    ASSERT_TRUE(keep("Newest"));
    EXPECT_EQ(ticked(), "a/three.jpg b/two.txt c/three.jpg ");
    EXPECT_EQ(on.textOf("stopBtn"), "Remove 3 \xC2\xB7 5.00 KB");
    EXPECT_EQ(on.control("stopBtn").accessibleName(), QStringLiteral("Remove"));
    EXPECT_EQ(on.textOf("gainLabel"), "5.00 KB can be gained");
    ASSERT_TRUE(keep("Oldest", true));
    EXPECT_EQ(ticked(), "a/three.jpg a/two.txt b/three.jpg ");

    // Where one place leaves copies equal the rule before it goes on to decide.
    outline.setCurrentIndex(on.row("two.txt", "a/two.txt"));
    ASSERT_TRUE(
        keep("In \xE2\x80\x9C"
             "a\xE2\x80\x9D"));
    EXPECT_EQ(ticked(), "b/three.jpg b/two.txt c/three.jpg ");
    on.dialogs.willChoose({on.tree.at("f/d")});
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(keep("In Folder\xE2\x80\xA6"));
    EXPECT_SOON(on.dialogs.alerts().size() == 1);
    EXPECT_EQ(ticked(), "b/three.jpg b/two.txt c/three.jpg ") << "nothing lies there";

    on.click("leftCell5");
    ASSERT_TRUE(keep("Newest"));
    EXPECT_EQ(ticked(), "a/three.jpg c/three.jpg ") << "the view of pictures";
    EXPECT_EQ(on.textOf("stopBtn"), "Remove 3 \xC2\xB7 5.00 KB") << "the others stay ticked";
    on.click("button");
    EXPECT_EQ(ticked(), "") << "the box over the list clears what a rule has ticked";
    on.dialogs.willAnswer(0);
    on.drop(on.tree.at("f"));
    EXPECT_SOON(on.textOf("stopBtn") == "Remove") << "a new search begins with no ticks";
}

TEST_F(Keeping, FoldersAreTickedFromTheMenuOfEachRow) {
    const auto choose = [&](const QModelIndex& row, const char* entry) {
        outline.expandAll();
        return on.chooseInMenu(outline, row, entry);
    };
    ASSERT_TRUE(choose(on.row("three.jpg", "b/three.jpg"), "Tick All Copies in \u201Cb\u201D"));
    EXPECT_EQ(ticked(), "b/three.jpg b/two.txt ");
    ASSERT_TRUE(choose(on.row("two.txt", "a/two.txt"), "Tick All Copies in \u201Ca\u201D"));
    EXPECT_EQ(ticked(), "a/three.jpg b/three.jpg b/two.txt ") << "the last copy stays";
    ASSERT_TRUE(choose(on.row("two.txt", "b/two.txt"), "Untick All in \u201Cb\u201D"));
    EXPECT_EQ(ticked(), "a/three.jpg ");
    EXPECT_TRUE(on.dialogs.alerts().empty());
    EXPECT_EQ(on.textOf("stopBtn"), "Remove 1 \xC2\xB7 1.00 KB");
    EXPECT_TRUE(on.remove());
    EXPECT_FALSE(testing::isThere(on.tree.at("f/a/three.jpg")));
}

}  // namespace
}  // namespace orrinvale
