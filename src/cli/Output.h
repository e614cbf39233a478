// Output in large blocks, and the JSON that the commands print.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/text/utf8.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// Collects text and writes it to a descriptor in blocks; what is left goes out when the object
/// goes. One thread.
class Output final {
public:
    explicit Output(int descriptor);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text) {
        m_buffer += text;
        if (m_buffer.size() >= blockBytes) flush();
    }

    /// False when something could not be written, on a full disk for example. What fails once stays
    /// failed.
    bool flush();

private:
    static constexpr std::size_t blockBytes = 256 * 1024;

    const int m_descriptor;
    std::string m_buffer;
    bool m_failed = false;
};

/// A JSON text in quotes. Bytes that are not valid UTF-8 become U+FFFD each.
void appendJsonText(std::string& out, std::string_view bytes);

/// "path": "..." and, where the bytes are not valid UTF-8, "pathHex" with the exact bytes in
/// hexadecimal. Both fields may have other names.
void appendJsonPath(std::string& out, std::string_view path, std::string_view field = "path",
                    std::string_view hexField = "pathHex");

/// The members of a JSON array of what was skipped, each with its path and reason.
void appendJsonSkipped(std::string& out, const std::vector<Error>& skipped);

using orrinvale::validSequence;

/// The text for a terminal, so that no name can command it or pass for another: byte by byte as
/// \xHH stands what is not UTF-8, what controls the terminal, what turns the direction of writing,
/// and what has no width; line breaks and tabs as \n and \t.
[[nodiscard]] std::string printable(std::string_view bytes);

/// True when the descriptor is a terminal, and colours are not refused by NO_COLOR.
[[nodiscard]] bool isTerminal(int descriptor);
[[nodiscard]] bool wantsColour(int descriptor);

}  // namespace orrinvale::cli
