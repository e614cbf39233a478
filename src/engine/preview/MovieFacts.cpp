// MP4 and QuickTime (ISO/IEC 14496-12): boxes within boxes, each with its length and four letters.
// The samples are passed over.
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"

namespace orrinvale {
namespace {

constexpr int mostBoxes = 2000;

// The codecs that people have, by the four letters of their sample entry.
constexpr std::pair<std::string_view, std::string_view> movieCodecs[] = {
    {"avc1", "H.264"},  {"avc3", "H.264"},  {"hvc1", "H.265"}, {"hev1", "H.265"},
    {"av01", "AV1"},    {"vp09", "VP9"},    {"vp08", "VP8"},   {"mp4v", "MPEG-4"},
    {"apch", "ProRes"}, {"apcn", "ProRes"}, {"jpeg", "JPEG"},  {"mp4a", "AAC"},
    {"Opus", "Opus"},   {"fLaC", "FLAC"},   {"alac", "ALAC"},  {"ac-3", "AC-3"},
    {"ec-3", "E-AC-3"}, {".mp3", "MP3"},    {"sowt", "PCM"},   {"twos", "PCM"},
    {"lpcm", "PCM"},    {"samr", "AMR"},    {"sawb", "AMR"},
};

std::string movieCodecName(std::string_view letters) {
    const auto* const known =
        std::ranges::find(movieCodecs, letters, [](const auto& each) { return each.first; });
    if (known != std::end(movieCodecs)) return std::string(known->second);
    // Four letters of a file that anybody made: those that can be shown.
    std::string shown(letters);
    std::erase_if(shown, [](char each) { return each <= ' ' || each > '~'; });
    return shown;
}

struct Box {
    std::string type;
    std::uint64_t content = 0;  // offset
    std::uint64_t end = 0;
};

std::optional<Box> boxAt(MediaSource& source, std::uint64_t offset, std::uint64_t end) {
    const auto head = source.bytes<8>(offset);
    if (!head || end - offset < head->size()) return std::nullopt;
    std::uint64_t size = bigEndian(part(*head, 0, 4));
    std::uint64_t headSize = head->size();
    if (size == 1) {
        const auto large = source.bytes<8>(offset + headSize);
        if (!large) return std::nullopt;
        size = bigEndian(part(*large, 0, 8));
        headSize += large->size();
    } else if (size == 0) {
        size = end - offset;
    }
    if (size < headSize || size > end - offset) return std::nullopt;
    return Box{std::string(part(*head, 4, 4)), offset + headSize, offset + size};
}

class MovieReader final {
public:
    explicit MovieReader(MediaSource& source) : m_source(source) {}

    std::optional<MediaFacts> read() {
        m_open.push_back({"", 0, m_source.size()});
        for (int boxes = 0; !m_open.empty() && boxes < mostBoxes; ++boxes) step();
        return std::move(m_facts);
    }

private:
    // Goes on in the innermost box that is open: the next one within it, or out of it.
    void step() {
        Box& around = m_open.back();
        const auto box = boxAt(m_source, around.content, around.end);
        if (!box) {
            m_open.pop_back();
            return;
        }
        around.content = box->end;
        constexpr std::string_view holders[] = {"moov", "trak", "mdia", "minf", "stbl"};
        if (std::ranges::find(holders, box->type) != std::end(holders)) m_open.push_back(*box);
        else take(*box);
    }

    void take(const Box& box) {
        const std::uint64_t at = box.content;
        if (box.type == "hdlr") {
            const auto head = m_source.bytes<12>(at);
            m_handler = head ? std::string(part(*head, 8, 4)) : std::string();
        } else if (box.type == "mvhd") {
            takeDuration(at);
        } else if (box.type == "stsd") {
            takeSample(at + 8);
        }
    }

    void takeDuration(std::uint64_t at) {
        const auto head = m_source.bytes<32>(at);
        if (!head) return;
        const bool isLong = head->front() == 1;
        const std::uint64_t scale = bigEndian(part(*head, isLong ? 20 : 12, 4));
        const std::uint64_t units = bigEndian(part(*head, isLong ? 24 : 16, isLong ? 8 : 4));
        const std::uint64_t unknown = isLong ? ~std::uint64_t{0} : 0xFFFF'FFFFU;
        if (units != unknown) m_facts->milliseconds = lasting(units, scale);
    }

    // The first sample entry of a track; the letters stand behind its length.
    void takeSample(std::uint64_t at) {
        const auto entry = m_source.bytes<36>(at);
        if (!entry) return;
        const std::string codec = movieCodecName(part(*entry, 4, 4));
        if (m_handler == "vide" && m_facts->video.empty()) {
            m_facts->video = codec;
            m_facts->width = static_cast<std::uint32_t>(bigEndian(part(*entry, 32, 2)));
            m_facts->height = static_cast<std::uint32_t>(bigEndian(part(*entry, 34, 2)));
        } else if (m_handler == "soun" && m_facts->audio.empty()) {
            m_facts->audio = codec;
            m_facts->channels = static_cast<std::uint32_t>(bigEndian(part(*entry, 24, 2)));
            m_facts->rate = static_cast<std::uint32_t>(bigEndian(part(*entry, 32, 2)));
        }
    }

    MediaSource& m_source;
    std::vector<Box> m_open;
    std::string m_handler;  // of the track in hand
    std::optional<MediaFacts> m_facts{MediaFacts{}};

public:
    void setContainer(std::string name) { m_facts->container = std::move(name); }
};

}  // namespace

std::optional<MediaFacts> readMovieFacts(MediaSource& source) {
    const auto head = source.bytes<12>(0);
    if (!head) return std::nullopt;
    const std::string_view type = part(*head, 4, 4);
    constexpr std::string_view old[] = {"moov", "mdat", "wide", "free", "skip"};
    const bool isOld = std::ranges::find(old, type) != std::end(old);
    if (type != "ftyp" && !isOld) return std::nullopt;
    const std::string_view brand = part(*head, 8, 4);
    MovieReader reader(source);
    reader.setContainer(isOld || brand == "qt  "   ? "QuickTime"
                        : brand == "M4A "          ? "M4A"
                        : brand.starts_with("3gp") ? "3GP"
                                                   : "MP4");
    auto facts = reader.read();
    // Photos stand in the same boxes, and an old film has no sign of its own but that its boxes
    // make sense. One that is cut before its tracks is told by its brand.
    constexpr std::string_view films[] = {"isom", "iso2", "iso4", "iso5", "iso6", "mp41", "mp42",
                                          "avc1", "M4V ", "M4A ", "qt  ", "dash", "MSNV"};
    const bool isFilm =
        !isOld && (brand.starts_with("3gp") || std::ranges::find(films, brand) != std::end(films));
    if (!isFilm && facts->video.empty() && facts->audio.empty()) return std::nullopt;
    return facts;
}

}  // namespace orrinvale
