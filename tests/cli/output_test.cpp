// The texts that commands print and read: JSON of any bytes, names on a terminal, numbers of bytes,
// absolute paths.
#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "cli/Output.h"
#include "engine/text/SizeText.h"
#include "support/test.h"

namespace orrinvale::cli {
namespace {

const std::string kBad = "\xEF\xBF\xBD";

std::string jsonText(std::string_view bytes) {
    std::string out;
    appendJsonText(out, bytes);
    return out;
}

TEST(Utf8, TheSequenceAtTheStartIsMeasured) {
    using namespace std::string_view_literals;
    const std::pair<std::size_t, std::vector<std::string_view>> cases[] = {
        {1, {"\0"sv, "\x7F\x80"}},
        {2, {"\xC2\x80", "\xDF\xBF"}},
        {3, {"\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF"}},
        {4, {"\xF0\x90\x80\x80", "\xF0\x9F\x98\x80 and more", "\xF4\x8F\xBF\xBF"}},
        {0,
         {"", "\x80", "\xBF", "\xFF", "\xF5\x80\x80\x80",
          "\xF8\x88\x80\x80\x80"}},                                         // begin nothing
        {0, {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}},  // overlong
        {0, {"\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80"}},          // no code points
        {0,
         {"\xC2", "\xC2\x41", "\xC2\xC2", "\xE2\x82", "\xE2\x28\xA1", "\xE2\x82\x28"}},  // cut off
        {0, {"\xF0\x9F\x98", "\xF0\x9F\x98\x28"}}};
    for (const auto& [length, sequences] : cases)
        for (const std::string_view bytes : sequences)
            EXPECT_EQ(validSequence(bytes), length) << ::testing::PrintToString(bytes);
}

TEST(Json, TextsAreQuoted) {
    const struct {
        std::string_view bytes;
        std::string text;
    } cases[] = {
        {"", R"("")"},
        {"a \"b\" \\ c/d", R"("a \"b\" \\ c/d")"},
        {"\n\t\r\x01\x1F\x7F", R"("\n\t\r\u0001\u001f\u007f")"},
        {std::string_view("a\0b", 3), R"("a\u0000b")"},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
        {"a\xFFz", "\"a" + kBad + "z\""},
        {"\xE2\x82", "\"" + kBad + kBad + "\""},  // one for each bad byte
        {"\xED\xA0\x80\"", "\"" + kBad + kBad + kBad + "\\\"\""},
        {"\xC3\n", "\"" + kBad + "\\n\""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(jsonText(each.bytes), each.text) << ::testing::PrintToString(each.bytes);
}

TEST(Json, EveryByteAndPairOfBytesGivesAText) {
    for (unsigned pair = 0; pair < 65536; ++pair) {
        const std::string bytes{static_cast<char>(pair >> 8), static_cast<char>(pair & 255)};
        const auto parsed = nlohmann::json::parse(jsonText(bytes), nullptr, false);
        ASSERT_TRUE(parsed.is_string()) << pair;
        const bool valid = validSequence(bytes) == 2 ||
                           (validSequence(bytes) == 1 && validSequence(bytes.substr(1)) == 1);
        ASSERT_EQ(parsed.get<std::string>() == bytes, valid) << pair;
    }
}

TEST(Json, ExactBytesStandBesideABadPathOnly) {
    const auto fieldsOf = [](std::string_view path) {
        std::string out;
        appendJsonPath(out, path);
        return nlohmann::json::parse("{" + out + "}");
    };
    EXPECT_EQ(fieldsOf("/a\n\xC3\xA9"), (nlohmann::json{{"path", "/a\n\xC3\xA9"}}));
    EXPECT_EQ(fieldsOf("/a\xFF\x0A"),
              (nlohmann::json{{"path", "/a" + kBad + "\n"}, {"pathHex", "2f61ff0a"}}));
}

TEST(Printable, NothingInANameCommandsTheTerminal) {
    const struct {
        std::string_view bytes;
        std::string_view text;
    } cases[] = {
        {"", ""},
        {"plain name.txt", "plain name.txt"},
        {"a\nb\tc", "a\\nb\\tc"},
        {"\x1b[2J\x07\x7F", "\\x1b[2J\\x07\\x7f"},
        {"\xC3\xA9\xF0\x9F\x98\x80", "\xC3\xA9\xF0\x9F\x98\x80"},
        {"\xC2\x9B"
         "1m",
         "\\xc2\\x9b1m"},  // U+009B begins a command as ESC [ does
        {"\xC2\x80\xC2\x9F\xC2\xA0", "\\xc2\\x80\\xc2\\x9f\xC2\xA0"},
        {"\x9B\xFF", "\\x9b\\xff"},
        {"\xC3", "\\xc3"},
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},
        {"a\u202Egpj.exe", "a\\xe2\\x80\\xaegpj.exe"},  // shown as "aexe.jpg" otherwise
        {"\u061C\u200E\u200F", "\\xd8\\x9c\\xe2\\x80\\x8e\\xe2\\x80\\x8f"},
        {"\u202A\u2066\u2069", "\\xe2\\x80\\xaa\\xe2\\x81\\xa6\\xe2\\x81\\xa9"},
        {"a\u200Bb\u200D\u2060", "a\\xe2\\x80\\x8bb\\xe2\\x80\\x8d\\xe2\\x81\\xa0"},
        {"\uFEFF\u00AD\u2028", "\\xef\\xbb\\xbf\\xc2\\xad\\xe2\\x80\\xa8"},
        {"\U000E0041", "\\xf3\\xa0\\x81\\x81"},
        {"\u2010\u2030\u05D0\u0627",
         "\u2010\u2030\u05D0\u0627"},  // letters written from the right are letters
    };
    for (const auto& each : cases) EXPECT_EQ(printable(each.bytes), each.text);
}

TEST(SizeText, NumbersWithAndWithoutUnits) {
    const struct {
        std::string_view text;
        std::optional<std::uint64_t> bytes;
    } cases[] = {
        {"0", 0},
        {"007", 7},
        {"18446744073709551615", UINT64_MAX},
        {"10MB", 10'000'000},
        {"10 MB", 10'000'000},
        {"10mb", 10'000'000},
        {"4KiB", 4096},
        {"4 kib", 4096},
        {"3B", 3},
        {"2GB", 2'000'000'000},
        {"2GiB", 2ULL << 30},
        {"1TB", 1'000'000'000'000},
        {"1PiB", 1ULL << 50},
        {"1.5 GB", 1'500'000'000},
        {"1,5 GB", 1'500'000'000},
        {"0,125KB", 125},
        {"0.0009KB", 0},
        {"1.999999999999999999999KiB", 2047},
        {"18446PB", 18'446'000'000'000'000'000ULL},
        {"18447PB", std::nullopt},
        {"16384PiB", std::nullopt},
        {"18446744073709551616", std::nullopt},
        {std::string_view("1\0", 2), std::nullopt},
    };
    for (const auto& each : cases) EXPECT_EQ(parseSize(each.text), each.bytes) << each.text;
    for (const char* text : {"",     "-0",   "-1",    "+1",   " 1",     "1 ",    "1e3",     "1.5",
                             "1.5B", "0x10", "1K",    "1M",   "1k",     "1,000", "1,000KB", "MB",
                             ".5MB", "1.MB", "1  MB", "1MB ", "1 MB/s", "1ZB",   "1KIBB"})
        EXPECT_EQ(parseSize(text), std::nullopt) << '"' << text << '"';
    EXPECT_EQ(parseNumber("12"), 12U);
    EXPECT_EQ(parseNumber("1KB"), std::nullopt);
}

TEST(AbsolutePath, NoDotsAndNoDoubledSlashes) {
    const testing::TestTree tree;
    ASSERT_TRUE(tree.path().starts_with('/'));
    testing::TestTree other;
    ASSERT_TRUE(other.folder("far/deep"));
    ASSERT_TRUE(other.symlink("far/deep", "near"));
    ASSERT_EQ(::chdir(other.path().c_str()), 0);
    const struct {
        std::string given;
        std::string absolute;
    } cases[] = {
        {"/", "/"},
        {"///", "/"},
        {"/.", "/"},
        {"/a//b/./c/", "/a/b/c"},
        {"/a/.hidden/..c/...", "/a/.hidden/..c/..."},
        {".", other.path()},
        {"./", other.path()},
        {"far", other.at("far")},
        {"./far//./deep/", other.at("far/deep")},
        {"near", other.at("near")},    // the name that was given, not where it leads
        {"near/..", other.at("far")},  // the folder that really lies above
        {"far/../far", other.at("far")},
        {"/..", "/"},
    };
    for (const auto& each : cases) EXPECT_EQ(absolutePath(each.given), each.absolute) << each.given;
    // What is not there is left for the opening to complain about.
    EXPECT_EQ(absolutePath("/nowhere/../x"), "/nowhere/../x");
    ASSERT_EQ(::chdir("/"), 0);
}

}  // namespace
}  // namespace orrinvale::cli
