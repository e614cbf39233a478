// The table of texts is whole: every line reads, and every key that the sources ask for is there.
#include "engine/text/Localized.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::set<std::string> keysAskedFor(std::string_view source) {
    constexpr std::string_view kCall = "getLocalizedString(";
    std::set<std::string> keys;
    for (std::size_t at = source.find(kCall); at != std::string_view::npos;
         at = source.find(kCall, at + 1)) {
        const std::size_t start = source.find_first_not_of(" \n", at + kCall.size());
        if (start == std::string_view::npos || source[start] != '"') continue;
        keys.emplace(source.substr(start + 1, source.find('"', start + 1) - start - 1));
    }
    return keys;
}

TEST(Localized, BuiltInTableHasNoMalformedLineAndNoEmptyText) {
    const StringTable& table = builtInTexts();
    EXPECT_TRUE(table.malformedLines.empty()) << "first in line " << table.malformedLines.front();
    for (const auto& [key, text] : table.texts) {
        EXPECT_FALSE(text.empty()) << key;
        EXPECT_NE(text, key);
    }
}

TEST(Localized, GermanHasTheSameKeysAndPlaceholders) {
    const auto marks = [](const std::string& text) {
        std::multiset<char> found;
        for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1))
            found.insert(at + 1 < text.size() ? text[at + 1] : '%');
        return found;
    };
    const auto& english = builtInTexts().texts;
    const StringTable& german = builtInTexts("de");
    EXPECT_TRUE(german.malformedLines.empty()) << "first in line " << german.malformedLines.front();
    EXPECT_EQ(german.texts.size(), english.size());
    for (const auto& [key, text] : english) {
        const auto found = german.texts.find(key);
        ASSERT_NE(found, german.texts.end()) << key;
        EXPECT_EQ(marks(found->second), marks(text)) << key;
        EXPECT_FALSE(found->second.empty()) << key;
        EXPECT_TRUE(found->second != text || key == "TITLE_CLEAN_DOWNLOADS") << key;
    }
}

TEST(Localized, TextsComeInTheLanguageThatWasSet) {
    const auto sentence = [] { return getLocalizedString("EJECT_HOLDER", {"%2 50%", "7"}); };
    EXPECT_EQ(sentence(), "%2 50% (process 7, %3)")
        << "what is filled in is left alone, and so is what nothing fills";
    setTextLanguage("de");
    EXPECT_EQ(sentence(), "%2 50% (Prozess 7, %3)");
    setTextLanguage("fr");
    EXPECT_EQ(sentence(), "%2 50% (process 7, %3)") << "English for all others";
}

TEST(Localized, KeysOfTheInterfaceAreThere) {
    std::istringstream keys(
        "TITLE_CLEAN_SYS_MYMAC TITLE_CLEAN_SYS_CACHES DESC_CLEAN_SYS_CACHES TITLE_CLEAN_USR_CACHES "
        "DESC_CLEAN_USR_CACHES TITLE_CLEAN_SYS_LOGS DESC_CLEAN_SYS_LOGS TITLE_CLEAN_USR_LOGS "
        "DESC_CLEAN_USR_LOGS TITLE_CLEAN_TRASH DESC_CLEAN_TRASH TITLE_CLEAN_DOWNLOADS "
        "DESC_CLEAN_DOWNLOADS "
        "TITLE_UNINSTALL DESC_UNINSTALL TITLE_FREESPACE_MONITOR DESC_FREESPACE_MONITOR "
        "CLEAN_FILES_COUNT "
        "CLEAN_FILES_SIZE FREE_SPACE_SIZE NO_FOLDER_CONTENT LOCAL_STORAGE EXTERNAL_STORAGE "
        "SUPER_DRIVER "
        "NETWOR_STORAGE DISK_IMAGE FREE_MEMORY NO_HAVE_REMOVABLE CANNOT_OPEN_FINDER");
    for (std::string key; keys >> key;) EXPECT_TRUE(builtInTexts().texts.contains(key)) << key;
}

TEST(Localized, EveryKeyInTheSourcesIsInTheTable) {
    EXPECT_EQ(
        keysAskedFor(
            "f(getLocalizedString( \"A\"), getLocalizedString(key), getLocalizedString(\n\"B\"))"),
        (std::set<std::string>{"A", "B"}));
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ORRINVALE_SOURCES)) {
        const auto extension = entry.path().extension();
        if (extension != ".cpp" && extension != ".h") continue;
        ++files;
        for (const std::string& key : keysAskedFor(testing::contentOf(entry.path())))
            EXPECT_TRUE(builtInTexts().texts.contains(key)) << key << " in " << entry.path();
    }
    EXPECT_GT(files, 0U);
}

TEST(Localized, MissingAndNullKeys) {
    EXPECT_EQ(getLocalizedString(nullptr), "");
    EXPECT_EQ(getLocalizedString("NO_SUCH_KEY"), "NO_SUCH_KEY");
    EXPECT_EQ(getLocalizedString("CLEAN_FILES_SIZE"), "Size:");
}

TEST(Localized, LinesOfEveryForm) {
    const StringTable table = parseStringTable(
        "/* one */ // two\n"
        "\"A\" = \"a \\\"b\\\" \\\\ c\\nd\"; // after\r\n"
        "/* over\n\"NOT\" = \"this\";\n two lines */ \"B\"=\"\";/* and\n"
        " on */\n"
        "  \"C\"\t=\t\"// no comment /* either\" ;\n"
        "\n"
        "\"D\" = \"last line, no break\";");
    EXPECT_TRUE(table.malformedLines.empty());
    const std::map<std::string, std::string, std::less<>> expected{{"A", "a \"b\" \\ c\nd"},
                                                                   {"B", ""},
                                                                   {"C", "// no comment /* either"},
                                                                   {"D", "last line, no break"}};
    EXPECT_EQ(table.texts, expected);

    for (const char* line :
         {"A = \"a\";", "\"A\" = \"a\"", "\"A\" \"a\";", "\"A\" = a;", "\"A\" = \"a;",
          "\"A\" = \"a\\\";", "\"A\" = \"\\q\";", "\"A = \"a\";", "\"A\" = \"a\"; x",
          "\"\" = \"a\";", "\"A\" = \"a\\", "x", "\"A\" = \"a\"; \"B\" = \"b\";"})
        EXPECT_EQ(parseStringTable(std::string("\n") + line).malformedLines,
                  std::vector<std::size_t>{2})
            << line;
    EXPECT_EQ(parseStringTable("\"A\" = \"a\";\n\"A\" = \"b\";").malformedLines,
              std::vector<std::size_t>{2});
}

}  // namespace
}  // namespace orrinvale
