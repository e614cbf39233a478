// Copies that share their space instead of going: the question, what it does, the line about what
// came of it, and what the list knows of it afterwards.
#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>

#include "platform/freeSpace.h"
#include "platform/sharing.h"
#include "support/ServedFiles.h"
#include "support/test.h"
#include "ui/duplicates/shareWords.h"
#include "ui/support/PageWindow.h"
#include "ui/support/dropOn.h"

namespace orrinvale {
namespace {

using testing::ServedFiles;
using testing::someBytes;

/// A disk image with btrfs, mounted for as long as this lives.
class BtrfsDisk final {
public:
    BtrfsDisk() {
        const auto run = [](const std::string& command) {
            return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
        };
        if (!m_place.sparse("image", 400ULL << 20U) || !m_place.folder("disk")) return;
        if (!run("mkfs.btrfs -q " + m_place.at("image"))) m_why = "no mkfs.btrfs";
        else if (!run("mount -t btrfs -o loop " + m_place.at("image") + ' ' + m_place.at("disk")))
            m_why = "btrfs can not be mounted here";
        else m_isThere = true;
    }
    ~BtrfsDisk() {
        if (m_isThere) (void)!std::system(("umount -l " + m_place.at("disk")).c_str());
    }
    BtrfsDisk(const BtrfsDisk&) = delete;
    BtrfsDisk& operator=(const BtrfsDisk&) = delete;

    [[nodiscard]] bool isThere() const { return m_isThere; }
    [[nodiscard]] const std::string& why() const { return m_why; }
    bool write(const std::string& name, const std::string& bytes) {
        return m_place.write("disk/" + name, bytes);
    }
    [[nodiscard]] std::string at(const std::string& name) const {
        return m_place.at("disk/" + name);
    }

private:
    TestTree m_place{"/tmp"};
    std::string m_why = "no room for an image";
    bool m_isThere = false;
};

/// In a folder of a file system that knows hard links alone, but for where a test says otherwise.
class PageSharing : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"f/a/two.txt", "f/b/two.txt"})
            ASSERT_TRUE(disk.write(name, someBytes(30000, 1)));
        for (const char* name : {"f/a/three.jpg", "f/b/three.jpg", "f/c/three.jpg"})
            ASSERT_TRUE(disk.write(name, someBytes(10000, 2)));
    }
    enum class By : std::uint8_t { Key, Pointer };
    /// Asks, and has this answer taken.
    bool ask(int answer, By by = By::Key) {
        const std::size_t asked = on.dialogs.alerts().size();
        on.dialogs.willAnswer(answer);
        if (by == By::Pointer) clickInMenu(QStringLiteral("Share the Space\u2026"));
        else pressKeys();
        const bool isAsked = on.waitFor([&] { return on.dialogs.alerts().size() > asked; });
        QCoreApplication::processEvents();
        return isAsked;
    }
    void pressKeys() {
        on.window->window()->activateWindow();  // a menu or another window was active perhaps
        EXPECT_TRUE(QTest::qWaitForWindowActive(on.window->window()));
        QTest::keyClick(&on.control("outline"), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    }
    /// In the menu beside the button that removes.
    void clickInMenu(const QString& entry) {
        on.click("otherWayBtn");
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        QAction* found = nullptr;
        for (QAction* const each : menu->actions())
            if (each->text() == entry) found = each;
        if (found != nullptr)
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(found).center());
        else menu->close();
        EXPECT_NE(found, nullptr) << entry.toStdString();
    }
    [[nodiscard]] const Alert& question() const { return on.dialogs.alerts().back(); }
    [[nodiscard]] std::uint32_t names(const char* name) const {
        return attributesOf(disk.at(name)).links;
    }

    TestTree disk{"/dev/shm"};
    testing::PageWindow on;
};

TEST_F(PageSharing, HardLinksAreMadeWhereNothingElseIsPossibleAndWhatSharesLeavesTheList) {
    ASSERT_TRUE(disk.setMode("f/b/two.txt", 0600));
    ASSERT_TRUE(on.search(disk.at("f")));
    on.tick("two.txt", "b/two.txt");
    on.tick("three.jpg", "c/three.jpg");
    ASSERT_TRUE(ask(1, By::Pointer));
    EXPECT_EQ(question().title, QStringLiteral("Share the space of the copies that stay?"));
    EXPECT_EQ(question().text.toStdString(),
              "1 file, up to 12.29 KB, by a hard link alone: it becomes another name of the copy "
              "that stays. They are one file then, and a change to one is a change to both.\n\n"
              "1 keeps its own space.");
    EXPECT_EQ(question().buttons,
              (QStringList{QStringLiteral("Make Hard Links"), QStringLiteral("Cancel")}));
    EXPECT_TRUE(on.page().bSearchFinished() && names("f/c/three.jpg") == 1);
    EXPECT_EQ(question().linkText, QStringLiteral("Show Why"));
    ASSERT_TRUE(question().linkAction);
    question().linkAction();
    auto* const why = on.window->window()->findChild<QWidget*>(QStringLiteral("lineList"));
    ASSERT_NE(why, nullptr);
    const std::string reasons = why->findChild<QPlainTextEdit*>()->toPlainText().toStdString();
    EXPECT_THAT(reasons, HasSubstr("owner, group, rights or extended attributes"));
    EXPECT_THAT(reasons, HasSubstr(disk.at("f/b/two.txt")));
    EXPECT_EQ(reasons.find("three.jpg"), std::string::npos);
    delete why;

    ASSERT_TRUE(ask(0));
    ASSERT_SOON(on.isShown("removedLine"));
    EXPECT_EQ(names("f/c/three.jpg"), 2U);
    EXPECT_EQ(on.textOf("removedLine").find("1 shared"), 0U);
    EXPECT_NE(
        on.control("removedLine").toolTip().indexOf(QStringLiteral("of 12.29 KB at the most")), -1);
    EXPECT_EQ(on.textOf("failureLine"), "1 not shared");
    EXPECT_NE(on.linesBehind("failureLine").find("owner, group, rights or extended attributes"),
              std::string::npos);
    EXPECT_THAT(on.list(), ::testing::StartsWith("three.jpg 0 0/2: ..\ntwo.txt 2 1/2: "))
        << "stays ticked";

    // Of the two names that one file has now the list knows: its new time of change, and that a
    // removal of one gives nothing back.
    const bool isFirst = names("f/a/three.jpg") == 2;
    on.tick("two.txt", "b/two.txt");
    on.tick("three.jpg", isFirst ? "a/three.jpg" : "b/three.jpg");
    EXPECT_EQ(on.textOf("gainLabel"), "Nothing can be gained");
    ASSERT_TRUE(on.remove());
    EXPECT_EQ(on.textOf("removedLine").find("1 removed"), 0U);
    EXPECT_FALSE(on.isShown("failureLine"));
}

TEST_F(PageSharing, WithoutAWayItIsOnlySaid) {
    ASSERT_TRUE(on.search(disk.at("f")));
    on.tick("two.txt", "a/two.txt");
    on.dialogs.willAnswer(0);
    on.tick("two.txt", "b/two.txt");
    ASSERT_SOON(on.textOf("titleLabel").find("selected 2") != std::string::npos);
    ASSERT_TRUE(ask(0));
    EXPECT_EQ(question().title, QStringLiteral("Nothing here can share its space"));
    EXPECT_EQ(question().text,
              QStringLiteral("1 group is left out: all its copies are ticked, and one stays."));
    EXPECT_TRUE(on.page().bSearchFinished() && names("f/a/two.txt") == 1);
    EXPECT_FALSE(on.isShown("removedLine"));
}

TEST_F(PageSharing, ALookThatTakesLongCanBeStopped) {
    ASSERT_TRUE(on.search(disk.at("f")));
    on.tick("two.txt", "a/two.txt");
    on.reading.shut();
    QTest::keyClick(&on.control("outline"), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(on.page().bSearchFinished()) << "nobody ticks anything else meanwhile";
    ASSERT_SOON(on.window->window()->findChild<QWidget*>(QStringLiteral("shareLookPanel")));
    on.click("shareLookStop");
    EXPECT_TRUE(on.page().bSearchFinished());
    on.reading.open();
    ASSERT_SOON(!on.window->window()->findChild<QWidget*>(QStringLiteral("shareLookPanel")));
    EXPECT_TRUE(on.isEnabled("stopBtn") && on.dialogs.alerts().empty());
}

// What the window tells of free space is what the file system tells.
TEST_F(PageSharing, OnBtrfsByExtentsAndTheFigureIsThatOfTheFileSystem) {
    BtrfsDisk btrfs;
    if (!btrfs.isThere()) GTEST_SKIP() << btrfs.why();
    constexpr std::size_t large = 20U << 20U;
    const std::string bytes = someBytes(large, 5);
    for (const char* const name : {"f/a/film.mkv", "f/b/film.mkv", "f/c/film.mkv"})
        ASSERT_TRUE(btrfs.write(name, bytes));
    ASSERT_TRUE(on.search(btrfs.at("f")));
    on.tick("film.mkv", "b/film.mkv");
    on.tick("film.mkv", "c/film.mkv");
    const auto before = static_cast<std::int64_t>(*settledFreeSpace(btrfs.at("f")));
    const FileAttributes seen = attributesOf(btrfs.at("f/b/film.mkv"));
    ASSERT_TRUE(ask(0));
    EXPECT_EQ(question().text, QStringLiteral("2 files, up to 41.94 MB: each stays a file of its "
                                              "own."));
    ASSERT_SOON(on.isShown("removedLine"));
    const auto gained = static_cast<std::int64_t>(*settledFreeSpace(btrfs.at("f"))) - before;
    EXPECT_NEAR(double(gained), 2.0 * large, 0.05 * large);
    EXPECT_EQ(on.textOf("removedLine").find("2 shared, 4"), 0U) << on.textOf("removedLine");
    EXPECT_FALSE(on.isShown("failureLine"));
    const Descriptor kept(::open(btrfs.at("f/a/film.mkv").c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor copy(::open(btrfs.at("f/b/film.mkv").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(hasSameExtents(kept.get(), copy.get()).value_or(false));
    const FileAttributes now = attributesOf(btrfs.at("f/b/film.mkv"));
    EXPECT_TRUE(now.inode == seen.inode && now.modified == seen.modified && now.links == 1);
    EXPECT_EQ(contentOf(btrfs.at("f/c/film.mkv")), bytes);
}

// One file system can do the one, the other only the other.
TEST_F(PageSharing, WithHardLinksTooBothAreMade) {
    BtrfsDisk btrfs;
    if (!btrfs.isThere()) GTEST_SKIP() << btrfs.why();
    for (const char* const name : {"f/a/film.mkv", "f/b/film.mkv"})
        ASSERT_TRUE(btrfs.write(name, someBytes(1U << 20U, 5)));
    testing::dropOn(on.control("dragView"), {disk.at("f"), btrfs.at("f")});
    ASSERT_SOON(on.window->window()->findChild<QWidget*>(QStringLiteral("searchYes")) != nullptr);
    on.click("searchYes");
    ASSERT_SOON(on.page().bSearchFinished() && on.isShown("detailView"));
    on.tick("film.mkv", "b/film.mkv");
    on.tick("three.jpg", "c/three.jpg");
    ASSERT_TRUE(ask(2));
    EXPECT_EQ(question().buttons.join(QStringLiteral(", ")),
              QStringLiteral("Share, Cancel, With Hard Links Too"));
    ASSERT_SOON(on.isShown("removedLine"));
    EXPECT_EQ(on.textOf("removedLine").find("2 shared"), 0U) << on.textOf("removedLine");
    EXPECT_FALSE(on.isShown("failureLine"));
    EXPECT_EQ(names("f/c/three.jpg"), 2U);
    const Descriptor kept(::open(btrfs.at("f/a/film.mkv").c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor copy(::open(btrfs.at("f/b/film.mkv").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(hasSameExtents(kept.get(), copy.get()).value_or(false));
    EXPECT_EQ(attributesOf(btrfs.at("f/b/film.mkv")).links, 1U);
}

// The figure is not worth waiting for a disk that hangs; nor is the window.
TEST_F(PageSharing, ADiskThatHangsWhileItIsMeasuredHoldsNothingUp) {
    ServedFiles served({"hangspace", "eio=unread.jpg:0"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE";
    for (const char* const name : {"x/three.jpg", "x/unread.jpg"})
        ASSERT_TRUE(served.source().write(name, someBytes(10000, 2)));
    testing::dropOn(on.control("dragView"), {disk.at("f"), served.path()});
    ASSERT_SOON(on.window->window()->findChild<QWidget*>(QStringLiteral("searchYes")) != nullptr);
    on.click("searchYes");
    ASSERT_SOON(on.page().bSearchFinished() && on.isShown("detailView"));
    on.tick("three.jpg", "c/three.jpg");
    on.tick("three.jpg", "x/three.jpg");
    on.removing.shut();
    ASSERT_TRUE(ask(0));
    ASSERT_SOON(on.removing.isWaitedAt());
    ASSERT_TRUE(served.source().write("hung", ""));
    on.removing.open();
    ASSERT_SOON(on.textOf("nameTextStr").find("Measuring the free space") == 0);
    EXPECT_TRUE(on.isEnabled("stopRemoveBtn"));
    QElapsedTimer since;
    since.start();
    on.click("stopRemoveBtn");
    ASSERT_SOON(on.page().bSearchFinished());
    EXPECT_LT(since.elapsed(), 3000);
    EXPECT_EQ(on.textOf("removedLine"), "1 shared, up to 12.29 KB");
    EXPECT_EQ(on.textOf("failureLine"), "1 not shared");
    EXPECT_EQ(names("f/c/three.jpg"), 2U);
    served.end();

    // In a narrow window the note about what could not be read makes room for it.
    QWidget& window = *on.window->window();
    struct Case {
        int width;
        const char* note;
    };
    for (const Case& each : {Case{1400, "1 entry could not be read"}, Case{820, "1 not read"},
                             Case{1400, "1 entry could not be read"}}) {
        window.resize(each.width, 640);
        EXPECT_SOON(on.textOf("quietLine") == each.note);
        const QWidget& line = on.control("removedLine");
        EXPECT_SOON(line.width() >= line.sizeHint().width());
        EXPECT_SOON((on.control("gainLabel").width() > 0) == (each.width > 1000))
            << each.width << " for \"" << on.textOf("gainLabel") << "\" of "
            << on.control("gainLabel").width();
    }
}

TEST(ShareWords, TheQuestionHasAButtonForEachWay) {
    struct Case {
        ShareOutlook outlook;
        const char* text;
        const char* buttons;
        std::optional<ShareYes> first, third;
    };
    const Case cases[] = {
        {{.extents = {2, 3000}, .already = 2, .noFiles = 1},
         "2 files, up to 3.00 KB: each stays a file of its own.\n\n2 have nothing to give.\n"
         "1 folder or link is left out: only files can have their space in common.",
         "Share, Cancel",
         ShareYes::Extents,
         ShareYes::Links},
        {{.extents = {1, 3000}, .links = {2, 5000}},
         "1 file, up to 3.00 KB: it stays a file of its own.\n\n2 files, up to 5.00 KB, by hard "
         "links alone: they become other names of the copies that stay. That is one file then, "
         "and a change to one is a change to all.",
         "Share, Cancel, With Hard Links Too",
         ShareYes::Extents,
         ShareYes::Links},
        {{.already = 1}, "1 has nothing to give.", "OK", std::nullopt, std::nullopt}};
    for (const Case& each : cases) {
        const Alert question = shareQuestion(each.outlook);
        EXPECT_EQ(question.text.toStdString(), each.text);
        EXPECT_EQ(question.buttons.join(QStringLiteral(", ")).toStdString(), each.buttons);
        EXPECT_TRUE(shareYesOf(each.outlook, 0) == each.first);
        EXPECT_TRUE(shareYesOf(each.outlook, 2) == each.third);
        EXPECT_FALSE(shareYesOf(each.outlook, 1) || shareYesOf(each.outlook, -1));
    }
}

}  // namespace
}  // namespace orrinvale
