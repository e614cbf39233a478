// The services beside the size texts: date order, the centred window, the row notice and the system
// gate.
#include <any>
#include <stdexcept>

#include "engine/base/notices.h"
#include "engine/text/UtilityFunction.h"
#include "platform/linux/LinuxSystem.h"
#include "support/test.h"

namespace orrinvale {
namespace {

struct FakeSystem final : System {
    explicit FakeSystem(std::uint32_t figure) : version(figure) {}
    std::uint32_t gestalt(std::string_view selector) const override {
        return selector == "sysv" ? version : 0;
    }
    std::uint32_t version;
};

struct FakeWorkspace final : Workspace {
    std::optional<Rect> mainScreenFrame() const override { return frame; }
    std::optional<Rect> frame;
};

/// Takes back what a test handed over.
class UtilityFunctionTest : public ::testing::Test {
protected:
    ~UtilityFunctionTest() override {
        m_function.setWorkspace(nullptr);
        m_function.setSystem(nullptr);
        m_function.setNotificationCenter(nullptr);
    }
    UtilityFunction& m_function = UtilityFunction::getMyFunction();
};

TEST_F(UtilityFunctionTest, DateTextPutsTheMonthFirst) {
    const struct {
        const char* text;
        const char* reordered;
    } cases[] = {
        {"2013-04-09 10:20:30 +0000", "04/09/2013 10:20:30"},
        {"2013-4-9 10:20", "4/9/2013 10:20"},
        {"2013-04-09-x ", "04/09/2013 "},
        {"%s-%n-%d {}", "%n/%d/%s {}"},
        {"-- ", "// "},
    };
    for (const auto& each : cases)
        EXPECT_EQ(UtilityFunction::parseDateTime(each.text), each.reordered);
    for (const char* text :
         {"", "2013-04-09", "2013-04 10:20:30", "20130409 10:20:30", " 2013-04-09"})
        EXPECT_THROW((void)UtilityFunction::parseDateTime(text), std::out_of_range) << text;
}

TEST_F(UtilityFunctionTest, WindowLiesAboutTheCentreOfTheMainScreen) {
    const Rect aboutTheOrigin{-50.5, -25.0, 101.0, 50.0};
    EXPECT_EQ(UtilityFunction::returnRectOfWindcenterWithWidht(101.0F, 50.0F), aboutTheOrigin);
    FakeWorkspace workspace;
    m_function.setWorkspace(&workspace);
    EXPECT_EQ(UtilityFunction::returnRectOfWindcenterWithWidht(101.0F, 50.0F), aboutTheOrigin);
    // Where the screen lies makes no difference, only how large it is.
    workspace.frame = Rect{100.0, 200.0, 1921.0, 1080.0};
    EXPECT_EQ(UtilityFunction::returnRectOfWindcenterWithWidht(101.0F, 50.0F),
              (Rect{910.0, 515.0, 101.0, 50.0}));
}

TEST_F(UtilityFunctionTest, RowNoticeCarriesNoSelectionAndTheRow) {
    UtilityFunction::callSelectNotificationForMainWindowLeft(3);  // no centre: nothing to tell
    NotificationCenter center;
    std::optional<RowSelection> received;
    const auto observation = center.addObserver("shouldSelectRow", [&](const Notification& notice) {
        received = std::any_cast<RowSelection>(notice.object);
    });
    m_function.setNotificationCenter(&center);
    UtilityFunction::callSelectNotificationForMainWindowLeft(8);
    ASSERT_TRUE(received);
    EXPECT_TRUE(received->selection.empty());
    EXPECT_EQ(received->row, 8);
}

TEST_F(UtilityFunctionTest, SystemGateLiesAt1060) {
    EXPECT_FALSE(UtilityFunction::isBelow1050SystemVer());
    for (const auto& [version, isBelow] :
         {std::pair{0x1050U, true}, {0x105FU, true}, {0x1060U, false}, {0U, true}}) {
        const FakeSystem system(version);
        m_function.setSystem(&system);
        EXPECT_EQ(UtilityFunction::isBelow1050SystemVer(), isBelow) << version;
    }
}

TEST_F(UtilityFunctionTest, KernelsWithoutStatxAreTooOld) {
    const struct {
        const char* release;
        std::uint32_t version;
    } cases[] = {
        {"4.10.17", 0x1050}, {"4.9.0-19-amd64", 0x1050},
        {"3.99.1", 0x1050},  {"2.6.32-754.el6", 0x1050},
        {"4.11.0", 0x1060},  {"4.11", 0x1060},
        {"5.0-rc1", 0x1060}, {"6.1.0-18-amd64", 0x1060},
        {"", 0x1060},        {"4", 0x1060},
        {"4.", 0x1060},      {"next", 0x1060},
    };
    for (const auto& each : cases)
        EXPECT_EQ(LinuxSystem::versionOfRelease(each.release), each.version) << each.release;
    EXPECT_EQ(LinuxSystem().gestalt("sysv"), 0x1060U);  // or this suite's own walks would not run
    EXPECT_EQ(LinuxSystem().gestalt("sys1"), 0U);
}

}  // namespace
}  // namespace orrinvale
