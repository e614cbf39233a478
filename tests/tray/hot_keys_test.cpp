// The hot keys over a keyboard of the test's making, and that there are none on Linux.
#include "platform/linux/LinuxHotKeys.h"
#include "support/test.h"
#include "ui/tray/ArrowHotKeys.h"

namespace orrinvale::testing {
namespace {

class RecordedKeys final : public HotKeys {
public:
    void InstallEventHandler(Handler given) override { handler = std::move(given); }
    std::int32_t RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, HotKeyID id,
                                     std::uint32_t& reference) override {
        reference = keyCode;
        text += fmt::format("+{}:{}/{} ", id.id, keyCode, modifiers);
        return 0;
    }
    std::int32_t UnregisterEventHotKey(std::uint32_t reference) override {
        text += fmt::format("-{} ", reference);
        return 0;
    }
    Handler handler;
    std::string text;
};

TEST(HotKeys, TheFirstPressOfAnyOfTheFiveSwitchesThemOff) {
    constexpr std::uint32_t keyboard = fourLetters("keyb");
    constexpr std::uint32_t arrows = fourLetters("Arow");
    const struct {
        HotKeyEvent event;
        bool switchesOff;
    } cases[] = {{{keyboard, 5, {arrows, 1}}, true},   {{keyboard, 5, {arrows, 5}}, true},
                 {{keyboard, 5, {arrows, 0}}, false},  {{keyboard, 5, {arrows, 6}}, false},
                 {{keyboard, 6, {arrows, 1}}, false},  {{arrows, 5, {arrows, 1}}, false},
                 {{keyboard, 5, {keyboard, 1}}, false}};
    for (const auto& each : cases) {
        RecordedKeys keys;
        ArrowHotKeys hot(keys);
        hot.Runloop();
        EXPECT_EQ(keys.text, "+1:124/256 +2:123/256 +3:126/256 +4:125/256 +5:14/256 ");
        keys.text.clear();
        EXPECT_EQ(keys.handler(each.event), -9874) << "it goes on to the system";
        EXPECT_EQ(keys.handler(each.event), -9874);
        EXPECT_EQ(keys.text, each.switchesOff ? "-124 -123 -126 -125 -14 " : "");
    }
    LinuxHotKeys none;
    std::uint32_t reference = 0;
    EXPECT_NE(none.RegisterEventHotKey(124, 256, {arrows, 1}, reference), 0);
}

}  // namespace
}  // namespace orrinvale::testing
