// Written by hand since QUrl::toLocalFile() goes through Unicode and loses names that are no UTF-8.
#include "platform/FileUrl.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace orrinvale {
namespace {

int hexValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lower, lower);
}

// A '%' that no two digits follow stands for itself.
std::string percentDecoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int high = at + 2 < text.size() && text[at] == '%' ? hexValue(text[at + 1]) : -1;
        const int low = high >= 0 ? hexValue(text[at + 2]) : -1;
        if (low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            at += 2;
        } else {
            bytes += text[at];
        }
    }
    return bytes;
}

bool isThisMachine(std::string_view host) {
    if (host.empty() || equalsIgnoringCase(host, "localhost")) return true;
    std::array<char, 256> name{};  // HOST_NAME_MAX is 64; the last byte stays the terminator
    if (::gethostname(name.data(), name.size() - 1) != 0) return false;
    return equalsIgnoringCase(host, name.data());
}

}  // namespace

std::optional<std::string> pathOfFileUrl(std::string_view url) {
    constexpr std::string_view scheme = "file:";
    if (url.size() < scheme.size() || !equalsIgnoringCase(url.substr(0, scheme.size()), scheme))
        return std::nullopt;
    std::string_view rest = url.substr(scheme.size());
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const auto slash = std::min(rest.find('/'), rest.size());
        if (!isThisMachine(rest.substr(0, slash))) return std::nullopt;
        rest.remove_prefix(slash);
    }
    std::string path = percentDecoded(rest);
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

std::string fileUrlOf(std::string_view path) {
    constexpr std::string_view asTheyStand = "-._~/";  // beside letters and digits: RFC 3986
    std::string url = "file://";
    for (const char byte : path) {
        const bool isAlphanumeric = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                                    (byte >= '0' && byte <= '9');
        if (isAlphanumeric || asTheyStand.find(byte) != std::string_view::npos) url += byte;
        else url += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return url;
}

std::optional<std::string> firstLocalPath(std::string_view uriList) {
    while (!uriList.empty()) {
        const auto end = uriList.find_first_of("\r\n");
        const std::string_view line = uriList.substr(0, end);
        uriList.remove_prefix(end == std::string_view::npos ? uriList.size() : end + 1);
        if (line.starts_with('#')) continue;
        if (auto path = pathOfFileUrl(line)) return path;
    }
    return std::nullopt;
}

}  // namespace orrinvale
