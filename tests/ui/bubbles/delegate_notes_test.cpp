// What the delegate says about space: the disc of the status item, its warning, and notes that
// nobody sees.
#include "ui/bubbles/delegateNotes.h"

#include <QApplication>

#include "engine/base/UtilityObject.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/text/Localized.h"
#include "support/test.h"
#include "ui/support/Launched.h"

namespace orrinvale::testing {
namespace {

// Bytes of 1000, and the settings in single precision.
TEST(DelegateNotes, TheBootVolumeGivesTheDiscAndTheWarning) {
    Launched on;
    on.delegate->applicationDidFinishLaunching();
    const struct {
        const char* what;
        FSVolumeInfo info;
        float alarm;
        const char* picture;
        bool warns;
    } cases[] = {
        {"half full", {1000, 500}, 0.1F, "50%", false},
        {"at the level", {1000, 100}, 0.1F, "90%-1", true},
        {"truncated to the level", {1000, 109}, 0.1F, "90%-1", true},
        {"above it", {1000, 110}, 0.1F, "89%", false},
        {"a level between two per cent", {1000, 105}, 0.109F, "90%-1", true},
        {"full for all but the administrator", {1000, 0, 50}, 0.1F, "100%-1", true},
        {"a reserve is no use", {1000, 95, 50}, 0.1F, "90%-1", true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        on.defaults.setFloat(each.alarm, ZvSpaceAlarmKey);
        on.volumes.with([&](FakeVolumes& fake) { fake.volumes.front().volume.info = each.info; });
        EXPECT_EQ(on.delegate->getStatusImage().name().toStdString(), each.picture);
        on.delegate->noteHomeDisk(*on.delegate->getBootVolume());
        EXPECT_EQ(on.delegate->getWarningValue(), each.warns);
    }
    on.volumes.with([](FakeVolumes& fake) { fake.volumes.erase(fake.volumes.begin()); });
    EXPECT_TRUE(on.delegate->getStatusImage().isNull()) << "no boot volume";
    EXPECT_FALSE(HomeDisk{}.getWarningValue()) << "not seen yet";
    ZvVolumeInfo empty;
    EXPECT_FALSE(HomeDisk::of(empty, 1).getWarningValue());
    EXPECT_EQ(HomeDisk::of(empty, 1e30F).homeDiskWarningSize, 1'000'000);
    EXPECT_EQ(HomeDisk::of(empty, std::nanf("")).homeDiskWarningSize, -1'000'000);
    EXPECT_TRUE(statusImage(&empty, 1).isNull());
    EXPECT_EQ(statusFrame(Rect{0, 0, 1920, 1080}), QPointF(1720, 1070));
    EXPECT_EQ(on.delegate->getStatusFrame(), QPointF(-200, -10)) << "no screen";
}

// What comes, goes, warns or has ended is told elsewhere; the note of it is no window.
TEST(DelegateNotes, AreSilent) {
    Started on;
    const auto before = QApplication::topLevelWidgets().size();
    on.delegate->errorValuebiggrtFreeBubble("R&D <b>");
    on.delegate->cleaningFileFinishNotification(
        {"CleaningFinish",
         {},
         {{"CLEAN_FILES_COUNT", std::string("12")}, {"FREE_SPACE_SIZE", std::string("1.25 GB")}}});
    EXPECT_EQ(QApplication::topLevelWidgets().size(), before);
    EXPECT_EQ(UtilityObject::getMyObject().liveBubbleCount, 0);

    EXPECT_EQ(warningField(QStringLiteral("R&D <b>"))->text(), QStringLiteral("R&D <b> is error!"));
    auto [count, size] = cleanedFields({"", {}, {{"CLEAN_FILES_COUNT", std::string("12")}}});
    EXPECT_EQ(count->text().toStdString(), getLocalizedString("CLEAN_FILES_COUNT") + " 12");
    EXPECT_EQ(size->text().toStdString(), getLocalizedString("CLEAN_FILES_SIZE") + ' ');
    EXPECT_LT(count->y(), size->y());
    EXPECT_EQ(noteOf(std::move(count), std::move(size))->size(), QSize(280, 50));
    EXPECT_EQ(noteOf(warningField({}))->size(), QSize(220, 50));
}

}  // namespace
}  // namespace orrinvale::testing
