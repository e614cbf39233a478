// What a description says, and where the rows of its list lie.
#include "engine/updates/NewVersion.h"
#include "support/ReleaseKey.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::optional<NewVersion> newVersionIn(const std::string& text, std::int64_t localNumber = 100) {
    auto list = PropertyList::parse(text);
    return takeNewVersion(list ? &*list : nullptr, localNumber);
}

std::string pair(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

TEST(NewVersion, OnlyTheNumbersAreCompared) {
    const struct {
        const char* number;
        std::int64_t local;
        bool isNewer;
    } cases[] = {{"101", 100, true},   {"100", 100, false}, {"99", 100, false},
                 {"v200", 100, false}, {"200b", 100, true}, {"", 0, false},
                 {"-1", 0, false},     {"1", 0, true},      {"99999999999", 100, true}};
    for (const auto& each : cases)
        EXPECT_EQ(newVersionIn(testing::description(each.number, ""), each.local).has_value(),
                  each.isNewer)
            << each.number;
    EXPECT_FALSE(takeNewVersion(nullptr, 0)) << "nothing was fetched";
    EXPECT_FALSE(newVersionIn("<plist><dict><key>Version</key><string>9</string></dict></plist>"));
    EXPECT_TRUE(
        newVersionIn("<plist><dict><key>VersionCheck</key><integer>101</integer></dict></plist>"));
}

TEST(NewVersion, RowsStandByTheirNumbersWhateverTheOrder) {
    const auto textsOf = [](const std::string& further) {
        Strings texts;
        for (const UpdateLine& each :
             newVersionIn(testing::description("200", further)).value_or(NewVersion()).lines)
            texts.push_back(textOfLine(each));
        return texts;
    };
    EXPECT_THAT(textsOf(pair("3", "c") + pair("1", "a") + pair("2", "b")),
                ElementsAre("1:a", "2:b", "3:c"));
    EXPECT_THAT(textsOf(""), IsEmpty());
    EXPECT_THAT(textsOf(pair("1", "a") + pair("3", "c")), ElementsAre("1:a", "2:(null)"));
    EXPECT_THAT(textsOf(pair("note", "x")), ElementsAre("1:(null)"));
    EXPECT_THAT(textsOf(pair("1", "a") + "<key>2</key><integer>7</integer>" + pair("3", "c")),
                ElementsAre("1:a", "3:c"))
        << "what is no text is skipped";
    std::string many;
    for (int i = 1; i <= 1500; ++i) many += pair(std::to_string(i), "a");
    EXPECT_EQ(textsOf(many).size(), maximumLines);
}

TEST(NewVersion, HeightsAreOfTheMeasuredTextAndAtLeastTheirLeast) {
    const auto placesOf = [](const std::string& further) {
        return placeLines(newVersionIn(testing::description("200", further)).value(),
                          [](const std::string& text) { return double(text.size()); });
    };
    const UpdateListPlaces none = placesOf("");
    EXPECT_EQ(none.height, 99);
    EXPECT_TRUE(none.rows.empty());

    const std::string high(60, 'x');
    const UpdateListPlaces three =
        placesOf(pair("2", high) + pair("1", "short") + pair("3", std::string(27, 'y')));
    EXPECT_EQ(three.height, 30 + 60 + 30);
    ASSERT_EQ(three.rows.size(), 3U);
    const double expected[][2] = {{0, 25}, {25, 60}, {85, 27}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(three.rows[i].top, expected[i][0]) << i;
        EXPECT_EQ(three.rows[i].height, expected[i][1]) << i;
    }
    EXPECT_EQ(placesOf(pair("1", "a") + pair("note", high) + pair("extra", high)).height, 150)
        << "what is never shown counts too";
}

}  // namespace
}  // namespace orrinvale
