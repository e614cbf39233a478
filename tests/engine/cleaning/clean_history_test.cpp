// The record of the last clean, with whatever may stand in its file.
#include "engine/cleaning/ParseFileLog.h"
#include "engine/text/UtilityFunction.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr Date someDay{1'365'502'830'000'000'000};  // 2013-04-09 10:20:30 +0000

TEST(CleanHistory, isOneLineThatIsReplaced) {
    TestTree tree;
    const ParseFileLog history(tree.at("a/b"));
    for (const std::uint64_t size : {1ULL << 40U, 5ULL}) {
        EXPECT_TRUE(history.setSize(size, someDay));
        std::optional<Date> date;
        EXPECT_EQ(history.getSize(&date), size);
        EXPECT_EQ(date, someDay);
        EXPECT_EQ(contentOf(tree.at("a/b/.kelpford.log.bin")),
                  "logName=SIZE&&date=2013-04-09 10:20:30 +0000&&iSize=" + std::to_string(size));
    }
}

TEST(CleanHistory, anyOrderAndAnyGarbage) {
    enum class When { Then, Now, Never };
    const struct {
        std::string text;
        std::uint64_t size;
        When when;
        std::string name;
    } cases[] = {
        {"iSize=7&&date=2013-04-09 10:20:30 +0000&&logName=X", 7, When::Then, "X"},
        {"other=1&&iSize=7", 7, When::Now, ""},
        {"iSize=7=8&&iSize", 0, When::Now, ""},
        {"iSize= 12abc", 12, When::Now, ""},
        {"iSize=-5", 0, When::Now, ""},
        {"iSize=99999999999999999999", 9'223'372'036'854'775'807ULL, When::Now, ""},
        {"date=yesterday&&iSize=3", 3, When::Never, ""},
        {"date=(null)", 0, When::Never, ""},
        {"iSize=1&&date=2013-04-09 10:20:30 +0000&&\xff", 0, When::Now, ""},
        {"iSize=1" + std::string(10'000'000, 'x'), 0, When::Now, ""},
        {"", 0, When::Now, ""},
    };
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.write(".kelpford.log.bin", each.text));
        FileLog log;
        ParseFileLog(tree.path()).readFileLog({}, log);
        const std::string said = each.text.substr(0, 60);
        EXPECT_EQ(log.iSize, each.size) << said;
        EXPECT_EQ(log.logName, each.name) << said;
        EXPECT_EQ(log.date == someDay, each.when == When::Then) << said;
        EXPECT_EQ(log.date.has_value(), each.when != When::Never) << said;
    }
}

TEST(CleanHistory, whereThereIsNoFile) {
    TestTree tree;
    FileLog log;
    ParseFileLog(tree.at("new")).readFileLog({}, log);
    EXPECT_EQ(log.logName, "FILE SIZE");
    EXPECT_EQ(log.iSize, 0U);
    ASSERT_TRUE(tree.folder("taken/.kelpford.log.bin") && tree.write("file", "1"));
    for (const char* folder : {"taken", "file/below"}) {
        const ParseFileLog history(tree.at(folder));
        EXPECT_FALSE(history.setSize(1, someDay)) << folder;
        EXPECT_EQ(history.getSize(nullptr), 0U) << folder;
    }
}

// Whoever shows a date asks for it first.
TEST(CleanHistory, theTextOfNoDateIsRefused) {
    EXPECT_EQ(UtilityFunction::parseDateTime(dateDescription(someDay)), "04/09/2013 10:20:30");
    EXPECT_THROW(static_cast<void>(UtilityFunction::parseDateTime("(null)")), std::out_of_range);
}

}  // namespace
}  // namespace orrinvale
