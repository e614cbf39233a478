// The line between the program that looks and the one that shows: what comes from there is believed
// only as far as it holds together.
#include "engine/preview/PreviewAnswer.h"
#include "engine/preview/plainText.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Kind = PreviewAnswer::Kind;

TEST(PreviewAnswers, ComeOverAsTheyWere) {
    PreviewAnswer picture{.kind = Kind::Picture,
                          .format = "jpeg",
                          .storedWidth = 4000,
                          .storedHeight = 3000,
                          .width = 2,
                          .height = 1,
                          .content = std::string("\n\0\n\nabcd", 8)};
    PreviewAnswer text{.kind = Kind::Text, .encoding = "UTF-8", .isCut = true, .content = "a\n\nb"};
    PreviewAnswer media{.kind = Kind::Media,
                        .media = {"MP4", "H.264", "AAC", ~std::uint64_t{0}, 1920, 1080, 2, 48000}};
    PreviewAnswer failure{.kind = Kind::Failed, .failure = PreviewFailure::TooLarge};
    for (const PreviewAnswer& sent : {picture, text, media, failure, PreviewAnswer{}}) {
        const auto came = readAnswer(answerHead(sent) + sent.content);
        ASSERT_TRUE(came) << answerHead(sent);
        EXPECT_EQ(answerHead(*came) + came->content, answerHead(sent) + sent.content);
        EXPECT_EQ(came->media, sent.media);
    }
}

TEST(PreviewAnswers, ThatDoNotHoldTogetherAreNone) {
    const std::string hello = "orrinvale-preview 1\n";
    const std::string picture = hello + "kind 1\nstored-width 9\nstored-height 9\n";
    const std::string bytes(16, 'x');
    EXPECT_TRUE(readAnswer(picture + "width 2\nheight 2\n\n" + bytes));
    for (const std::string& refused : {
             std::string(),
             std::string("orrinvale-preview 2\nkind 0\n\n"),
             hello,
             hello + "kind 0\n",                               // no end of the head
             hello + "kind 9\n\n",                             // no such kind
             hello + "kind 4\n\n",                             // failed, and no reason
             hello + "kind 0\n\nx",                            // nothing was to follow
             picture + "width 2\nheight 2\n\n" + bytes + "x",  // more than the picture
             picture + "width 2\nheight 3\n\n" + bytes,        // less
             picture + "width 65536\nheight 65536\n\n",        // whose product is 0 in 32 bits
             picture + "width 4294967295\nheight 4294967295\n\n" + bytes,
             picture + "width 4294967298\nheight 2\n\n" + bytes,  // 2 in 32 bits
             picture + "width -2\nheight 2\n\n" + bytes,
             hello + "kind 1\nstored-width 2147483648\nstored-height 9\nwidth 2\nheight 2\n\n" +
                 bytes,                                        // less than nothing in 31 bits
             hello + "kind 1\nwidth 2\nheight 2\n\n" + bytes,  // of a picture without a size
             hello + "kind 2\n\n\xFF\xFE",                     // no UTF-8
             hello + "kind 2\n\n" + std::string(mostPlainText + 1, 'a'),
             hello + "kind 3\ncontainer \x1B[2J\n\n",
             hello + "kind 3\ncontainer " + std::string(65, 'a') + "\n\n",
             hello + "kind\n\n",
             hello + "kind 0\n" + std::string(200, 'a') + "\n\n",
         })
        EXPECT_FALSE(readAnswer(refused)) << refused.substr(0, 120);
}

}  // namespace
}  // namespace orrinvale
