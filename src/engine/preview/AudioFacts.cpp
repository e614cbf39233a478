// FLAC (RFC 9639), WAV (RIFF), Ogg (RFC 3533) and MP3 (ISO/IEC 11172-3 with ID3v2 before it).
#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"

namespace orrinvale {
namespace {

std::uint32_t narrow(std::uint64_t number) { return static_cast<std::uint32_t>(number); }

// What the number of a sound in WAV is called; empty for those that few have heard of.
const char* waveCodecName(std::uint64_t number) {
    constexpr std::uint64_t integers = 1, decimals = 3, mp3 = 0x55, extended = 0xFFFE;
    if (number == mp3) return "MP3";
    return number == integers || number == decimals || number == extended ? "PCM" : "";
}

// What begins the first packet of a stream in Ogg.
void takeOggStream(std::string_view packet, MediaFacts& facts) {
    const auto take = [&](const char* codec, std::size_t channels, std::size_t rate) {
        facts.audio = codec;
        facts.channels = narrow(littleEndian(packet.substr(channels, 1)));
        facts.rate = rate != 0 ? narrow(littleEndian(packet.substr(rate, 4))) : 48000;
    };
    if (packet.starts_with("\x01vorbis")) take("Vorbis", 11, 12);
    else if (packet.starts_with("OpusHead")) take("Opus", 9, 0);  // always counts 48 kHz
    else if (packet.starts_with("Speex   ")) facts.audio = "Speex";
    else if (packet.starts_with("\x7F"
                                "FLAC"))
        facts.audio = "FLAC";
    else if (packet.starts_with("\x80theora")) facts.video = "Theora";
}

// The position that the last page of a stream tells: how many samples there are.
std::uint64_t lastOggPosition(MediaSource& source, std::string_view serial) {
    constexpr std::uint64_t most = std::uint64_t{1} << 16U;
    std::string tail(std::min(source.size(), most), '\0');
    if (!source.read(source.size() - tail.size(), tail)) return 0;
    constexpr std::size_t headSize = 27;
    for (std::size_t at = tail.rfind("OggS"); at != std::string::npos;) {
        const std::string_view page = std::string_view(tail).substr(at);
        if (page.size() >= headSize && page.substr(14, 4) == serial &&
            littleEndian(page.substr(6, 8)) != ~std::uint64_t{0})
            return littleEndian(page.substr(6, 8));
        at = at == 0 ? std::string::npos : tail.rfind("OggS", at - 1);
    }
    return 0;
}

struct MpegFrame {
    std::uint32_t bitRate = 0;  // bits a second
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    std::uint32_t samples = 0;
    std::uint32_t size = 0;      // bytes
    std::uint32_t sideInfo = 0;  // bytes between the head and what an encoder may put there
};

// The third layer alone.
std::optional<MpegFrame> mpegFrame(std::uint32_t head) {
    constexpr std::uint32_t rates[] = {44100, 48000, 32000};
    constexpr std::uint32_t kilobits[2][15] = {
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};
    const std::uint32_t version = (head >> 19U) & 3U, layer = (head >> 17U) & 3U;
    const std::uint32_t bitIndex = (head >> 12U) & 15U, rateIndex = (head >> 10U) & 3U;
    if (head >> 21U != 0x7FF || version == 1 || layer != 1) return std::nullopt;
    if (bitIndex == 0 || bitIndex == 15 || rateIndex == 3) return std::nullopt;
    const bool isFirst = version == 3, isMono = ((head >> 6U) & 3U) == 3;
    MpegFrame frame;
    frame.bitRate = kilobits[isFirst ? 0 : 1][bitIndex] * 1000;
    frame.rate = rates[rateIndex] / (isFirst ? 1 : version == 2 ? 2 : 4);
    frame.channels = isMono ? 1 : 2;
    frame.samples = isFirst ? 1152 : 576;
    frame.size = frame.samples / 8 * frame.bitRate / frame.rate + ((head >> 9U) & 1U);
    frame.sideInfo = isFirst ? (isMono ? 17 : 32) : (isMono ? 9 : 17);
    return frame;
}

std::optional<MpegFrame> mpegFrameAt(MediaSource& source, std::uint64_t offset) {
    const auto head = source.bytes<4>(offset);
    return head ? mpegFrame(narrow(bigEndian(part(*head, 0, 4)))) : std::nullopt;
}

// Where the sound begins, behind the tags at the beginning; a tag may be followed by padding.
std::uint64_t behindTag(MediaSource& source) {
    const auto tag = source.bytes<10>(0);
    if (!tag || part(*tag, 0, 3) != "ID3") return 0;
    std::uint64_t size = 0;
    for (const char each : part(*tag, 6, 4)) size = (size << 7U) | (std::uint64_t(each) & 0x7FU);
    return size + tag->size();
}

// How many frames an encoder says that there are; 0 where it does not.
std::uint64_t countedFrames(MediaSource& source, std::uint64_t frame, const MpegFrame& facts) {
    const auto words = source.bytes<12>(frame + 4 + facts.sideInfo);
    if (!words) return 0;
    const std::string_view name = part(*words, 0, 4);
    if (name != "Xing" && name != "Info") return 0;
    return (bigEndian(part(*words, 4, 4)) & 1U) != 0 ? bigEndian(part(*words, 8, 4)) : 0;
}

}  // namespace

std::optional<MediaFacts> readFlacFacts(MediaSource& source) {
    const auto head = source.bytes<26>(0);
    if (!head || part(*head, 0, 4) != "fLaC") return std::nullopt;
    MediaFacts facts{.container = "FLAC", .audio = "FLAC"};
    const std::uint64_t packed = bigEndian(part(*head, 18, 8));
    facts.rate = narrow(packed >> 44U);
    facts.channels = narrow((packed >> 41U) & 7U) + 1;
    facts.milliseconds = lasting(packed & 0xF'FFFF'FFFFU, facts.rate);
    return facts;
}

std::optional<MediaFacts> readWaveFacts(MediaSource& source) {
    const auto head = source.bytes<12>(0);
    if (!head || part(*head, 0, 4) != "RIFF" || part(*head, 8, 4) != "WAVE") return std::nullopt;
    MediaFacts facts{.container = "WAV"};
    std::uint64_t bytesPerSecond = 0;
    constexpr int mostChunks = 64;
    std::uint64_t at = head->size();
    for (int chunks = 0; chunks < mostChunks; ++chunks) {
        const auto chunk = source.bytes<8>(at);
        if (!chunk) break;
        const std::uint64_t content = at + chunk->size();
        const std::uint64_t size =
            std::min(littleEndian(part(*chunk, 4, 4)), source.size() - content);
        if (const auto format = source.bytes<12>(content); part(*chunk, 0, 4) == "fmt " && format) {
            facts.channels = narrow(littleEndian(part(*format, 2, 2)));
            facts.rate = narrow(littleEndian(part(*format, 4, 4)));
            bytesPerSecond = littleEndian(part(*format, 8, 4));
            facts.audio = waveCodecName(littleEndian(part(*format, 0, 2)));
        } else if (part(*chunk, 0, 4) == "data") {
            facts.milliseconds = lasting(size, bytesPerSecond);
            break;
        }
        at = content + size + size % 2;
    }
    return facts;
}

std::optional<MediaFacts> readOggFacts(MediaSource& source) {
    MediaFacts facts{.container = "Ogg"};
    std::string serial;  // of the stream of sound
    std::uint64_t at = 0;
    constexpr int mostStreams = 8;
    for (int streams = 0; streams < mostStreams; ++streams) {
        const auto page = source.bytes<28>(at);  // the head, and the length of one segment
        if (!page || part(*page, 0, 4) != "OggS") break;
        const auto segments = static_cast<std::uint8_t>((*page)[26]);
        const bool beginsStream = (static_cast<std::uint8_t>((*page)[5]) & 2U) != 0;
        if (!beginsStream || segments != 1) break;  // the first packets are short
        std::string packet(static_cast<std::uint8_t>((*page)[27]), '\0');
        if (!source.read(at + page->size(), packet)) break;
        const bool hadSound = !facts.audio.empty();
        packet.resize(std::max(packet.size(), std::size_t{19}), '\0');
        takeOggStream(packet, facts);
        if (!hadSound && !facts.audio.empty()) serial = part(*page, 14, 4);
        at += page->size() + static_cast<std::uint8_t>((*page)[27]);
    }
    if (at == 0) return std::nullopt;
    if (!serial.empty()) facts.milliseconds = lasting(lastOggPosition(source, serial), facts.rate);
    return facts;
}

std::optional<MediaFacts> readMpegAudioFacts(MediaSource& source) {
    const std::uint64_t tag = behindTag(source);
    constexpr std::uint64_t mostPadding = 1024;
    for (std::uint64_t at = tag; at < tag + (tag != 0 ? mostPadding : 1); ++at) {
        const auto frame = mpegFrameAt(source, at);
        // Two bytes of any file look like a frame; a second frame behind the first does not.
        if (!frame || !mpegFrameAt(source, at + frame->size)) continue;
        MediaFacts facts{.container = "MP3", .audio = "MP3"};
        facts.channels = frame->channels;
        facts.rate = frame->rate;
        const std::uint64_t frames = countedFrames(source, at, *frame);
        facts.milliseconds = frames != 0 ? lasting(frames * frame->samples, frame->rate)
                                         : lasting(source.size() - at, frame->bitRate / 8);
        return facts;
    }
    return std::nullopt;  // other sounds stand behind such a tag too
}

}  // namespace orrinvale
