// The text of the settings file, and values read as other types.
#include <cmath>
#include <limits>

#include "engine/settings/SettingsText.h"
#include "engine/settings/UnitTags.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Int = std::int64_t;

TEST(SettingsText, EveryValueComesBackAsItWas) {
    SettingValues values{
        {"flag", true}, {"off", false}, {"least", std::numeric_limits<Int>::min()}};
    int number = 0;
    for (const float f : {0.1F, 1.0F, -0.0F, 1e20F, 1e-45F, 3.4028235e38F,
                          std::numeric_limits<float>::infinity(), NAN})
        values.emplace("float" + std::to_string(number++), f);
    for (const std::string& text :
         {std::string(), std::string("YES"), std::string("a=\"b\" \\ # ; [x]\n\r\t\x01\x7F"),
          std::string("\0x", 2), std::string("\xC3\xA9\xFF")}) {
        values.emplace("text" + std::to_string(number++), text);
        values.emplace(text, Int{1});
    }
    const auto again = parseSettings(printSettings(values));
    ASSERT_TRUE(again && again->badLines.empty());
    EXPECT_EQ(again->values.size(), values.size());
    for (const auto& [key, value] : values) {
        ASSERT_TRUE(again->values.contains(key)) << key;
        EXPECT_TRUE(isSame(again->values.at(key), value)) << key;
    }
}

TEST(SettingsText, HandWrittenFiles) {
    const auto parsed = parseSettings(
        "; note\r\n\r\n [Orrinvale] \r\na=1\r\n\tb\t=  1.5e1 \n\"c d\"=\"x\" \na = 2");
    ASSERT_TRUE(parsed && parsed->badLines.empty());
    EXPECT_EQ(parsed->values,
              (SettingValues{{"a", Int{2}}, {"b", 15.0F}, {"c d", std::string("x")}}));
    const struct {
        const char* text;
        SettingValue value;
    } cases[] = {
        {"YES", true},
        {"no", false},
        {"On", true},
        {"OFF", false},
        {"True", true},
        {"0,25", 0.25F},
        {"-1,5", -1.5F},
        {"0,125", 0.125F},
        {"7 # note", Int{7}},
        {"0.5\t; note", 0.5F},
        {"\"a # b\" ; note", std::string("a # b")},
        {"'it is \"so\" \\n'", std::string("it is \"so\" \\n")},
        {"“curved”", std::string("curved")},
        {"„low“", std::string("low")},
    };
    for (const auto& each : cases)
        for (const char* head :
             {"[Orrinvale]\n", "\xEF\xBB\xBF[Orrinvale]\r\n", "", "\xEF\xBB\xBF"}) {
            const auto one = parseSettings(head + std::string("a = ") + each.text + "\r\n");
            ASSERT_TRUE(one) << each.text;
            EXPECT_EQ(one->values, (SettingValues{{"a", each.value}})) << head << each.text;
        }
}

TEST(SettingsText, ABadLineCostsItselfAlone) {
    for (const char* line : {"x",
                             "= 1",
                             "a =",
                             "a = maybe",
                             "a = 1,000",
                             "a = 1,2,3",
                             "a = 1.5,2",
                             "a = ,5",
                             "a = 0x10",
                             "a = 1e99",
                             "a = 99999999999999999999x",
                             "a = \"",
                             "a = \"b\" c",
                             "a = \"\\q\"",
                             "a = \"\\x4\"",
                             "a = 'b",
                             "a = 1#2",
                             "a b = 1",
                             "\x7F",
                             "\xFF\xFE[\1"}) {
        const auto parsed =
            parseSettings(std::string("[Orrinvale]\nok = 1\n") + line + "\nlast = 2\n");
        ASSERT_TRUE(parsed) << line;
        EXPECT_EQ(parsed->values, (SettingValues{{"ok", Int{1}}, {"last", Int{2}}})) << line;
        EXPECT_EQ(parsed->badLines, std::vector<std::size_t>{3}) << line;
    }
    const auto sections = parseSettings("a = 1\n[General]\nb = 1\n[Orrinvale]\nc = 1\n");
    ASSERT_TRUE(sections);
    EXPECT_EQ(sections->values, (SettingValues{{"a", Int{1}}, {"c", Int{1}}}));
    EXPECT_EQ(sections->badLines, (std::vector<std::size_t>{2, 3}));
    EXPECT_TRUE(parseSettings("[Orrinvale]"));
    for (const std::string& text :
         {std::string(), std::string("garbage\n"), std::string("\0\0\0", 3),
          "[Orrinvale]\n#" + std::string(kSettingsTextLimit, 'x')})
        EXPECT_FALSE(parseSettings(text)) << text.substr(0, 20);
}

TEST(SettingValue, ReadsAsEveryType) {
    struct Row {
        SettingValue value;
        Int whole;
        bool flag;
        float number;
    };
    const std::string huge(30, '9');
    const std::vector<Row> rows{{true, 1, true, 1.0F},
                                {Int{2}, 2, true, 2.0F},
                                {Int{0}, 0, false, 0.0F},
                                {0.5F, 0, true, 0.5F},
                                {-2.9F, -2, true, -2.9F},
                                {1e30F, std::numeric_limits<Int>::max(), true, 1e30F},
                                {-INFINITY, std::numeric_limits<Int>::min(), true, -INFINITY},
                                {std::string("YES"), 0, true, 0.0F},
                                {std::string("NO"), 0, false, 0.0F},
                                {std::string(" -12.5abc"), -12, true, -12.5F},
                                {std::string("+007"), 7, true, 7.0F},
                                {std::string("-000"), 0, false, 0.0F},
                                {std::string("+-3"), 0, false, 0.0F},
                                {huge, std::numeric_limits<Int>::max(), true, 1e30F},
                                {std::string(), 0, false, 0.0F}};
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows.data());
        EXPECT_EQ(integerOf(row.value), row.whole);
        EXPECT_EQ(boolOf(row.value), row.flag);
        EXPECT_EQ(floatOf(row.value), row.number);
    }
    EXPECT_EQ(integerOf(NAN), 0);
}

TEST(UnitTags, TerabytesWrap) {
    EXPECT_EQ(sizeLimit(1, 2), 1'000'000U);
    EXPECT_EQ(sizeLimit(5, 0) + sizeLimit(5, 5) + sizeLimit(5, -1), 15U);
    EXPECT_EQ(sizeLimit(1, 4), std::numeric_limits<std::uint64_t>::max() - 727379967U);
    EXPECT_EQ(sizeLimit(2, 4), std::numeric_limits<std::uint64_t>::max() - 2 * 727379968ULL + 1);
    EXPECT_EQ(duplicateSizeLimit(3, 4), 3'000'000'000'000U);
    EXPECT_EQ(duplicateSizeLimit(7, 1) + duplicateSizeLimit(-7, 1) + duplicateSizeLimit(2, 9),
              7'002U);
    EXPECT_EQ(duplicateSizeLimit(std::numeric_limits<std::int64_t>::max(), 4),
              std::numeric_limits<std::uint64_t>::max());
}

}  // namespace
}  // namespace orrinvale
