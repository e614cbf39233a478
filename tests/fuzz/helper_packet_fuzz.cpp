// Any bytes as a packet to the administrator's helper, and as its reply: what is let through is
// what the helper may act on.
#include <utility>

#include "fuzz/fuzz.h"
#include "helper/Request.h"

namespace orrinvale {
namespace {

void checkPath(std::string_view path) {
    require(path.size() > 1 && path.front() == '/' && path.back() != '/');
    require(path.find('\0') == std::string_view::npos && path.find("//") == std::string_view::npos);
    const std::string closed = std::string(path) + '/';
    require(closed.find("/./") == std::string::npos && closed.find("/../") == std::string::npos);
}

void checkEntry(const SeenEntry& entry) {
    require(entry.type > FileType::Unknown && entry.type <= FileType::BlockDevice);
    checkPath(entry.path);
}

void checkRequest(std::string_view packet) {
    const auto request = helper::readRequest(packet);
    if (!request) return require(!request.error().empty());
    require(packet.size() <= HelperRequest::mostBytes &&
            request->sequence == helper::sequenceOf(packet));
    checkEntry(request->entry);
    if (request->stays) checkEntry(*request->stays);
    require(!request->stays || request->stays->state.has_value());
    require(request->packed() == packet);  // nothing of it was overlooked
}

void checkReply(std::string_view packet) {
    const auto reply = HelperReply::read(packet);
    if (reply) require(reply->packed() == packet && reply->text.size() <= HelperReply::mostText);
}

// Most made-up bytes fail at the mark already. Behind a good head they are a path, and with one of
// these pieces put in, one that the checks have to look at closely. 104 packets an input: the
// 50,000 inputs of a replay make some five million.
void checkFramed(std::string_view any) {
    using namespace std::string_view_literals;
    for (const std::string_view piece :
         {""sv, "/"sv, "."sv, ".."sv, "/."sv, "/.."sv, "/../"sv, "//"sv, "\0"sv, "/\0"sv}) {
        for (const std::size_t at : {std::size_t{0}, any.size() / 2, any.size()}) {
            if (piece.size() < 2 && at == 0) continue;
            std::string path = at == 0 ? std::string() : "/";
            path.append(any.substr(0, at)).append(piece).append(any.substr(at));
            const auto type = static_cast<FileType>((any.size() + piece.size()) % 9);
            HelperRequest request{.sequence = 1,
                                  .entry = {std::move(path), 2, 3, type, EntryState{}},
                                  .stays = std::nullopt};
            checkRequest(request.packed());
            request.stays = request.entry;
            const std::string packet = request.packed();
            checkRequest(packet);
            checkRequest(
                std::string_view(packet).substr(0, packet.size() - any.size() % packet.size()));
            checkRequest(packet + std::string(any));
        }
    }
}

}  // namespace
}  // namespace orrinvale

void checkAny(std::string_view any) {
    orrinvale::checkRequest(any);
    orrinvale::checkReply(any);
    orrinvale::checkFramed(any);
}
