// Paths where there is little room: what is cut first, and what stays to the last.
#include "ui/kit/controls/pathText.h"

#include <QApplication>

#include "support/test.h"

namespace orrinvale {
namespace {

// In each step the widest text that is narrower than the one before.
TEST(PathText, AFolderLosesWhatIsSharedThenItsMiddleAndItsLastNameNever) {
    const struct {
        const char* folder;
        const char* shared;
        std::vector<const char*> steps;
    } cases[] = {
        {"/home/anna/2019/summer/lake/Programme/",
         "/home/anna/",
         {"/home/anna/2019/summer/lake/Programme/", "…/2019/summer/lake/Programme/",
          "…/2019/…/lake/Programme/", "…/2019/…/Programme/", "…/Programme/"}},
        {"/home/anna/2019/Programme/",
         "",
         {"/home/anna/2019/Programme/", "/home/…/2019/Programme/", "/home/…/Programme/",
          "…/Programme/"}},
        // All copies in one folder: its name stays.
        {"/home/anna/Programme/",
         "/home/anna/Programme/",
         {"/home/anna/Programme/", "…/Programme/"}},
        {"/Programme/", "/", {"/Programme/"}},
        {"/", "/", {"/"}},
    };
    const QFontMetrics metrics(QApplication::font());
    for (const auto& each : cases) {
        for (const char* const text : each.steps) {
            const QString step = QString::fromUtf8(text);
            const auto shown = [&](int width) {
                return shortenedFolder(QString::fromUtf8(each.folder),
                                       QString::fromUtf8(each.shared), metrics, width);
            };
            const int width = metrics.horizontalAdvance(step);
            EXPECT_EQ(shown(width).toStdString(), step.toStdString());
            EXPECT_LE(metrics.horizontalAdvance(shown(width - 1)),
                      std::max(width - 1, metrics.horizontalAdvance(QStringLiteral("/"))));
        }
    }
}

TEST(PathText, TheNameGivesWayBeforeTheLastFolderDoes) {
    const QFontMetrics metrics(QApplication::font());
    const QString path =
        QStringLiteral("/home/anna/Programme/a very long name of a programme.tar.gz");
    for (int width = metrics.horizontalAdvance(QStringLiteral("…/Programme/a ….gz  ")); width < 700;
         width += 7) {
        const PathParts shown = shortenedPath(path, QStringLiteral("/home/anna/"), metrics, width);
        EXPECT_TRUE(shown.folder.endsWith(QStringLiteral("/Programme/")))
            << shown.folder.toStdString() << ' ' << width;
        EXPECT_LE(metrics.horizontalAdvance(shown.folder) + metrics.horizontalAdvance(shown.name),
                  width);
        EXPECT_GE(shown.name.size(), 3);
    }
    // Where even that is too much both are cut in their middles.
    const QString folder = QString(60, QLatin1Char('f'));
    const PathParts shown =
        shortenedPath(QLatin1Char('/') + folder + QStringLiteral("/name.txt"), {}, metrics, 150);
    EXPECT_TRUE(shown.folder.startsWith(QStringLiteral("…/f")) &&
                shown.folder.endsWith(QStringLiteral("f/")));
    EXPECT_TRUE(shown.name.startsWith(QLatin1Char('n')) && shown.name.endsWith(QLatin1Char('t')));
    // The folder that all share tells nothing: it goes before the name is cut.
    const QString inShared = QStringLiteral("/home/anna/a long name.txt");
    for (const int less : {1, 40}) {
        const int width =
            metrics.horizontalAdvance(QStringLiteral("…/anna/a long name.txt")) - less;
        const PathParts part =
            shortenedPath(inShared, QStringLiteral("/home/anna/"), metrics, width);
        EXPECT_EQ(part.folder + part.name, QStringLiteral("a long name.txt")) << less;
    }
    // A bare name has no folder to be cut.
    EXPECT_EQ(shortenedPath(QStringLiteral("name.txt"), {}, metrics, 700).name,
              QStringLiteral("name.txt"));
}

}  // namespace
}  // namespace orrinvale
