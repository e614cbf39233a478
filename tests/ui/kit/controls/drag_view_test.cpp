// Drops on the area: which path reaches the page, byte for byte, and what a source is told.
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include "platform/FileUrl.h"
#include "support/test.h"
#include "ui/kit/controls/DragView.h"

namespace orrinvale {
namespace {

TEST(FileUrl, PathsComeOutByteForByte) {
    const struct {
        const char* url;
        const char* path;  // null: none
    } cases[] = {
        {"file:///home/a%20b", "/home/a b"},
        {"file:///x/%ff%FE%c3", "/x/\xff\xfe\xc3"},
        {"file:///x/%25ff", "/x/%ff"},
        {"file:///x/100%", "/x/100%"},
        {"file:///x/5%zz", "/x/5%zz"},
        {"file:///x/%2", "/x/%2"},
        {"file:///x/a#b?c", "/x/a#b?c"},
        {"FILE:///x/", "/x"},
        {"file:///", "/"},
        {"file:/x", "/x"},
        {"file://LocalHost/x", "/x"},
        {"file://elsewhere.example/x", nullptr},
        {"file:x", nullptr},
        {"file://", nullptr},
        {"file:///x%00y", nullptr},
        {"https://example.org/x", nullptr},
        {"/x", nullptr},
    };
    for (const auto& each : cases) {
        const auto path = pathOfFileUrl(each.url);
        EXPECT_EQ(path.value_or("(none)"), each.path != nullptr ? each.path : "(none)") << each.url;
    }
    EXPECT_EQ(firstLocalPath("# a comment\r\nhttps://example.org/\r\nfile:///a\r\nfile:///b\r\n"),
              "/a");
    EXPECT_EQ(firstLocalPath("file:///a\nfile:///b"), "/a");
    EXPECT_EQ(firstLocalPath("\r\n"), std::nullopt);
}

struct DropPage final : DragViewDelegate {
    Strings paths;
    void viewDragAction(const std::string& path) override { paths.push_back(path); }
};

struct Drop {
    bool isEntered = false, isShown = false, isTaken = false;
    Qt::DropAction action = Qt::IgnoreAction;
};

Drop dropOn(DragView& view, const QMimeData& data, Qt::DropActions offered) {
    Drop drop;
    QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &enter);
    drop.isEntered = enter.isAccepted();
    drop.isShown = view.isFolderOver();
    if (!drop.isEntered) return drop;
    QDropEvent event(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &event);
    drop.isTaken = event.isAccepted();
    drop.action = event.dropAction();
    return drop;
}

class DragViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        view.setDelegate(&page);
        view.resize(200, 100);
    }
    TestTree tree;
    DragView view;
    DropPage page;
    LogLines log;
    Strings& lines = log.lines;
};

TEST_F(DragViewTest, OnlyTheFirstFolderReachesThePage) {
    const std::string odd = "a \xff%41#?\n";
    ASSERT_TRUE(tree.folder(odd) && tree.folder("other") && tree.write("file", "x") &&
                tree.symlink("other", "link"));
    const std::string oddUrl = "file://" + tree.path() + "/a%20%FF%2541%23%3F%0A";
    const std::string base = "file://" + tree.path() + '/';
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    const struct {
        std::string list;
        Qt::DropActions offered;
        std::string path;  // empty: refused
        Qt::DropAction action;
    } cases[] = {
        {oddUrl, all, tree.at(odd), Qt::CopyAction},
        {base + "other/\r\n" + oddUrl, all, tree.at("other"), Qt::CopyAction},
        {base + "link", Qt::LinkAction | Qt::MoveAction, tree.at("link"), Qt::LinkAction},
        {base + "file\r\n" + oddUrl, all, {}, Qt::IgnoreAction},
        {base + "gone", all, {}, Qt::IgnoreAction},
        {"https://example.org/", all, {}, Qt::IgnoreAction},
        {base + "other", Qt::MoveAction, {}, Qt::IgnoreAction},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.list);
        page.paths.clear();
        QMimeData data;
        data.setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString(each.list));
        const Drop drop = dropOn(view, data, each.offered);
        const bool isFolder = !each.path.empty();
        EXPECT_EQ(page.paths, isFolder ? std::vector{each.path} : Strings());
        EXPECT_EQ(drop.isTaken, isFolder);
        EXPECT_EQ(drop.isShown, isFolder);
        EXPECT_EQ(drop.action, each.action);
        EXPECT_FALSE(view.isFolderOver()) << "the look of hovering ends with the drop";
    }
    EXPECT_TRUE(lines.empty()) << lines.front();
}

TEST_F(DragViewTest, OtherDataThanFolders) {
    QMimeData picture, empty, text;
    picture.setImageData(QImage(2, 2, QImage::Format_RGB32));
    empty.setData(QStringLiteral("image/tiff"), QByteArray());
    text.setText(QStringLiteral("/tmp"));
    EXPECT_TRUE(dropOn(view, picture, Qt::CopyAction).isTaken);
    EXPECT_TRUE(lines.empty());
    EXPECT_FALSE(dropOn(view, empty, Qt::CopyAction).isTaken);
    EXPECT_FALSE(dropOn(view, text, Qt::CopyAction).isEntered);
    EXPECT_FALSE(view.performDragOperation(text));
    EXPECT_TRUE(page.paths.empty());
    EXPECT_EQ(lines, (Strings{"Error: MyNSView performDragOperation zPasteboardData == nil",
                              "Error MyNSView performDragOperation"}));
}

TEST_F(DragViewTest, TheLookOfHoveringFollowsThePointer) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(tree.path()))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    const QImage before = view.grab().toImage();
    QCoreApplication::sendEvent(&view, &enter);
    EXPECT_TRUE(view.isFolderOver());
    EXPECT_NE(view.grab().toImage(), before);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&view, &leave);
    EXPECT_EQ(view.grab().toImage(), before);
    view.setDelegate(nullptr);
    EXPECT_TRUE(dropOn(view, data, Qt::CopyAction).isTaken);
}

}  // namespace
}  // namespace orrinvale
