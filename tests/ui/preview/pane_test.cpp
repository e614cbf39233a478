// The preview beside the list: what is on the screen for the chosen row, by pixels and words, and
// that nothing of it holds the list up.
#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTreeView>
#include <QWheelEvent>

#include "platform/askProgram.h"
#include "platform/paths.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/preview/PreviewFolders.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewLook.h"
#include "ui/preview/PreviewPane.h"
#include "ui/preview/PreviewPicture.h"
#include "ui/preview/PreviewZoom.h"
#include "ui/preview/previewWords.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

std::string png(QColor left, QColor right, QSize size = {600, 400}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(left);
    QPainter painter(&image);
    painter.fillRect(size.width() / 2, 0, size.width(), size.height(), right);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return bytes.toStdString();
}

/// The share of a widget's pixels that have this colour, in hundredths.
int shareOf(QWidget& widget, QColor colour) {
    const QImage seen = widget.grab().toImage();
    int count = 0;
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            if (seen.pixelColor(x, y) == colour) ++count;
    return seen.isNull() ? 0 : count * 100 / (seen.width() * seen.height());
}

const QColor red(200, 0, 0), blue(0, 0, 200), green(0, 160, 0);

class PreviewBesideList : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"f/a/red.png", "f/b/red.png"})
            ASSERT_TRUE(on.tree.write(name, png(red, blue)));
        for (const char* name : {"f/a/green.png", "f/b/green.png"})
            ASSERT_TRUE(on.tree.write(name, png(green, green)));
        const std::string words = text("same");
        for (const char* name : {"f/a/words.txt", "f/b/words.txt", "f/c/words.txt"})
            ASSERT_TRUE(on.tree.write(name, words));
        ASSERT_TRUE(on.search(on.tree.at("f")));
        on.window->window()->setFrame({0, 0, 1200, 800});
    }
    static std::string text(const std::string& line80) {
        std::string lines;
        for (int i = 1; i <= 200; ++i) lines += (i == 80 ? line80 : "line") + '\n';
        return lines;
    }
    template <class Child> Child& in(const char* look, const char* name) {
        return *on.control(look).findChild<Child*>(QLatin1String(name));
    }
    PreviewPicture& picture(const char* look) { return in<PreviewPicture>(look, "previewPicture"); }
    void show() { QTest::keyClick(&outline, Qt::Key_F3); }
    void choose(const char* group, const char* copy = "") {
        outline.setCurrentIndex(on.row(group, copy));
    }

    testing::PageWindow on;
    QTreeView& outline = on.control<QTreeView>("outline");
};

TEST_F(PreviewBesideList, FollowsTheArrowsWithTwoCopiesAtOneZoom) {
    choose("red.png");
    EXPECT_FALSE(on.isShown("previewPane")) << "until one asks for it";
    show();
    ASSERT_TRUE(on.isShown("previewPane"));
    EXPECT_LT(outline.width(), on.control("previewHost").width() * 2 / 3);
    for (const char* const look : {"previewFirst", "previewSecond"})
        ASSERT_SOON(shareOf(on.control(look), red) > 5 && shareOf(on.control(look), blue) > 5);
    EXPECT_EQ(on.textOf("previewName"), "red.png");
    EXPECT_THAT(on.textOf("previewFacts"), HasSubstr("600\xC2\xA0\xC3\x97\xC2\xA0"
                                                     "400"));

    // The wheel over the left half of one shows that half alone, in both.
    PreviewPicture& one = picture("previewFirst");
    const QPointF at(1, one.height() / 2.0);
    for (int i = 0; i < 6; ++i) {
        QWheelEvent wheel(at, one.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&one, &wheel);
    }
    EXPECT_EQ(one.place(), picture("previewSecond").place());
    for (const char* const look : {"previewFirst", "previewSecond"}) {
        EXPECT_EQ(shareOf(picture(look), blue), 0) << look;
        EXPECT_GT(shareOf(picture(look), red), 50) << look;
    }
    QTest::keyClick(&picture("previewSecond"), Qt::Key_0);
    EXPECT_GT(shareOf(one, blue), 5);

    QTest::keyClick(&outline, Qt::Key_Down);  // green, wherever it stands, or the words
    choose("green.png");
    EXPECT_EQ(shareOf(on.control("previewPane"), red), 0) << "never under another's name";
    for (const char* const look : {"previewFirst", "previewSecond"})
        ASSERT_SOON(shareOf(on.control(look), green) > 10);
    EXPECT_EQ(shareOf(on.control("previewPane"), red), 0);

    on.click("previewBtn");
    EXPECT_FALSE(on.isShown("previewPane"));
}

// One of them has changed since the search: a pixel of it is as large on the screen as one of the
// other, so that the eye compares what it should.
TEST_F(PreviewBesideList, ShowsPicturesOfUnequalSizeAtOneScale) {
    choose("red.png", "a/red.png");
    show();
    ASSERT_TRUE(on.tree.write("f/b/red.png", png(red, blue, {300, 200})));
    PreviewPicture& large = picture("previewFirst");
    PreviewPicture& small = picture("previewSecond");
    on.control<PreviewPane>("previewPane").lookAgain();
    ASSERT_SOON(small.accessibleDescription().startsWith(QStringLiteral("300 × 200")) &&
                large.accessibleDescription().startsWith(QStringLiteral("600 × 400")));
    EXPECT_NEAR(large.place().width(), 2 * small.place().width(), 1);
    EXPECT_NEAR(shareOf(large, red), 4 * shareOf(small, red), 4);
    small.setFocus();
    for (int i = 0; i < 3; ++i) QTest::keyClick(&small, Qt::Key_Plus);
    EXPECT_NEAR(large.place().width(), 2 * small.place().width(), 1);
    QTest::keyClick(&small, Qt::Key_0);

    // What is chosen next has its own.
    choose("green.png");
    ASSERT_SOON(shareOf(large, green) > 5 && shareOf(small, green) > 5);
    EXPECT_EQ(large.place(), small.place());
}

TEST_F(PreviewBesideList, KeepsTheCopyThatStaysBesideWhatIsTicked) {
    choose("words.txt", "c/words.txt");
    show();
    const auto& beside = on.control<PreviewLook>("previewSecond");
    EXPECT_EQ(beside.path(), on.tree.at("f/a/words.txt"));
    on.tick("words.txt", "a/words.txt");
    EXPECT_EQ(beside.path(), on.tree.at("f/b/words.txt"));
}

// The copy that stays may be behind those that are listed, and so may the chosen one.
TEST_F(PreviewBesideList, FindsTheCopyThatStaysInALargeGroup) {
    for (int i = 100; i < 205; ++i)
        ASSERT_TRUE(on.tree.write("g/" + std::to_string(i) + "/many.txt", "many"));
    ASSERT_TRUE(on.search(on.tree.at("g")));
    show();
    on.tick("many.txt");
    const QModelIndex group = on.row("many.txt");
    const auto copy = [&](int row) { return on.model().index(row, group.column(), group); };
    outline.setCurrentIndex(copy(102));
    const std::string chosen = on.nameOf(copy(102)), stays = on.nameOf(copy(104));
    EXPECT_EQ(on.control<PreviewLook>("previewFirst").path(), chosen);
    EXPECT_EQ(on.control<PreviewLook>("previewSecond").path(), stays);
    Strings listed;
    for (auto* const each : on.control("previewFolders").findChildren<QAbstractButton*>())
        if (each->isVisible()) listed.push_back(each->text().toStdString());
    EXPECT_EQ(listed.size(), 100);
    EXPECT_THAT(listed, AllOf(Contains(folderOf(chosen)), Contains(folderOf(stays))));
    EXPECT_TRUE(on.isShown("previewMoreCopies"));
    EXPECT_EQ(on.textOf("previewMoreCopies"), "and 5 more");
}

// Between the search and the look somebody has put something else there.
TEST_F(PreviewBesideList, FollowsNoLinkAndWaitsForNoPipe) {
    ASSERT_TRUE(on.tree.write("secret.png", png(red, red)));
    for (const char* const name : {"f/a/green.png", "f/b/green.png"})
        ASSERT_TRUE(std::filesystem::remove(on.tree.at(name)));
    ASSERT_TRUE(on.tree.symlink("../../secret.png", "f/a/green.png") &&
                on.tree.fifo("f/b/green.png"));
    show();
    choose("green.png", "a/green.png");
    Strings words;
    for (const char* const look : {"previewFirst", "previewSecond"}) {
        auto& said = in<QLabel>(look, "previewWords");
        ASSERT_SOON(said.isVisible());
        words.push_back(said.text().toStdString());
    }
    EXPECT_EQ(words, (Strings{"A link, which is not followed", "A connection between programs"}));
    EXPECT_EQ(shareOf(on.control("previewPane"), red), 0);
}

TEST_F(PreviewBesideList, ComparesTextsAndOpensFolders) {
    choose("words.txt", "b/words.txt");
    show();
    auto& one = in<QPlainTextEdit>("previewFirst", "previewText");
    auto& other = in<QPlainTextEdit>("previewSecond", "previewText");
    ASSERT_SOON(on.isShown("previewComparison"));
    EXPECT_EQ(on.textOf("previewComparison"), "The texts are the same");
    one.verticalScrollBar()->setValue(50);
    EXPECT_EQ(other.verticalScrollBar()->value(), 50);

    ASSERT_TRUE(on.tree.write("f/a/words.txt", text("other")));
    on.control<PreviewPane>("previewPane").lookAgain();
    EXPECT_SOON(on.textOf("previewComparison") == "The texts differ from line 80 on");
    EXPECT_EQ(one.textCursor().blockNumber(), 79);
    EXPECT_EQ(other.textCursor().blockNumber(), 79);

    const auto folders = on.control("previewFolders").findChildren<QAbstractButton*>();
    Strings shown;
    for (QAbstractButton* const each : folders)
        if (each->isVisible()) shown.push_back(each->text().toStdString());
    std::ranges::sort(shown);
    EXPECT_EQ(shown, (Strings{on.tree.at("f/a"), on.tree.at("f/b"), on.tree.at("f/c")}));
    EXPECT_FALSE(on.isShown("previewMoreCopies"));
    for (QAbstractButton* const each : folders)
        if (each->text().endsWith(QLatin1String("/c"))) QTest::keyClick(each, Qt::Key_Return);
    EXPECT_EQ(on.revealed, Strings{on.tree.at("f/c/words.txt")});
}

TEST_F(PreviewBesideList, NeverHoldsTheListAndShowsTheLast) {
    show();
    on.reading.shut();
    choose("red.png");
    ASSERT_SOON(on.reading.isWaitedAt());  // a disk that does not answer
    const auto before = Clock::now();
    for (const char* const group : {"words.txt", "red.png", "words.txt", "green.png"}) {
        choose(group);
        QCoreApplication::processEvents();
    }
    EXPECT_LT(Clock::now() - before, 500ms);
    on.reading.open();
    ASSERT_SOON(shareOf(on.control("previewFirst"), green) > 10);
    QTest::qWait(100);
    EXPECT_EQ(shareOf(on.control("previewPane"), red), 0) << "what was overtaken is dropped";
}

TEST(PreviewPlaces, SuitTheWindowAndAreRemembered) {
    TestTree tree;
    UserDefaults defaults(tree.at("settings.ini"));
    for (const bool isFirst : {true, false}) {
        QWidget window;
        auto* const column = new QVBoxLayout(&window);
        column->setContentsMargins({});
        auto* const content = new QStackedWidget;
        auto* const list = new QTreeView;
        content->addWidget(list);
        content->addWidget(new QWidget);
        column->addWidget(content, 1);
        auto* const pane = new PreviewPane;
        PreviewHost host(*content, *pane, 720);
        host.addList(*list, *list);
        TCImageButton button;
        host.setSwitch(button, window, defaults, "shown");
        EXPECT_EQ(button.isChecked(), !isFirst) << "remembered";
        button.setChecked(true);
        window.show();
        const struct {
            QSize size;
            bool isThere, isBeside;
        } cases[] = {{{900, 500}, true, true},
                     {{1600, 300}, true, true},
                     {{600, 500}, true, false},
                     {{600, 300}, false, false}};
        for (const auto& each : cases) {
            window.resize(each.size);
            QCoreApplication::processEvents();
            EXPECT_EQ(pane->isVisible(), each.isThere) << each.size.width();
            if (!each.isThere) continue;
            EXPECT_EQ(pane->x() > content->x(), each.isBeside) << each.size.width();
            EXPECT_EQ(pane->y() > content->y(), !each.isBeside) << each.size.width();
            EXPECT_GE(content->width(), 440) << each.size.width();
        }
        window.resize(900, 500);
        content->setCurrentIndex(1);
        EXPECT_FALSE(pane->isVisible()) << "the preview is the list's";
    }
}

// People delete by these words.
TEST(PreviewTexts, AreTheSameOnlyWhereTheirBytesAre) {
    TestTree tree;
    const LinuxFileSystem files;
    PreviewPane pane;
    pane.start(files, {});
    pane.resize(400, 300);
    pane.show();
    const auto& said = *pane.findChild<QLabel*>(QLatin1String("previewComparison"));
    const struct {
        const char *name, *one, *other, *words;
    } cases[] = {
        {"equal", "a b\nc", "a b\nc", "The texts are the same"},
        {"a space that does not break", "a b",
         "a\xC2\xA0"
         "b",
         "The texts differ from line 1 on"},
        {"ends of lines", "a\nb\n", "a\r\nb\r\n", "What is shown of the texts is the same"},
        {"encodings", "ab",
         "\xEF\xBB\xBF"
         "ab",
         "What is shown of the texts is the same"},
        {"what is written out", "a\x1B", "a\\x1B", "What is shown of the texts is the same"},
    };
    for (const auto& each : cases) {
        const std::string one = each.name + std::string(".1"),
                          other = each.name + std::string(".2");
        ASSERT_TRUE(tree.write(one, each.one) && tree.write(other, each.other));
        pane.choose({tree.at(one), tree.at(other), {}, 2});
        EXPECT_TRUE(said.isHidden()) << each.name;
        ASSERT_SOON(said.isVisible());
        EXPECT_EQ(said.text().toStdString(), each.words) << each.name;
    }
}

TEST(PreviewTexts, KeepTheirPlaceAndTheirComparison) {
    TestTree tree;
    std::string lines;
    for (int i = 0; i < 300; ++i) lines += "line\n";
    ASSERT_TRUE(tree.write("long", lines) && tree.write("short", lines.substr(0, 300)));
    const LinuxFileSystem files;
    PreviewPane pane;
    pane.start(files, {});
    pane.resize(500, 300);
    pane.show();
    PreviewSubject subject{tree.at("long"), tree.at("short"), {tree.at("long")}, 3};
    pane.choose(subject);
    const auto& said = *pane.findChild<QLabel*>(QLatin1String("previewComparison"));
    ASSERT_SOON(said.isVisible());
    auto& bar = *pane.findChild<QWidget*>(QLatin1String("previewFirst"))
                     ->findChild<QPlainTextEdit*>()
                     ->verticalScrollBar();
    bar.setValue(200);
    EXPECT_EQ(bar.value(), 200) << "past the end of the shorter one";
    subject.total = 2;  // a third copy is gone
    pane.choose(subject);
    EXPECT_TRUE(said.isVisible());
    EXPECT_EQ(bar.value(), 200);
}

// A machine that is busy for a moment takes nothing away that was seen.
TEST(PreviewLooks, StayWhereAnotherOneFails) {
    TestTree tree;
    ASSERT_TRUE(tree.write("red.png", png(red, red)));
    const LinuxFileSystem files;
    PreviewZoom zoom;
    PreviewLook look(zoom);
    look.setReader(
        std::make_shared<PreviewReader>(files, companionProgram(PreviewReader::programName)));
    look.resize(300, 300);
    look.show();
    look.setPath(tree.at("red.png"));
    ASSERT_SOON(look.sight() != nullptr && shareOf(look, red) > 20);
    look.setReader(std::make_shared<PreviewReader>(files, ""));
    look.lookAgain();
    QTest::qWait(150);
    EXPECT_GT(shareOf(look, red), 20);
    ASSERT_TRUE(tree.write("red.png", png(blue, blue, {9, 9})));  // but of a file that has changed
    look.lookAgain();
    EXPECT_SOON(shareOf(look, red) == 0);
}

TEST(PreviewFolderButtons, HaveNoKeyInTheirPaths) {
    PreviewFolders folders;
    folders.setPaths({"/m/Tom&Jerry/a"}, 1, {});
    const auto& button = *folders.findChild<QAbstractButton*>(QLatin1String("previewFolder"));
    EXPECT_EQ(button.text(), QLatin1String("/m/Tom&Jerry"));
    EXPECT_TRUE(button.shortcut().isEmpty());
}

TEST(PreviewTexts, SayWhyThereIsNothingToSee) {
    TestTree tree;
    const LinuxFileSystem files;
    const PreviewReader reader(files, companionProgram(PreviewReader::programName));
    ASSERT_TRUE(tree.fifo("pipe") && tree.write("broken.png", "\x89PNG\r\n\x1A\n") &&
                tree.write("empty", "") && tree.folder("folder") &&
                tree.write("noise", std::string("\0\1\2\3", 4)) &&
                tree.write("song.flac", "fLaC" + std::string(14, '\0') +
                                            std::string("\x0A\xC4\x42\xF0\x0A\x17\xFC\0", 8) +
                                            std::string(9, '\0')));
    for (const auto& [name, words] : std::vector<std::pair<const char*, const char*>>{
             {"gone", "It is gone"},
             {"pipe", "A connection between programs"},
             {"broken.png", "Can not be shown: it is damaged"},
             {"empty", "An empty file"},
             {"folder", "A folder"},
             {"noise", "Nothing to see of this kind of file"},
             {"song.flac", "FLAC|1:04:00|FLAC|Stereo, 44.1 kHz"},
         })
        EXPECT_EQ(
            wordsFor(readSight(reader, tree.at(name), 64, {})).join(QLatin1Char('|')).toStdString(),
            words)
            << name;
    EXPECT_EQ(durationText(59'999), QStringLiteral("0:59"));
    EXPECT_EQ(durationText(36'061'000), QStringLiteral("10:01:01"));
}

}  // namespace
}  // namespace orrinvale
