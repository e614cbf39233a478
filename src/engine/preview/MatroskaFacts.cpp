// Matroska and WebM (RFC 8794, RFC 9559): elements within elements, each with an identifier and a
// length of their own widths. It ends where the pictures begin.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>
#include <vector>

#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"

namespace orrinvale {
namespace {

constexpr int mostElements = 2000;
constexpr std::uint64_t untoldSize = ~std::uint64_t{0};

enum Identifier : std::uint64_t {
    Header = 0x1A45DFA3,
    DocType = 0x4282,
    Segment = 0x18538067,
    Info = 0x1549A966,
    TimestampScale = 0x2AD7B1,
    Duration = 0x4489,
    Tracks = 0x1654AE6B,
    TrackEntry = 0xAE,
    CodecId = 0x86,
    Video = 0xE0,
    PixelWidth = 0xB0,
    PixelHeight = 0xBA,
    Audio = 0xE1,
    SamplingFrequency = 0xB5,
    Channels = 0x9F,
    Cluster = 0x1F43B675,
};

constexpr std::pair<std::string_view, std::string_view> matroskaCodecs[] = {
    {"V_MPEG4/ISO/AVC", "H.264"},
    {"V_MPEGH/ISO/HEVC", "H.265"},
    {"V_AV1", "AV1"},
    {"V_VP9", "VP9"},
    {"V_VP8", "VP8"},
    {"V_THEORA", "Theora"},
    {"V_MPEG4", "MPEG-4"},
    {"V_MPEG2", "MPEG-2"},
    {"A_OPUS", "Opus"},
    {"A_VORBIS", "Vorbis"},
    {"A_AAC", "AAC"},
    {"A_FLAC", "FLAC"},
    {"A_MPEG/L3", "MP3"},
    {"A_AC3", "AC-3"},
    {"A_EAC3", "E-AC-3"},
    {"A_DTS", "DTS"},
    {"A_PCM", "PCM"},
};

std::string matroskaCodecName(std::string_view identifier) {
    for (const auto& [known, name] : matroskaCodecs)
        if (identifier.starts_with(known)) return std::string(name);
    std::string shown(identifier.substr(0, 32));
    std::erase_if(shown, [](char each) { return each <= ' ' || each > '~'; });
    return shown;
}

struct Element {
    std::uint64_t identifier = 0;
    std::uint64_t content = 0;  // offset
    std::uint64_t end = 0;
};

// A number whose width is told by the zeros that it begins with; an identifier keeps the mark.
struct Varying {
    std::uint64_t value = 0;
    std::size_t width = 0;
};
std::optional<Varying> varyingAt(MediaSource& source, std::uint64_t offset, bool keepsMark) {
    const auto first = source.bytes<1>(offset);
    if (!first) return std::nullopt;
    const auto lead = static_cast<std::uint8_t>(first->front());
    const auto width = static_cast<std::size_t>(std::countl_zero(lead)) + 1;
    if (width > 8) return std::nullopt;
    std::array<char, 8> bytes{};
    if (!source.read(offset, std::span(bytes).first(width))) return std::nullopt;
    std::uint64_t value = bigEndian(part(bytes, 0, width));
    const std::uint64_t mask = (std::uint64_t{1} << (7 * width)) - 1;
    if (!keepsMark) value = (value & mask) == mask ? untoldSize : value & mask;
    return Varying{value, width};
}

std::optional<Element> elementAt(MediaSource& source, std::uint64_t offset, std::uint64_t end) {
    if (offset >= end) return std::nullopt;
    const auto identifier = varyingAt(source, offset, true);
    if (!identifier || identifier->width > 4) return std::nullopt;
    const auto size = varyingAt(source, offset + identifier->width, false);
    if (!size) return std::nullopt;
    const std::uint64_t content = offset + identifier->width + size->width;
    if (content > end) return std::nullopt;
    if (size->value == untoldSize) return Element{identifier->value, content, end};
    if (size->value > end - content) {  // a file that did not come whole has its facts in front
        if (identifier->value != Segment) return std::nullopt;
        return Element{identifier->value, content, end};
    }
    return Element{identifier->value, content, content + size->value};
}

class MatroskaReader final {
public:
    explicit MatroskaReader(MediaSource& source) : m_source(source) {}

    std::optional<MediaFacts> read() {
        m_open.push_back({0, 0, m_source.size()});
        for (int elements = 0; !m_open.empty() && elements < mostElements; ++elements) step();
        if (m_facts.container.empty()) return std::nullopt;
        constexpr double perMillisecond = 1e6;
        const double lasts = m_duration * static_cast<double>(m_scale) / perMillisecond;
        constexpr double most = 1e15;
        if (std::isfinite(lasts) && lasts > 0 && lasts < most)
            m_facts.milliseconds = static_cast<std::uint64_t>(lasts);
        return std::move(m_facts);
    }

private:
    void step() {
        Element& around = m_open.back();
        const auto element = elementAt(m_source, around.content, around.end);
        if (!element) {
            m_open.pop_back();
            return;
        }
        around.content = element->end;
        switch (element->identifier) {
            case Cluster: m_open.clear(); break;
            case Audio:
            case Header:
            case Segment:
            case Info:
            case Tracks:
            case TrackEntry:
            case Video: m_open.push_back(*element); break;
            default: take(*element);
        }
    }

    void take(const Element& element) {
        const auto number = [&] {
            return static_cast<std::uint32_t>(
                std::min<std::uint64_t>(numberOf(element), 1U << 24U));
        };
        switch (element.identifier) {
            case DocType:
                m_facts.container = textOf(element) == "webm" ? "WebM" : "Matroska";
                break;
            case TimestampScale: m_scale = numberOf(element); break;
            case Duration: m_duration = realOf(element); break;
            case CodecId: takeCodec(textOf(element)); break;
            case PixelWidth:
                if (m_facts.width == 0) m_facts.width = number();
                break;
            case PixelHeight:
                if (m_facts.height == 0) m_facts.height = number();
                break;
            case Channels:
                if (m_facts.channels == 0) m_facts.channels = number();
                break;
            case SamplingFrequency: {
                const double rate = realOf(element);
                if (m_facts.rate == 0 && rate >= 1 && rate < 1e7)
                    m_facts.rate = static_cast<std::uint32_t>(rate);
                break;
            }
            default: break;
        }
    }

    void takeCodec(const std::string& identifier) {
        std::string& codec = identifier.starts_with("V_") ? m_facts.video : m_facts.audio;
        const bool isOther = !identifier.starts_with("V_") && !identifier.starts_with("A_");
        if (codec.empty() && !isOther) codec = matroskaCodecName(identifier);
    }

    std::string textOf(const Element& element) {
        constexpr std::uint64_t most = 64;
        std::string text(std::min(element.end - element.content, most), '\0');
        if (!m_source.read(element.content, text)) return {};
        return text.substr(0, text.find('\0'));
    }
    std::uint64_t numberOf(const Element& element) {
        std::array<char, 8> bytes{};
        const std::uint64_t size = element.end - element.content;
        if (size > bytes.size() || !m_source.read(element.content, std::span(bytes).first(size)))
            return 0;
        return bigEndian(part(bytes, 0, size));
    }
    double realOf(const Element& element) {
        const std::uint64_t bits = numberOf(element);
        if (element.end - element.content == sizeof(double)) return std::bit_cast<double>(bits);
        if (element.end - element.content != sizeof(float)) return 0;
        return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    }

    MediaSource& m_source;
    std::vector<Element> m_open;
    MediaFacts m_facts;
    std::uint64_t m_scale = 1'000'000;  // nanoseconds, where the file does not say
    double m_duration = 0;
};

}  // namespace

std::optional<MediaFacts> readMatroskaFacts(MediaSource& source) {
    const auto head = source.bytes<4>(0);
    if (!head || bigEndian(part(*head, 0, 4)) != Header) return std::nullopt;
    return MatroskaReader(source).read();
}

}  // namespace orrinvale
