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

using Categories = std::vector<CleanCategory>;

// What stands before the program in `command` may give it other mounts.
std::string ofTerminal(const std::string& home, QStringList command, const Categories& wanted) {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(home));
    program.setProcessEnvironment(environment);
    command << QStringLiteral(ORRINVALE_CLI_PATH) << QStringLiteral("clean")
            << QStringLiteral("--json");
    for (const CleanCategory category : wanted)
        command << QStringLiteral("--category=") +
                       QString::fromStdString(std::string(namesOf(category).word));
    const QString first = command.takeFirst();
    program.start(first, command);
    if (!program.waitForFinished() || program.exitCode() != 0)
        return fmt::format("failed: {} {}", program.exitCode(),
                           program.readAllStandardError().toStdString());
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

std::string ofPage(const CleanDesk& desk, const Categories& wanted) {
    std::vector<std::string> lines;
    for (const CleanCategory category : wanted) {
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
    const Categories users{UserCaches, UserLogs, UserTrash, UserDownloads};
    const std::string page = ofPage(desk, users);
    EXPECT_EQ(page, ofTerminal(desk.home.tree.path(), {}, users));
    EXPECT_GT(std::ranges::count(page, '\n'), 15) << page;
    // What is told of them.
    const std::string told = desk.linesBehind("quietLine");
    for (const CleanCategory category : {UserCaches, UserDownloads})
        for (const CleanRow& row : desk.list(category).listing().kept)
            EXPECT_NE(told.find(row.path), std::string::npos) << row.path;
}

// The page looks at made-up folders, which the program in the terminal finds in the place of the
// machine's.
TEST(CleanPage, FindsAndKeepsOfTheSystemWhatTheTerminalDoes) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may mount";
    CleanDesk desk{{{"sys/cache/apt/archives/x.deb", 1'000},
                    {"sys/cache/apt/archives/lock", 10},
                    {"sys/cache/apt/pkgcache.bin", 2'000},
                    {"sys/cache/fontconfig/0a.cache-7", 3'000},
                    {"sys/cache/debconf/config.dat", 20},
                    {"sys/cache/man/index.db", 30},
                    {"sys/cache/unknown/x", 40},
                    {"sys/cache/plain.bin", 4'000},
                    {"sys/log/syslog", 50},
                    {"sys/log/syslog.1", 5'000},
                    {"sys/log/syslog.2.gz", 6'000},
                    {"sys/log/apt/history.log.1.xz", 7'000},
                    {"sys/log/apt/history.log", 60},
                    {"sys/log/audit/audit.log.1", 70},
                    {"sys/log/journal/0a/system.journal", 80},
                    {"sys/log/journal/0a/system@0b-0c.journal", 8'000},
                    {"person/letter", 90}},
                   0};
    const auto at = [&](const char* name) { return desk.home.tree.at(name); };
    ASSERT_EQ(::symlink(at("person").c_str(), at("sys/cache/by-link").c_str()), 0);
    ASSERT_EQ(::symlink(at("person/letter").c_str(), at("sys/log/letter.1").c_str()), 0);
    ASSERT_EQ(::link(at("person/letter").c_str(), at("sys/log/letter.2").c_str()), 0);
    ASSERT_TRUE(desk.scan());
    const std::string mounting = fmt::format(
        "mount --bind '{}' /var/cache && mount --bind '{}' /var/log || exit 77; \"$@\" | "
        "sed 's|\"/var/|\"{}/|'",
        at("sys/cache"), at("sys/log"), at("sys"));
    const Categories system{SystemCaches, SystemLogs};
    const std::string terminal =
        ofTerminal(desk.home.tree.path(),
                   {QStringLiteral("unshare"), QStringLiteral("-m"), QStringLiteral("sh"),
                    QStringLiteral("-c"), QString::fromStdString(mounting), QStringLiteral("sh")},
                   system);
    if (terminal.starts_with("failed: 77")) GTEST_SKIP() << "no mounts of its own";
    const std::string page = ofPage(desk, system);
    EXPECT_EQ(page, terminal);
    EXPECT_GT(std::ranges::count(page, '\n'), 12) << page;
}

}  // namespace
}  // namespace orrinvale::testing
