// Any bytes as a kept scan, with their own checksum and with the right one: the reader comes to an
// end, tells only names that a folder can hold, and what differs between two such scans is a tree.
#include "engine/diskusage/history/ScanDifference.h"
#include "engine/duplicates/crc.h"
#include "fuzz.h"

namespace {

using namespace orrinvale;

constexpr std::string_view magic = "orrinvale scan 2\n";

std::string withChecksum(std::string_view facts) {
    const std::uint64_t sum = crc::crc64(facts.data(), static_cast<std::uint32_t>(facts.size()));
    std::string bytes(magic);
    for (unsigned i = 0; i < 8; ++i) bytes += static_cast<char>(sum >> (8 * i));
    return bytes.append(facts);
}

// Whether the bytes are a scan to their end.
bool readAll(const StoredScan& scan) {
    ScanReader reader(scan);
    for (std::size_t steps = 0;; ++steps) {
        require(steps <= scan.bytes.size());
        const auto step = reader.next();
        if (step == ScanReader::Step::Bad) require(reader.next() == ScanReader::Step::Bad);
        if (step == ScanReader::Step::Bad || step == ScanReader::Step::End)
            return step == ScanReader::Step::End;
        if (step == ScanReader::Step::Up) continue;
        const std::string_view name = reader.name();
        require(!name.empty() && name != "." && name != "..");
        require(name.find('/') == name.npos && name.find('\0') == name.npos);
    }
}

void compareWith(const StoredScan& before, const StoredScan& after, bool areScans) {
    const auto difference = ScanDifference::of(before, after);
    if (areScans) require(difference.has_value());
    if (!difference) return;
    const auto& all = difference->all();
    std::size_t children = 0;
    for (std::uint32_t i = 0; i < all.size(); ++i) {
        require(i == 0 ? all[i].parent == 0 : all[i].parent < i);
        require(all[all[i].parent].isFolder);
        require(difference->mostly(i) < all.size());
        for (const std::uint32_t child : difference->children(all[i])) {
            require(all[child].parent == i && child != i);
            ++children;
        }
    }
    require(children + 1 == all.size());
}

}  // namespace

void checkAny(std::string_view any) {
    require(!parseScan(std::string(any)) || any.starts_with("orrinvale scan "));
    // "/", a time, no marks, one file system, seven numbers, and a few entries before what comes.
    static constexpr char head[] = "\1/\2\0\0\1\1\1\0\0\3\4";
    static constexpr char entries[] = "\1\1a\2\1\0b\3\0\1\1c\1";
    const std::string_view facts(head, sizeof head - 1);
    const std::string known =
        withChecksum(std::string(facts) + std::string(entries, 13) + '\0' + '\0');
    const auto base = parseScan(known);
    require(base.has_value() && readAll(*base));
    for (const std::string& each :
         {withChecksum(any), withChecksum(std::string(facts) + std::string(any)),
          withChecksum(std::string(facts) + std::string(entries, 13) + std::string(any))}) {
        const auto scan = parseScan(each);
        if (!scan) continue;
        const bool isScan = readAll(*scan);
        compareWith(*base, *scan, isScan);
        compareWith(*scan, *base, isScan);
        compareWith(*scan, *scan, isScan);
    }
}
