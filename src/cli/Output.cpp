// Blocks, and the texts of names for terminals; engine/text/JsonText.h has those for documents.
#include "cli/Output.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "engine/text/JsonText.h"

namespace orrinvale::cli {

Output::Output(int descriptor) : m_descriptor(descriptor) {}

Output::~Output() { flush(); }

bool Output::flush() {
    std::string_view rest = m_buffer;
    while (!rest.empty() && !m_failed) {
        const ssize_t count = ::write(m_descriptor, rest.data(), rest.size());
        if (count >= 0) rest.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR) m_failed = true;
    }
    m_buffer.clear();
    return !m_failed;
}

// For those who print; what they print is put together where files are too.
void appendJsonText(std::string& out, std::string_view bytes) {
    orrinvale::appendJsonText(out, bytes);
}

void appendJsonPath(std::string& out, std::string_view path, std::string_view field,
                    std::string_view hexField) {
    orrinvale::appendJsonPath(out, path, field, hexField);
}

void appendJsonSkipped(std::string& out, const std::vector<Error>& skipped) {
    const char* between = "{";
    for (const Error& entry : skipped) {
        out += between;
        appendJsonPath(out, entry.path);
        out += ", \"reason\": ";
        appendJsonText(out, entry.reason());
        out += '}';
        between = ",\n              {";
    }
}

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Unicode's control characters (C0, DEL, C1), those of the direction of writing (Bidi_Control), and
// those that are drawn with no width or as a break: soft hyphen, zero width space and joiners, line
// separators, invisible operators, byte order mark, tags.
constexpr std::array<Range, 15> kEscaped{{{0x00, 0x1F},
                                          {0x7F, 0x9F},
                                          {0xAD, 0xAD},
                                          {0x034F, 0x034F},
                                          {0x061C, 0x061C},
                                          {0x115F, 0x1160},
                                          {0x17B4, 0x17B5},
                                          {0x180B, 0x180F},
                                          {0x200B, 0x200F},
                                          {0x2028, 0x202E},
                                          {0x2060, 0x206F},
                                          {0x3164, 0x3164},
                                          {0xFEFF, 0xFEFF},
                                          {0xFFF9, 0xFFFB},
                                          {0xE0000, 0xE0FFF}}};

// Of a valid sequence.
char32_t characterOf(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence.front());
    if (sequence.size() == 1) return lead;
    char32_t character = lead & (0x7FU >> sequence.size());
    for (const char byte : sequence.substr(1))
        character = character << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    return character;
}

bool isEscaped(char32_t character) {
    return std::ranges::any_of(kEscaped, [=](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

}  // namespace

std::string printable(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const std::size_t length = std::max<std::size_t>(validSequence(bytes), 1);
        const std::string_view sequence = bytes.substr(0, length);
        const bool isValid = validSequence(sequence) == length;
        bytes.remove_prefix(length);
        if (isValid && !isEscaped(characterOf(sequence))) out += sequence;
        else if (sequence == "\n") out += "\\n";
        else if (sequence == "\t") out += "\\t";
        else
            for (const char byte : sequence)
                out += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
    }
    return out;
}

bool isTerminal(int descriptor) { return ::isatty(descriptor) != 0; }

bool wantsColour(int descriptor) {
    const char* const refused = std::getenv("NO_COLOR");
    return isTerminal(descriptor) && (refused == nullptr || *refused == 0);
}

}  // namespace orrinvale::cli
