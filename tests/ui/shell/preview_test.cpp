// The look at one entry: what is read of it, within which bounds, and the window around it.
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>

#include "support/test.h"
#include "ui/page/previewContent.h"
#include "ui/shell/FileIcons.h"
#include "ui/shell/PreviewWindow.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using Kind = PreviewContent::Kind;

constexpr const char* oddName =
    "b\xC3\xBC"
    "cher & <b>.txt";

TEST(Preview, ReadsWhatIsSafeAndLittleOfIt) {
    TestTree tree;
    const auto lines = [](std::size_t size) {
        std::string text(size, 'a');
        for (std::size_t i = 99; i < size; i += 100) text[i] = '\n';
        return text;
    };
    QImage wide(4000, 1000, QImage::Format_RGB32);
    wide.fill(Qt::red);
    ASSERT_TRUE(wide.save(QString::fromStdString(tree.at("wide.png"))));
    ASSERT_TRUE(tree.write("long.txt", lines(70'000)) && tree.write("exact.txt", lines(65'536)) &&
                tree.write("text", "two\nlines") && tree.write("bytes", std::string("a\0b", 3)) &&
                tree.write("latin", "caf\xe9") &&
                tree.write("broken.png", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)) &&
                tree.write("empty", "") && tree.sparse("huge.png", std::uint64_t{1} << 30U) &&
                tree.write("drawing.svg", "<svg/>") && tree.write("folder/one", "1") &&
                tree.write("folder/two", "2") && tree.fifo("pipe.txt") && tree.socket("socket") &&
                tree.symlink("wide.png", "link.png") && tree.symlink("/dev/zero", "zero.txt"));
    const struct {
        const char* name;
        Kind kind;
        bool isCut;
        std::size_t size;  // of the text, or the count of entries
    } cases[] = {
        {"wide.png", Kind::Picture, false, 0},
        {"long.txt", Kind::Text, true, 65'536},
        {"exact.txt", Kind::Text, false, 65'536},
        {"text", Kind::Text, false, 9},
        {"bytes", Kind::Other, false, 0},
        {"latin", Kind::Text, false, 4},
        {"broken.png", Kind::Other, false, 0},
        {"empty", Kind::Other, false, 0},
        {"huge.png", Kind::Other, false, 0},
        {"drawing.svg", Kind::Text, false, 6},  // its reader would open what it names
        {"folder", Kind::Folder, false, 2},
        {"pipe.txt", Kind::Other, false, 0},
        {"socket", Kind::Other, false, 0},
        {"link.png", Kind::Other, false, 0},
        {"zero.txt", Kind::Other, false, 0},
        {"gone", Kind::Missing, false, 0},
    };
    for (const auto& each : cases) {
        const PreviewContent content = readPreview(tree.at(each.name));
        EXPECT_EQ(content.kind, each.kind) << each.name;
        EXPECT_EQ(content.isCut, each.isCut) << each.name;
        const auto length = each.kind == Kind::Text ? static_cast<std::size_t>(content.text.size())
                                                    : content.entries;
        EXPECT_EQ(each.kind == Kind::Text || each.kind == Kind::Folder ? length : 0, each.size)
            << each.name;
    }
    const PreviewContent picture = readPreview(tree.at("wide.png"));
    EXPECT_EQ(picture.pictureSize, QSize(4000, 1000));
    EXPECT_EQ(picture.picture.size(), QSize(1600, 400));
    EXPECT_TRUE(readPreview(tree.at("link.png")).linkTarget.endsWith(QLatin1String("/wide.png")));
    for (const char* path : {"", "name.txt", "../name"})
        EXPECT_EQ(readPreview(path).kind, Kind::Missing) << path;
}

TEST(Preview, ShowsTheLastPathAskedForAndClosesOnItsKeys) {
    TestTree tree;
    ASSERT_TRUE(tree.write("first.txt", "first") && tree.write(oddName, "second"));
    FileIcons icons;
    PreviewWindow window(icons);
    auto& text = *window.findChild<QPlainTextEdit*>();
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::Key_Space),
                                     QKeySequence(Qt::CTRL | Qt::Key_Space)}) {
        window.showPath(tree.at("first.txt"));
        window.showPath(tree.at(oddName));
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        ASSERT_SOON(text.toPlainText() == QLatin1String("second") && text.isVisible());
        QTest::qWait(20);
        EXPECT_EQ(text.toPlainText(), QStringLiteral("second"));
        const auto labels = window.findChildren<QLabel*>();
        EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* each) {
            return each->text() == QString::fromUtf8(oddName) &&
                   each->textFormat() == Qt::PlainText;
        }));
        text.setFocus();
        QTest::keySequence(&text, keys);
        EXPECT_FALSE(window.isVisible()) << keys.toString().toStdString();
    }
    window.showPath("/photo\xE2\x80\xAEgpj\n.exe");
    EXPECT_FALSE(window.windowTitle().contains(QChar(0x202E)) ||
                 window.windowTitle().contains(QLatin1Char('\n')));
    window.showPath("bare name");
    const auto labels = window.findChildren<QLabel*>();
    EXPECT_SOON(std::ranges::any_of(labels, [](const QLabel* each) {
        return each->text() == QLatin1String("This file is missing.");
    }));
}

// Each look may take much memory, and a held key asks thirty times a second.
TEST(Preview, StartsNoThreadForWhatIsPassedBy) {
    TestTree tree;
    const auto threads = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/task"));
    };
    FileIcons icons;
    PreviewWindow window(icons);
    window.show();
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(tree.write(std::to_string(i) + ".txt", std::to_string(i)));
    window.showPath(tree.at("0.txt"));
    const auto before = threads();
    for (int i = 1; i < 40; ++i) window.showPath(tree.at(std::to_string(i) + ".txt"));
    EXPECT_LE(threads(), before + 2);
    EXPECT_SOON(window.findChild<QPlainTextEdit*>()->toPlainText() == QLatin1String("39"));
    std::stop_source over;
    over.request_stop();
    EXPECT_EQ(readPreview(tree.at("1.txt"), over.get_token()).kind, Kind::Other) << "not looked";
}

}  // namespace
}  // namespace orrinvale
