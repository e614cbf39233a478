#include "engine/duplicates/plan/NoteSeal.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "engine/duplicates/crc.h"
#include "engine/text/JsonReader.h"
#include "platform/descriptor.h"

namespace orrinvale {
namespace {

// Notes of before there were seals. They alone are read whole, to have their sums.
constexpr std::string_view olderNoteStart = "{\"orrinvaleRemoval\": 1";

// Of a rest of that length where the second piece begins; the first begins at 0 and ends there at
// the latest.
std::uint64_t secondPieceOf(std::uint64_t rest) {
    const std::uint64_t first = std::min<std::uint64_t>(rest, NoteSeal::piece);
    return std::max(first, rest - first);
}

std::uint64_t checkOf(const RemovalSummary& sums, std::string_view first, std::string_view second) {
    const std::string figures = fmt::format("{} {} ", sums.entries, sums.bytes);
    std::uint64_t check = 0;
    for (const std::string_view piece : {std::string_view(figures), first, second})
        check = crc::crc64Buffer(piece.data(), static_cast<std::uint32_t>(piece.size()),
                                 piece.data() == figures.data(), check);
    return check;
}

// Short where the file ends before, or can not be read on.
std::string bytesAt(int file, std::uint64_t place, std::uint64_t count) {
    std::string bytes(count, '\0');
    std::size_t have = 0;
    while (have < bytes.size()) {
        const ssize_t got = ::pread(file, bytes.data() + have, bytes.size() - have,
                                    static_cast<off_t>(place + have));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
    }
    bytes.resize(have);
    return bytes;
}

}  // namespace

NoteSeal NoteSeal::of(const RemovalSummary& sums, std::string_view rest) {
    return {.sums = sums,
            .rest = rest.size(),
            .check = checkOf(sums, rest.substr(0, piece), rest.substr(secondPieceOf(rest.size())))};
}

std::string NoteSeal::line() const {
    return fmt::format(
        "{{\"orrinvaleNote\": 1, \"entries\": {}, \"bytes\": {}, \"rest\": {}, \"check\": {}}}\n",
        sums.entries, sums.bytes, rest, check);
}

std::optional<NoteSeal> NoteSeal::parse(std::string_view beginning) {
    const std::size_t end = beginning.substr(0, mostBytes).find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    JsonReader reader(beginning.substr(0, end));
    if (!reader.beginObject() || reader.nextMember() != "orrinvaleNote" || reader.count() != 1)
        return std::nullopt;
    NoteSeal seal;
    const auto take = [&reader](std::string_view name, auto& number) {
        const bool isNext = reader.nextMember() == name;
        if (isNext) number = reader.count().value_or(0);
        return isNext;
    };
    if (!take("entries", seal.sums.entries) || !take("bytes", seal.sums.bytes) ||
        !take("rest", seal.rest) || !take("check", seal.check) || reader.nextMember() ||
        reader.hasFailed() || !reader.isAtEnd())
        return std::nullopt;
    return seal;
}

bool NoteSeal::holds(std::string_view wholeRest) const {
    return wholeRest.size() == rest && of(sums, wholeRest).check == check;
}

SealedNote lookAtNote(const std::string& path) {
    using enum SealedNote::State;
    const Descriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    struct stat seen {};
    if (!file.isOpen() || ::fstat(file.get(), &seen) != 0) return {.error = errno};
    if (!S_ISREG(seen.st_mode)) return {.error = EINVAL};
    if (seen.st_uid != ::geteuid()) return {.error = EPERM};
    const std::string beginning = bytesAt(file.get(), 0, NoteSeal::mostBytes);
    const auto seal = NoteSeal::parse(beginning);
    if (!seal) return {.state = beginning.starts_with(olderNoteStart) ? WithoutSeal : Damaged};
    const std::uint64_t line = beginning.find('\n') + 1;
    const auto whole = static_cast<std::uint64_t>(seen.st_size);
    if (whole - line != seal->rest) return {.state = Damaged};
    const std::string first =
        bytesAt(file.get(), line, std::min<std::uint64_t>(seal->rest, NoteSeal::piece));
    const std::uint64_t second = secondPieceOf(seal->rest);
    const std::string last = bytesAt(file.get(), line + second, seal->rest - second);
    if (checkOf(seal->sums, first, last) != seal->check) return {.state = Damaged};
    return {.state = Whole, .sums = seal->sums};
}

}  // namespace orrinvale
