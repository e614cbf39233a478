// A packet is the letter of the kind, the text, a NUL, the token.
#include "platform/StartRequest.h"

#include <array>
#include <utility>

#include "platform/FileUrl.h"

namespace orrinvale {
namespace {

constexpr std::array<std::pair<StartRequest::Kind, char>, 3> letters{
    {{StartRequest::Kind::Activate, 'v'},
     {StartRequest::Kind::Open, 'o'},
     {StartRequest::Kind::Action, 'a'}}};

bool hasFittingText(const StartRequest& request) {
    switch (request.kind) {
        case StartRequest::Kind::Activate: return request.text.empty();
        case StartRequest::Kind::Open: return request.text.starts_with('/');
        case StartRequest::Kind::Action: return !request.text.empty();
    }
    return false;
}

}  // namespace

std::string startAction::withFolder(std::string_view action, std::string_view folder) {
    return std::string(action) + ' ' + fileUrlOf(folder);
}

std::optional<std::string> StartRequest::folderOfAction(std::string_view name) const {
    const std::string_view action = text;
    if (kind != Kind::Action || !action.starts_with(name) || action.size() <= name.size() ||
        action[name.size()] != ' ')
        return {};
    return pathOfFileUrl(action.substr(name.size() + 1));
}

std::string printStartRequest(const StartRequest& request) {
    std::string packet;
    for (const auto& [kind, letter] : letters)
        if (kind == request.kind) packet = letter;
    packet += request.text;
    packet += '\0';
    return packet + request.activationToken;
}

std::optional<StartRequest> parseStartRequest(std::string_view packet) {
    if (packet.empty() || packet.size() > startRequestLimit) return std::nullopt;
    for (const auto& [kind, letter] : letters) {
        if (letter != packet.front()) continue;
        const std::size_t end = packet.find('\0');
        if (end == std::string_view::npos) return std::nullopt;
        StartRequest request{kind, std::string(packet.substr(1, end - 1)),
                             std::string(packet.substr(end + 1))};
        const bool isWhole = request.activationToken.find('\0') == std::string::npos;
        if (isWhole && hasFittingText(request)) return request;
        return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace orrinvale
