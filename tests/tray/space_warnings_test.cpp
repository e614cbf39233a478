// Words on the desktop about disks that fill up.
#include "ui/tray/SpaceWarnings.h"

#include "engine/settings/SettingsKeys.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/support/soon.h"

namespace orrinvale::testing {
namespace {

constexpr std::uint64_t whole = 1'000'000'000;

// Volumes, a watch on them, and what was put on the desktop. Never freed, for the watch's thread.
struct Desk {
    static Desk& make() {
        auto* const desk = new Desk;
        desk->volumes.fake.volumes = {FakeVolumes::volume(1, "R&D", "/", false, whole),
                                      FakeVolumes::volume(2, "Stick", "/s", true, whole)};
        desk->defaults.registerDefaults({{ZvSpaceAlarmKey, 0.1F}, {spaceWarningsKey, true}});
        return *desk;
    }
    std::unique_ptr<SpaceWarnings> start() {
        return std::make_unique<SpaceWarnings>(SpaceWarnings::Parts{
            &watch, &defaults,
            [this](const DesktopNote& note, const std::function<void()>& failed) {
                notes.push_back(note);
                ifNobodyShowsIt = failed;
                return notes.size();
            },
            [this](const QString& token) { tokens.push_back(token); }});
    }
    void setFree(std::uint64_t percent) {
        volumes.change([&](auto& all) { all[0].volume.info.freeBytes = whole / 100 * percent; });
    }
    // Until looks that began after this call have been told.
    void look() {
        const int until = volumes.walks + 3;
        EXPECT_SOON(volumes.walks >= until);
        QCoreApplication::processEvents();
    }

    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
    SteadyVolumes volumes;
    CountedMemory memory;
    QtMainQueue queue;
    SystemWatch watch{volumes, memory, queue, 1ms};
    std::vector<DesktopNote> notes;
    std::function<void()> ifNobodyShowsIt;
    QStringList tokens;
};

TEST(SpaceWarnings, ADiskThatFillsUpIsToldOnceAlsoOverARestart) {
    Desk& desk = Desk::make();
    auto warnings = desk.start();
    desk.look();
    EXPECT_TRUE(desk.notes.empty());
    desk.setFree(10);
    EXPECT_SOON(desk.notes.size() == 1);
    const DesktopNote note = desk.notes[0];
    EXPECT_EQ(note.title.toStdString(), "R&D is almost full");
    EXPECT_EQ(note.body.toStdString(), "100.00 MB of 1.00 GB are free.");
    EXPECT_FALSE(note.isTransient);
    desk.setFree(5);
    desk.look();
    warnings.reset();
    warnings = desk.start();
    desk.look();
    EXPECT_EQ(desk.notes.size(), 1U);
    desk.setFree(12);
    desk.look();
    desk.setFree(9);
    EXPECT_SOON(desk.notes.size() == 2);

    // Only a press on a note of ours opens anything, and once.
    warnings->takeAction(7, QStringLiteral("default"), QStringLiteral("other"));
    warnings->takeAction(2, note.actions.at(1).key, QStringLiteral("token"));
    warnings->takeAction(2, note.actions.at(1).key, QStringLiteral("again"));
    EXPECT_EQ(desk.tokens, QStringList{QStringLiteral("token")});
}

TEST(SpaceWarnings, TheSettingSwitchesThemOffAndALevelCountsAtOnce) {
    Desk& desk = Desk::make();
    desk.defaults.setBool(false, spaceWarningsKey);
    const auto warnings = desk.start();
    desk.setFree(1);
    ::usleep(20'000);
    EXPECT_EQ(desk.volumes.walks, 0) << "nobody looks for it";
    desk.setFree(20);
    desk.defaults.setBool(true, spaceWarningsKey);
    desk.look();
    EXPECT_TRUE(desk.notes.empty());
    desk.defaults.setFloat(0.3F, ZvSpaceAlarmKey);
    EXPECT_SOON(desk.notes.size() == 1);
}

TEST(SpaceWarnings, AWordThatNobodyShowedIsSaidByTheNextStart) {
    Desk& desk = Desk::make();
    desk.setFree(3);
    auto warnings = desk.start();
    EXPECT_SOON(desk.notes.size() == 1);
    LogLines log;
    desk.ifNobodyShowsIt();
    Strings lines = log.stop();
    std::erase_if(lines, [](const auto& line) { return line.find("are free") == line.npos; });
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_THAT(lines[0], HasSubstr("/: 30.00 MB of 1.00 GB are free"));
    desk.look();
    EXPECT_EQ(desk.notes.size(), 1U) << "not by this one";
    warnings = desk.start();
    EXPECT_SOON(desk.notes.size() == 2);
}

}  // namespace
}  // namespace orrinvale::testing
