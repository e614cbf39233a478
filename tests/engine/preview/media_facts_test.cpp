// The headers of films and music, made up by the standards, and cut short anywhere.
#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string big(std::uint64_t number, int size) {
    std::string bytes;
    for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}
std::string little(std::uint64_t number, int size) {
    std::string bytes = big(number, size);
    std::ranges::reverse(bytes);
    return bytes;
}
std::string zeros(std::size_t size) { return std::string(size, '\0'); }
std::string box(const std::string& type, const std::string& content) {
    return big(content.size() + 8, 4) + type + content;
}
std::string largeBox(const std::string& type, const std::string& content) {
    return big(1, 4) + type + big(content.size() + 16, 8) + content;
}
std::string element(const std::string& identifier, const std::string& content) {
    return identifier + '\x08' + big(content.size(), 4) + content;  // the length in five bytes
}

std::string track(const char* handler, const std::string& sample) {
    return box(
        "trak",
        box("tkhd", zeros(84)) +
            box("mdia", box("hdlr", zeros(8) + handler + zeros(12)) +
                            box("minf", box("stbl", box("stsd", zeros(4) + big(1, 4) + sample)))));
}

std::string movie(const char* brand, const std::string& movieHead) {
    const std::string picture = box("avc1", zeros(24) + big(1920, 2) + big(1080, 2) + zeros(50));
    const std::string sound =
        box("mp4a", zeros(16) + big(2, 2) + big(16, 2) + zeros(4) + big(44100, 2) + zeros(2));
    return box("ftyp", brand + zeros(4)) + largeBox("mdat", zeros(1000)) +
           box("moov", movieHead + track("vide", picture) + track("soun", sound));
}

std::string matroska() {
    const std::string picture = element(
        "\xAE", element("\x86", "V_MPEGH/ISO/HEVC") +
                    element("\xE0", element("\xB0", big(640, 2)) + element("\xBA", big(480, 2))));
    const std::string sound =
        element("\xAE", element("\x86", "A_OPUS") +
                            element("\xE1", element("\x9F", big(6, 1)) +
                                                element("\xB5", big(0x473B8000, 4))));  // 48000
    return element("\x1A\x45\xDF\xA3", element("\x42\x82", "matroska")) +
           "\x18\x53\x80\x67\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF" +  // a length that nobody knew
           element("\x15\x49\xA9\x66", element("\x2A\xD7\xB1", big(500'000, 3)) +
                                           element("\x44\x89", big(0x40C3880000000000, 8))) +
           element("\x16\x54\xAE\x6B", picture + sound) + element("\x1F\x43\xB6\x75", zeros(99));
}

std::string oggPage(char flags, std::uint64_t position, std::uint32_t serial,
                    const std::string& packet) {
    return std::string("OggS") + '\0' + flags + little(position, 8) + little(serial, 4) + zeros(8) +
           '\1' + static_cast<char>(packet.size()) + packet;
}

std::string mpegFrame(const std::string& content = {}) {
    std::string frame = "\xFF\xFB\x90\x64" + content;  // 128 kbit/s, 44100, stereo: 417 bytes
    frame.resize(417);
    return frame;
}

struct MediaCase {
    const char* name;
    std::string bytes;
    MediaFacts facts;
};

std::string wave(std::uint64_t sound) {
    return "RIFF" + zeros(4) + "WAVE" + "LIST" + little(3, 4) + zeros(4) + "fmt " + little(16, 4) +
           little(sound, 2) + little(2, 2) + little(44100, 4) + little(176'400, 4) + zeros(4) +
           "data" + little(0xFFFF'FFFF, 4) + zeros(176'400);
}

std::vector<MediaCase> mediaCases() {
    const std::string shortHead = box("mvhd", zeros(12) + big(600, 4) + big(75'300, 4) + zeros(80));
    const std::string longHead =
        box("mvhd", "\1" + zeros(19) + big(1000, 4) + big(7'200'000, 8) + zeros(80));
    const std::string vorbis = "\x01vorbis" + zeros(4) + '\2' + little(44100, 4) + zeros(14);
    std::string cutMatroska = matroska();
    cutMatroska.replace(cutMatroska.find("\x01\xFF\xFF"), 8, "\x01" + big(9'000'000, 7));
    std::string frames;
    for (int i = 0; i < 100; ++i) frames += mpegFrame();
    return {
        {"mp4", movie("isom", shortHead), {"MP4", "H.264", "AAC", 125'500, 1920, 1080, 2, 44100}},
        {"mov",
         movie("qt  ", longHead),
         {"QuickTime", "H.264", "AAC", 7'200'000, 1920, 1080, 2, 44100}},
        {"mkv", matroska(), {"Matroska", "H.265", "Opus", 5'000, 640, 480, 6, 48000}},
        {"flac",
         "fLaC" + zeros(14) +
             big((std::uint64_t{96000} << 44U) | (std::uint64_t{1} << 41U) | 192'000, 8) + zeros(9),
         {"FLAC", "", "FLAC", 2'000, 0, 0, 2, 96000}},
        {"wav", wave(1), {"WAV", "", "PCM", 1'000, 0, 0, 2, 44100}},
        {"wav of another sound", wave(0x11), {"WAV", "", "", 1'000, 0, 0, 2, 44100}},
        {"mkv of which half came",
         cutMatroska,
         {"Matroska", "H.265", "Opus", 5'000, 640, 480, 6, 48000}},
        {"mp4 of which half came",
         box("ftyp", "isom" + zeros(4)) + big(9'000, 4) + "mdat",
         {"MP4", "", "", 0, 0, 0, 0, 0}},
        {"ogg",
         oggPage('\2', 0, 7, vorbis) + oggPage('\0', 441'000, 7, "x") +
             oggPage('\4', 99, 8, "another stream"),
         {"Ogg", "", "Vorbis", 10'000, 0, 0, 2, 44100}},
        {"mp3", frames, {"MP3", "", "MP3", 2'606, 0, 0, 2, 44100}},
        {"mp3 with a tag, a count and a picture in the tag",
         std::string("ID3\4\0\0\0\0\x10\0", 10) + zeros(2048) +
             mpegFrame(zeros(32) + "Xing" + big(1, 4) + big(38'282, 4)) + mpegFrame(),
         {"MP3", "", "MP3", 1'000'019, 0, 0, 2, 44100}},
    };
}

std::optional<MediaFacts> factsOf(std::string_view bytes) {
    MediaSource source(bytes.size(), [&](std::uint64_t offset, std::span<char> buffer) {
        return bytes.copy(buffer.data(), buffer.size(), offset);
    });
    return readMediaFacts(source);
}

TEST(Media, TellWhatTheirHeadersSay) {
    for (const auto& [name, bytes, expected] : mediaCases()) {
        const auto facts = factsOf(bytes);
        ASSERT_TRUE(facts) << name;
        const auto seen = [](const MediaFacts& each) {
            return fmt::format("{} {}/{} {} ms {}x{} {} ch {} Hz", each.container, each.video,
                               each.audio, each.milliseconds, each.width, each.height,
                               each.channels, each.rate);
        };
        EXPECT_EQ(seen(*facts), seen(expected)) << name;
    }
    for (const std::string& other :
         {std::string(), std::string("OggS"), std::string("text"), std::string(100, '\xFF'),
          std::string("\xFF\xFB\x90\x64 once and never again") + std::string(500, ' '),
          std::string("RIFF\0\0\0\0WEBP", 12), big(0, 4) + "mdat" + std::string(50, 'x'),
          box("ftyp", "heic" + zeros(4)) + box("meta", zeros(50)),  // a photo
          "ID3\4" + zeros(6) + "fLaC" + zeros(500)})
        EXPECT_FALSE(factsOf(other)) << other;
}

TEST(Media, CutShortOrTurnedAroundEndTheirReader) {
    std::mt19937 random(7);
    for (const auto& [name, bytes, expected] : mediaCases()) {
        const std::size_t most = std::min<std::size_t>(bytes.size(), 1500);
        for (std::size_t size = 0; size < most; ++size) (void)factsOf(bytes.substr(0, size));
        for (int round = 0; round < 500; ++round) {
            std::string changed = bytes;
            for (int i = 0; i < 4; ++i)
                changed[random() % most] = static_cast<char>(random() % 3 == 0 ? 0xFF : random());
            (void)factsOf(changed);
        }
    }
    // A million boxes of eight bytes: it gives up long before.
    std::string boxes = box("ftyp", "isom");
    for (int i = 0; i < 1'000'000; ++i) boxes += box("free", "");
    int reads = 0;
    MediaSource source(boxes.size(), [&](std::uint64_t offset, std::span<char> buffer) {
        ++reads;
        return boxes.copy(buffer.data(), buffer.size(), offset);
    });
    EXPECT_TRUE(readMediaFacts(source));
    EXPECT_LE(reads, MediaSource::mostReads);
}

}  // namespace
}  // namespace orrinvale
