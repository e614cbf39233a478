// Any bytes as a film, as a text and as an answer of the program that looks into files: every
// parser keeps to the bytes, and what is shown is text within its bounds.
#include <algorithm>

#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"
#include "engine/preview/PreviewAnswer.h"
#include "engine/preview/plainText.h"
#include "engine/text/utf8.h"
#include "fuzz/fuzz.h"

namespace {

using namespace orrinvale;

// The bytes behind the beginning of each kind, since made-up ones hardly ever hit upon one.
constexpr std::string_view beginnings[] = {
    {"\0\0\0\x08"
     "ftyp",
     8},
    {"\0\0\0\x08"
     "free\0\0\xFF\xFFmoov\0\0\xFF\x80trak\0\0\xFF\0mdia",
     32},
    {"\x1A\x45\xDF\xA3\x84\x42\x82\x81w\x18\x53\x80\x67\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 21},
    {"fLaC", 4},
    {"RIFF\0\0\0\0WAVEfmt ", 16},
    {"OggS\0\x02", 6},
    {"ID3\x04\0\0\0\0\0\0\xFF\xFB\x90\0", 14},
};

void checkMedia(std::string_view bytes) {
    int reads = 0;
    MediaSource source(bytes.size(), [&](std::uint64_t offset, std::span<char> buffer) {
        require(offset <= bytes.size() && buffer.size() <= bytes.size() - offset);
        require(++reads <= MediaSource::mostReads);
        std::ranges::copy(bytes.substr(offset, buffer.size()), buffer.begin());
        return buffer.size();
    });
    const auto facts = readMediaFacts(source);
    if (!facts) return;
    PreviewAnswer answer{.kind = PreviewAnswer::Kind::Media, .media = *facts};
    const auto read = readAnswer(answerHead(answer));
    require(read && read->media == *facts);
}

}  // namespace

void checkAny(std::string_view any) {
    checkMedia(any);
    for (const std::string_view beginning : beginnings)
        checkMedia(std::string(beginning) + std::string(any));
    for (const bool isWhole : {true, false}) {
        const auto text = plainText(any, isWhole);
        if (!text) continue;
        require(text->text.size() <= mostPlainText && isValidUtf8(text->text));
        require(std::ranges::none_of(text->text, [](char each) {
            return static_cast<unsigned char>(each) < ' ' && each != '\n' && each != '\t';
        }));
    }
    for (const char* const head : {"", "orrinvale-preview 1\n", "orrinvale-preview 1\nkind 1\n\n"})
        if (const auto answer = readAnswer(head + std::string(any)))
            require(answer->content.size() <= mostAnswerBytes);
}
