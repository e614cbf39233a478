// The preview beside the large files: a file has no copy to stand beside it, and may lie on a disk
// that does not answer.
#include <QAbstractButton>
#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QPainter>

#include "support/ServedFiles.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewLook.h"
#include "ui/preview/PreviewPane.h"
#include "ui/preview/PreviewPicture.h"
#include "ui/support/LargePage.h"

namespace orrinvale {
namespace {

using testing::LargePage;
using testing::ServedFiles;

std::string greenPicture() {
    QImage image(900, 300, QImage::Format_RGB32);
    image.fill(Qt::green);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "bmp"));
    return bytes.toStdString();
}

class PreviewBesideLargeFiles : public ::testing::Test {
protected:
    void show() { QTest::keyClick(&on.outline(), Qt::Key_F3); }
    void choose(const std::string& name) { on.outline().setCurrentIndex(on.row(name)); }
    QString words() { return on.control<QLabel>("previewWords").text(); }
    bool showsPicture() {
        auto& picture = on.control<PreviewPicture>("previewPicture");
        const QImage seen = picture.grab().toImage();
        return picture.isVisible() &&
               seen.pixelColor(seen.width() / 2, seen.height() / 2) == QColor(Qt::green);
    }

    LargePage on;
};

TEST_F(PreviewBesideLargeFiles, FollowsTheArrowsByKeysAlone) {
    ASSERT_TRUE(on.tree.write("f/green.bmp", greenPicture()) &&
                on.tree.sparse("f/folder/zeros.raw", 900'000));
    for (int i = 0; i < 30; ++i) ASSERT_TRUE(on.tree.write("f/" + std::to_string(i), "small"));
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    on.window.window->window()->setFrame({0, 0, 1200, 800});
    QTest::keyClick(&on.outline(), Qt::Key_Home);
    EXPECT_FALSE(on.isShown("previewPane")) << "until one asks for it";
    show();
    ASSERT_TRUE(on.isShown("previewPane"));
    EXPECT_SOON(words() == QStringLiteral("A folder"));
    QTest::keyClick(&on.outline(), Qt::Key_Down);
    ASSERT_SOON(showsPicture());
    EXPECT_FALSE(on.isShown("previewSecond"));
    EXPECT_EQ(on.textOf("previewCopies"), "In this folder");

    auto& picture = on.control<PreviewPicture>("previewPicture");
    EXPECT_EQ(picture.accessibleName(), QStringLiteral("green.bmp"));
    EXPECT_TRUE(picture.accessibleDescription().startsWith(QStringLiteral("900 × 300 pixels")));
    for (int tabs = 0; tabs < 20 && !picture.hasFocus(); ++tabs)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_TRUE(picture.hasFocus()) << "the Tab key leads there";
    const qreal before = picture.place().width();
    QTest::keyClick(&picture, Qt::Key_Plus);
    EXPECT_NEAR(picture.place().width(), before * 1.25, 1);
    on.click("previewBtn");
    EXPECT_FALSE(on.isShown("previewPane"));

    // Below the list, in which the row that is looked at stays in sight.
    on.window.window->window()->setFrame({0, 0, 800, 620});
    QTest::keyClick(&on.outline(), Qt::Key_End);
    show();
    ASSERT_TRUE(on.isShown("previewPane"));
    EXPECT_GT(on.control("previewPane").y(), on.control("content").y());
    EXPECT_SOON(on.outline().viewport()->rect().contains(
        on.outline().visualRect(on.outline().currentIndex()).center()));
    // The list of files has it too, of its own row.
    choose("folder");
    ASSERT_SOON(words() == QStringLiteral("A folder"));
    on.control<SegmentedControl>("viewSwitch").segment(1)->click();
    auto& files = on.control<QTreeView>("filesList");
    ASSERT_SOON(files.model()->rowCount() > 0);
    ASSERT_TRUE(on.isShown("previewPane"));
    EXPECT_FALSE(words() == QStringLiteral("A folder") && on.isShown("previewWords"));
    files.setCurrentIndex(files.model()->index(0, 0));
    ASSERT_SOON(on.control<PreviewLook>("previewFirst").path() == on.tree.at("f/green.bmp") ||
                on.control<PreviewLook>("previewFirst").path() == on.tree.at("f/folder/zeros.raw"));
    on.control<SegmentedControl>("viewSwitch").segment(0)->click();
    ASSERT_SOON(words() == QStringLiteral("A folder"));
    on.click("backHomeButton");
    ASSERT_TRUE(on.scan(on.tree.at("f")));
    EXPECT_TRUE(on.isShown("previewPane"));
    EXPECT_TRUE(on.control<PreviewLook>("previewFirst").path().empty()) << "of another scan";
}

TEST_F(PreviewBesideLargeFiles, SaysThatADiskIsSilentAndGoesOn) {
    ServedFiles served({"hang"});
    if (!served.isThere()) GTEST_SKIP() << "this machine has no FUSE for this user";
    ASSERT_TRUE(served.source().folder("place") && served.source().write("green.bmp", "") &&
                on.tree.write("f/a green.bmp", greenPicture()) &&
                on.tree.write("f/b.raw", std::string(5000, '\0')) && on.scan(on.tree.at("f")));
    show();
    auto& pane = on.control<PreviewPane>("previewPane");
    const auto before = Clock::now();
    for (int i = 0; i < 20; ++i) {  // more than may be on their way
        const std::string path = served.at("hang" + std::to_string(i));
        pane.choose({.chosen = path, .beside = {}, .paths = {path}, .total = 1});
        QTest::qWait(5);
    }
    EXPECT_LT(Clock::now() - before, 1500ms);
    EXPECT_SOON(words() == QStringLiteral("Still reading"));
    served.end();
    choose("a green.bmp");
    ASSERT_SOON(showsPicture());
}

}  // namespace
}  // namespace orrinvale
