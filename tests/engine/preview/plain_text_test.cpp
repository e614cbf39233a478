// Bytes as text: which encoding is guessed, and that nothing of it is obeyed by a screen.
#include "engine/preview/plainText.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string bytes(std::string_view text, std::size_t size) { return {text.data(), size}; }

TEST(PlainTexts, AreToldByTheirBytes) {
    const struct {
        std::string bytes;
        const char* encoding;  // null: no text
        const char* text;
    } cases[] = {
        {"two\nlines", "UTF-8", "two\nlines"},
        {"a\r\nb\rc\n\r\n", "UTF-8", "a\nb\nc\n\n"},
        {"\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F", "UTF-8", "gr\xC3\xBC\xC3\x9F"},
        {"gr\xC3\xBC\xC3", "Windows-1252", "gr\xC3\x83\xC2\xBC\xC3\x83"},
        {"gr\xFC\xDF, 5 \x80", "Windows-1252", "gr\xC3\xBC\xC3\x9F, 5 \xE2\x82\xAC"},
        {bytes("\xFF\xFEh\0i\0=\xD8\x00\xDE", 10), "UTF-16", "hi\xF0\x9F\x98\x80"},
        {bytes("\xFE\xFF\0h\0i\xD8\0", 8), "UTF-16", "hi\xEF\xBF\xBD"},
        {bytes("w\0o\0r\0d\0s\0 \0", 12), "UTF-16", "words "},
        {bytes("\0w\0o\0r\0d\0s\0 ", 12), "UTF-16", "words "},
        {"\x1B[2Jgone", "UTF-8", "\\x1B[2Jgone"},
        {"a\xE2\x80\xAEtxt.exe\xC2\x85", "UTF-8", "a\\u202Etxt.exe\\x85"},
        {bytes("\x7F"
               "ELF\2\1\1\0\0\0\0\0",
               12),
         nullptr, ""},
        {bytes("a\0b", 3), nullptr, ""},
        {std::string(20, '\x01'), nullptr, ""},
        {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1\x01\x02\x03", nullptr, ""},
    };
    for (const auto& each : cases) {
        const auto text = plainText(each.bytes);
        ASSERT_EQ(text.has_value(), each.encoding != nullptr) << each.bytes;
        if (!text) continue;
        EXPECT_EQ(text->encoding, each.encoding) << each.bytes;
        EXPECT_EQ(text->text, each.text) << each.bytes;
        EXPECT_FALSE(text->isCut) << each.bytes;
    }
}

TEST(PlainTexts, AreCutWhereAWindowWouldLabour) {
    EXPECT_EQ(plainText("cut \xE2\x82", false)->text, "cut \xEF\xBF\xBD\xEF\xBF\xBD");
    const auto line = plainText(std::string(longestLine + 1, 'a') + "\nb");
    ASSERT_TRUE(line && line->isCut);
    EXPECT_EQ(line->text, std::string(longestLine, 'a') + "\xE2\x80\xA6\nb");
    EXPECT_FALSE(plainText(std::string(longestLine, 'a') + "\nb")->isCut);
    // Each escape is six times as long as what it stands for.
    std::string odd;
    while (odd.size() < 65536) odd += "\xE2\x80\xAE\n";
    const auto escaped = plainText(odd);
    ASSERT_TRUE(escaped);
    EXPECT_LE(escaped->text.size(), mostPlainText);
}

}  // namespace
}  // namespace orrinvale
