// The list of the large file page over a tree that grows: what is open, chosen and scrolled to
// survives, and a long level comes in parts.
#include <QAbstractItemModelTester>
#include <QApplication>
#include <QScrollBar>
#include <deque>

#include "engine/largefiles/SystemFolder.h"
#include "support/test.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/NewOutlineView.h"

namespace orrinvale {
namespace {

class GrowingList : public ::testing::Test {
protected:
    GrowingList() {
        view.setModel(&model);
        view.resize(800, 400);
        QObject::connect(&view, &QTreeView::expanded, &model, [this](const QModelIndex& index) {
            model.node(index)->setIsExpand(true);
            model.refresh();
        });
        view.show();
        model.setTree(tree);
    }
    FileNode& add(FileNode& folder, const std::string& name, std::uint64_t size,
                  bool isFolder = false) {
        names.push_back(name);
        const FoundEntry entry{.name = names.back().c_str(),
                               .isDirectory = isFolder,
                               .position = static_cast<std::uint32_t>(names.size()),
                               .size = size};
        return *tree->add(folder, {&entry, 1}).front();
    }
    void show() {
        model.refresh();
        QApplication::processEvents();
    }
    std::string nameAt(const QModelIndex& index) { return model.node(index)->displayName(); }

    std::deque<std::string> names;
    std::shared_ptr<FileNodeTree> tree = std::make_shared<FileNodeTree>("/somewhere");
    FileNodeModel model{{}, {}};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    NewOutlineView view;
};

TEST_F(GrowingList, KeepsWhatIsOpenAndChosenWhileRowsMove) {
    FileNode& folder = add(tree->root(), "folder", 0, true);
    add(folder, "inside", 10);
    FileNode& nested = add(folder, "nested", 0, true);
    add(nested, "deep", 5);
    add(tree->root(), "big", 100);
    show();
    EXPECT_EQ(nameAt(model.index(0, 0)), "big");
    view.expand(model.index(1, 0));
    view.expand(model.index(1, 0, model.index(1, 0)));
    view.setCurrentIndex(model.index(0, 0, model.index(1, 0)));
    // The view shows what was there at the last refresh, and nothing of what comes meanwhile.
    add(folder, "huge", 1'000);
    add(tree->root(), "larger", 500);
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(nameAt(model.index(0, 0)), "big");
    show();
    EXPECT_EQ(nameAt(model.index(0, 0)), "folder");
    EXPECT_TRUE(view.isExpanded(model.index(0, 0)));
    EXPECT_EQ(nameAt(model.index(0, 0, model.index(0, 0))), "huge");
    EXPECT_TRUE(view.isExpanded(model.index(2, 0, model.index(0, 0))));
    EXPECT_EQ(nameAt(view.currentIndex()), "inside");
    // What was removed goes, with what was open below it.
    folder.removeChild(nested);
    show();
    EXPECT_EQ(model.rowCount(model.index(0, 0)), 2);
    EXPECT_FALSE(nested.isExpand());
    EXPECT_EQ(nameAt(view.currentIndex()), "inside");
}

TEST_F(GrowingList, ShowsALongLevelInPartsAsItIsScrolled) {
    constexpr int rows = 12'000;
    FileNode& folder = add(tree->root(), "folder", 0, true);
    add(folder, "inside", rows + 1);
    for (int i = 0; i < rows; ++i)
        add(tree->root(), std::to_string(i), static_cast<std::uint64_t>(i) + 1);
    show();
    EXPECT_EQ(model.rowCount(), 5000);
    view.expand(model.index(0, 0));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 2);
    const int place = view.verticalScrollBar()->value();
    add(tree->root(), "small", 1);
    show();
    EXPECT_EQ(view.verticalScrollBar()->value(), place);
    EXPECT_EQ(model.rowCount(), 5000);
    for (const int shown : {10'000, rows + 2, rows + 2}) {
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
        QApplication::processEvents();
        EXPECT_EQ(model.rowCount(), shown);
    }
    EXPECT_EQ(nameAt(model.index(rows + 1, 0)), "0");
    EXPECT_TRUE(view.isExpanded(model.index(0, 0)));
}

TEST_F(GrowingList, ClosesAFolderThatIsNoLongerAmongTheRowsShown) {
    FileNode& folder = add(tree->root(), "folder", 0, true);
    add(folder, "inside", 10);
    show();
    view.expand(model.index(0, 0));
    ASSERT_TRUE(folder.isExpand());
    for (int i = 0; i < 6000; ++i) add(tree->root(), std::to_string(i), 1000);
    show();
    EXPECT_FALSE(folder.isExpand());
    EXPECT_FALSE(view.isExpanded(model.index(0, 0)));
    EXPECT_EQ(model.rowCount(), 5000);
}

// Directly below "/" the paths of the list begin with two slashes.
TEST_F(GrowingList, GivesNoBoxToWhatNobodyShouldSelect) {
    for (const bool isBelowRoot : {true, false}) {
        const auto& listed = SystemFolder::paths();
        const auto path = std::ranges::find_if(listed, [isBelowRoot](const std::string& each) {
            return each.size() > 1 && (each.rfind('/') == 0) == isBelowRoot;
        });
        ASSERT_NE(path, listed.end());
        int clicks = 0;
        FileNodeModel rows({}, [&clicks](FileNode& /*node*/) { ++clicks; });
        tree =
            std::make_shared<FileNodeTree>(isBelowRoot ? "/" : path->substr(0, path->rfind('/')));
        add(tree->root(), path->substr(path->rfind('/') + 1), 2, true);
        add(tree->root(), "ours", 1);
        rows.setTree(tree);
        for (const bool isOurs : {false, true}) {
            const QModelIndex box = rows.index(isOurs ? 1 : 0, FileNodeModel::CheckBox);
            EXPECT_EQ(box.data(FileNodeModel::StateRole).isValid(), isOurs) << *path;
            EXPECT_EQ(rows.setData(box, {}, FileNodeModel::StateRole), isOurs) << *path;
        }
        EXPECT_EQ(clicks, 1);
    }
}

}  // namespace
}  // namespace orrinvale
