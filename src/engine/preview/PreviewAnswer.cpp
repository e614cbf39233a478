// The head is lines, "name value", up to an empty one: a person can read it, and names that are not
// known are passed over.
#include "engine/preview/PreviewAnswer.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "engine/preview/plainText.h"
#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

constexpr std::string_view greeting = "orrinvale-preview 1\n";
constexpr std::size_t longestValue = 64;

// The names of the head, each with the field that it fills.
struct NumberLine {
    std::string_view name;
    std::uint32_t PreviewAnswer::*field;
};
struct MediaNumberLine {
    std::string_view name;
    std::uint32_t MediaFacts::*field;
};
struct TextLine {
    std::string_view name;
    std::string PreviewAnswer::*field;
};
struct MediaTextLine {
    std::string_view name;
    std::string MediaFacts::*field;
};
constexpr NumberLine numberLines[] = {{"stored-width", &PreviewAnswer::storedWidth},
                                      {"stored-height", &PreviewAnswer::storedHeight},
                                      {"width", &PreviewAnswer::width},
                                      {"height", &PreviewAnswer::height}};
constexpr MediaNumberLine mediaNumberLines[] = {{"media-width", &MediaFacts::width},
                                                {"media-height", &MediaFacts::height},
                                                {"channels", &MediaFacts::channels},
                                                {"rate", &MediaFacts::rate}};
constexpr TextLine textLines[] = {{"format", &PreviewAnswer::format},
                                  {"encoding", &PreviewAnswer::encoding},
                                  {"digest", &PreviewAnswer::digest}};
constexpr MediaTextLine mediaTextLines[] = {{"container", &MediaFacts::container},
                                            {"video", &MediaFacts::video},
                                            {"audio", &MediaFacts::audio}};

// Letters that can stand in a line, and in a label.
bool isPlainValue(std::string_view value) {
    return value.size() <= longestValue &&
           std::ranges::all_of(value, [](char each) { return each >= ' ' && each <= '~'; });
}

void addText(std::string& head, std::string_view name, std::string_view value) {
    if (!value.empty() && isPlainValue(value)) head += fmt::format("{} {}\n", name, value);
}
void addNumber(std::string& head, std::string_view name, std::uint64_t value) {
    if (value != 0) head += fmt::format("{} {}\n", name, value);
}

template <class Number> bool readHeadNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

template <class Kind> bool readKind(std::string_view text, Kind last, Kind& kind) {
    std::uint8_t number = 0;
    if (!readHeadNumber(text, number) || number > static_cast<std::uint8_t>(last)) return false;
    kind = static_cast<Kind>(number);
    return true;
}

bool takeText(std::string_view value, std::string& field) {
    field = value;
    return isPlainValue(value);
}

// False for a value that its name does not allow.
bool takeLine(std::string_view name, std::string_view value, PreviewAnswer& answer) {
    if (name == "kind") return readKind(value, PreviewAnswer::Kind::Failed, answer.kind);
    if (name == "failure") return readKind(value, PreviewFailure::NotLooked, answer.failure);
    if (name == "milliseconds") return readHeadNumber(value, answer.media.milliseconds);
    if (name == "cut") answer.isCut = true;
    for (const NumberLine& each : numberLines)
        if (name == each.name) return readHeadNumber(value, answer.*each.field);
    for (const MediaNumberLine& each : mediaNumberLines)
        if (name == each.name) return readHeadNumber(value, answer.media.*each.field);
    for (const TextLine& each : textLines)
        if (name == each.name) return takeText(value, answer.*each.field);
    for (const MediaTextLine& each : mediaTextLines)
        if (name == each.name) return takeText(value, answer.media.*each.field);
    return true;
}

// Pixels are counted in signed numbers where they are shown.
bool isSide(std::uint32_t pixels) { return pixels != 0 && std::in_range<int>(pixels); }

bool holdsTogether(const PreviewAnswer& answer) {
    const std::string& content = answer.content;
    switch (answer.kind) {
        case PreviewAnswer::Kind::Picture:
            return answer.width != 0 && answer.height != 0 && answer.width <= mostPreviewSide &&
                   answer.height <= mostPreviewSide && isSide(answer.storedWidth) &&
                   isSide(answer.storedHeight) &&
                   content.size() == std::size_t{answer.width} * answer.height * bytesPerPixel;
        case PreviewAnswer::Kind::Text:
            return content.size() <= mostPlainText && isValidUtf8(content);
        case PreviewAnswer::Kind::Failed:
            return content.empty() && answer.failure != PreviewFailure::None;
        default: return content.empty();
    }
}

}  // namespace

std::string answerHead(const PreviewAnswer& answer) {
    std::string head(greeting);
    head += fmt::format("kind {}\n", static_cast<int>(answer.kind));
    addNumber(head, "failure", static_cast<std::uint64_t>(answer.failure));
    for (const NumberLine& each : numberLines) addNumber(head, each.name, answer.*each.field);
    for (const MediaNumberLine& each : mediaNumberLines)
        addNumber(head, each.name, answer.media.*each.field);
    for (const TextLine& each : textLines) addText(head, each.name, answer.*each.field);
    for (const MediaTextLine& each : mediaTextLines)
        addText(head, each.name, answer.media.*each.field);
    addNumber(head, "milliseconds", answer.media.milliseconds);
    addNumber(head, "cut", answer.isCut ? 1 : 0);
    return head += '\n';
}

std::optional<PreviewAnswer> readAnswer(std::string_view bytes) {
    if (!bytes.starts_with(greeting)) return std::nullopt;
    bytes.remove_prefix(greeting.size());
    PreviewAnswer answer;
    constexpr int mostLines = 32;
    for (int lines = 0; lines < mostLines; ++lines) {
        const std::size_t end = bytes.find('\n');
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
        if (line.empty()) {
            answer.content = bytes;
            return holdsTogether(answer) ? std::optional(std::move(answer)) : std::nullopt;
        }
        const std::size_t space = line.find(' ');
        if (space == std::string_view::npos ||
            !takeLine(line.substr(0, space), line.substr(space + 1), answer))
            return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace orrinvale
