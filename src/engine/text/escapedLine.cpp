#include "engine/text/escapedLine.h"

namespace orrinvale {

std::string escapedLine(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\n') out += "\\n";
        else if (c == '\\') out += "\\\\";
        else out += c;
    }
    return out;
}

std::optional<std::string> unescapedLine(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        if (++i == text.size() || (text[i] != 'n' && text[i] != '\\')) return std::nullopt;
        out += text[i] == 'n' ? '\n' : '\\';
    }
    return out;
}

}  // namespace orrinvale
