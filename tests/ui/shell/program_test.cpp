// The program as a person starts it, on a display of its own: the window, its bounds, a folder from the command line, and its end.
#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <set>

#include "support/TestTree.h"
#include "ui/duplicates/PageWindow.h"
#include "ui/kit/chrome/DesktopSession.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"

namespace orrinvale {
namespace {

using testing::DesktopSession;
using testing::PageWindow;

TEST(MainWindow, HasItsBoundsAndShowsOnlyWhatIsThere) {
    PageWindow on;
    TCImageWindow& window = *on.window->window();
    EXPECT_EQ(window.frame().size(), QSize(800, 506 + 62));
    const struct {
        QSize wanted, given;
    } sizes[] = {{{100, 100}, {800, 506}}, {{5000, 5000}, {1200, 900}}, {{900, 700}, {900, 700}}};
    for (const auto& each : sizes) {
        window.setFrame({window.frame().topLeft(), each.wanted});
        EXPECT_EQ(window.frame().size(), each.given);
    }
    EXPECT_EQ(window.titleBarView()->findChild<QLabel*>(QStringLiteral("titleLabel"))->text(),
              QStringLiteral("Orrinvale"));
    EXPECT_EQ(on.textOf("duplicateButton"), "Duplicate File Finder");
    EXPECT_EQ(on.textOf("fileListButton"), "Large File Finder");
    EXPECT_EQ(on.window->listFileVC(), nullptr) << "made when somebody wants it";
    window.performClose();
    EXPECT_FALSE(window.isVisible());
    on.window->showWindow();
    EXPECT_EQ(window.frame().size(), QSize(900, 700)) << "as it was left";
}

TEST(Program, StartsSearchesAFolderAndEndsWithItsWindow) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("f/a/x.txt", "the same") && tree.write("f/b/x.txt", "the same"));
    DesktopSession session;
    const std::string reason = session.startX11({QStringLiteral("openbox")});
    if (!reason.empty()) GTEST_SKIP() << reason;
    QProcess program;
    QProcessEnvironment environment = session.environment();
    environment.insert(QStringLiteral("ORRINVALE_LOG"), QStringLiteral("1"));
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.setWorkingDirectory(QString::fromStdString(tree.path()));
    program.start(QStringLiteral(ORRINVALE_PROGRAM), {QStringLiteral("./f/")});
    ASSERT_TRUE(program.waitForStarted());
    const auto find = [&] {
        return session
            .run(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                             QStringLiteral("--name"), QStringLiteral("^Orrinvale$")})
            .trimmed();
    };
    QString id;
    ASSERT_TRUE(PageWindow::waitFor([&] { return !(id = find()).isEmpty(); })) << program.readAll().toStdString();
    // More than a dozen colours: not a blank window.
    const QString picture = QString::fromStdString(tree.at("window.png"));
    QImage image;
    ASSERT_TRUE(PageWindow::waitFor([&] {
        session.run(QStringLiteral("import"), {QStringLiteral("-window"), id, picture});
        if (!image.load(picture)) return false;
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 4)
            for (int x = 0; x < image.width(); x += 4) colours.insert(image.pixel(x, y));
        return colours.size() > 12;
    }));
    EXPECT_GE(image.width(), 800);
    EXPECT_GE(image.height(), 506 + 62);
    session.run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"), QStringLiteral("--sync"), id,
                                            QStringLiteral("key"), QStringLiteral("ctrl+w")});
    EXPECT_TRUE(program.waitForFinished(10'000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    const std::string said = program.readAll().toStdString();
    EXPECT_EQ(program.exitCode(), 0) << said;
    EXPECT_NE(said.find("search Path:" + tree.at("f") + ' '), std::string::npos) << said;
}

}  // namespace
}  // namespace orrinvale
