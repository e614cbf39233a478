// The page and `orrinvale-cli clean` find the same in one home, and keep the same for the same
// reasons.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "ui/cleaning/CleanDesk.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;

std::string sorted(std::vector<std::string> lines) {
    std::ranges::sort(lines);
    std::string text;
    for (const std::string& each : lines) text += each + '\n';
    return text;
}

std::string ofTerminal(const std::string& home) {
    QProcess program;
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(home));
    program.setProcessEnvironment(environment);
    program.start(
        QStringLiteral(ORRINVALE_CLI_PATH),
        {QStringLiteral("clean"), QStringLiteral("--json"),
         QStringLiteral("--category=user-caches"), QStringLiteral("--category=user-logs"),
         QStringLiteral("--category=user-trash"), QStringLiteral("--category=user-downloads")});
    if (!program.waitForFinished() || program.exitCode() != 0)
        return "failed: " + program.readAllStandardError().toStdString();
    std::vector<std::string> lines;
    const QJsonArray categories =
        QJsonDocument::fromJson(program.readAllStandardOutput())[u"categories"].toArray();
    for (const QJsonValue category : categories) {
        const std::string name = category[u"name"].toString().toStdString();
        lines.push_back(fmt::format("{} {}", name, category[u"size"].toInteger()));
        for (const char* const part : {"entries", "kept"})
            for (const QJsonValue each : category[QLatin1String(part)].toArray())
                lines.push_back(fmt::format(
                    "{} {} {} {} {}", name, part, each[u"path"].toString().toStdString(),
                    each[u"size"].toInteger(), each[u"reason"].toString().toStdString()));
    }
    return sorted(lines);
}

std::string ofPage(const CleanDesk& desk) {
    std::vector<std::string> lines;
    for (const CleanCategory category : {UserCaches, UserLogs, UserTrash, UserDownloads}) {
        const ScanViewController& list = desk.list(category);
        const std::string_view name = namesOf(category).word;
        lines.push_back(fmt::format("{} {}", name, list.totalBytes()));
        for (const auto& row : *list.scanFiles)
            lines.push_back(fmt::format("{} entries {} {} ", name, row->path, row->fileSizeNum));
        for (const CleanRow& row : list.listing().kept)
            lines.push_back(
                fmt::format("{} kept {} {} {}", name, row.path, row.keptBytes, row.keptWords));
        for (const auto& closed : list.listing().closed)
            lines.push_back(fmt::format("{} kept {} 0 {}", name, closed.path, closed.reason));
    }
    return sorted(lines);
}

TEST(CleanPage, FindsAndKeepsWhatTheTerminalDoes) {
    // What was written just now is in no cache that goes; elsewhere its age means nothing.
    CleanDesk desk{{{".cache/new/x", 1'000},
                    {".cache/work/.git/x", 10},
                    {".cache/rclone/x", 20},
                    {".config/Code/logs/main.log", 3'000},
                    {".config/Code/state", 1},
                    {".npm/_logs/a.log", 4'000},
                    {".xsession-errors.old", 70},
                    {".local/share/Trash/files/old/x", 5'000},
                    {".local/share/Trash/files/old/y/z", 6'000},
                    {".local/share/Trash/info/old.trashinfo", 30},
                    {"Downloads/\u00fcber.iso", 7'000},
                    {"Downloads/half.part", 8'000},
                    {"Downloads/folder/x", 9'000},
                    {"Downloads/folder/y.crdownload", 100}},
                   0};
    ASSERT_EQ(::symlink("/etc/hostname", desk.home.tree.at("Downloads/link").c_str()), 0);
    ASSERT_EQ(::link(desk.home.tree.at("Downloads/folder/x").c_str(),
                     desk.home.tree.at("Downloads/second").c_str()),
              0);
    ASSERT_TRUE(desk.scan());
    const std::string page = ofPage(desk);
    EXPECT_EQ(page, ofTerminal(desk.home.tree.path()));
    EXPECT_GT(std::ranges::count(page, '\n'), 15) << page;
    // What is told of them.
    const std::string told = desk.linesBehind("quietLine");
    for (const CleanCategory category : {UserCaches, UserDownloads})
        for (const CleanRow& row : desk.list(category).listing().kept)
            EXPECT_NE(told.find(row.path), std::string::npos) << row.path;
}

}  // namespace
}  // namespace orrinvale::testing
