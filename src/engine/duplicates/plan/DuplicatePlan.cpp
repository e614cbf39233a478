// What a plan may say, and its text. The digest tells damage and a careless edit; that a forged
// plan does no harm is PlanRemoval's affair.
#include "engine/duplicates/plan/DuplicatePlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <unordered_set>
#include <utility>

#include "engine/base/Date.h"
#include "engine/base/saturating.h"
#include "engine/duplicates/crc.h"
#include "engine/text/JsonText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view planBeginning = "{\n  \"orrinvalePlan\": ";
constexpr std::string_view notPlain = "no plain absolute path";

std::string_view planTypeName(FileType type) {
    if (type == FileType::Folder) return "bundle";
    return type == FileType::SymbolicLink ? "link" : "file";
}

void appendPathList(std::string& out, std::string_view name,
                    const std::vector<std::string>& paths) {
    ((out += "  \"") += name) += "\": [";
    for (const std::string& path : paths) {
        out += &path == paths.data() ? "{" : ", {";
        appendJsonPath(out, path);
        out += '}';
    }
    out += "],\n";
}

template <class Number> void appendCount(std::string& out, std::string_view name, Number value) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    (((out += ", \"") += name) += "\": ").append(digits.data(), end);
}

void appendHash(std::string& out, std::string_view name, std::uint64_t value) {
    ((out += ", \"") += name) += "\": \"";
    for (int shift = 60; shift >= 0; shift -= 4)
        out += "0123456789abcdef"[(value >> static_cast<unsigned>(shift)) & 15U];
    out += '"';
}

void appendMember(std::string& out, const PlanMember& member) {
    out += "    {";
    appendJsonPath(out, member.path);
    const EntryIdentity& seen = member.identity;
    out += member.goes ? ", \"goes\": true" : ", \"goes\": false";
    ((out += ", \"type\": \"") += planTypeName(seen.type)) += '"';
    appendCount(out, "size", member.size);
    appendCount(out, "device", seen.device);
    appendCount(out, "inode", seen.inode);
    appendCount(out, "modified", seen.modified);
    appendCount(out, "changed", seen.changed);
    if (member.isProtected) out += ", \"protected\": true";
    if (member.contents) appendHash(out, "contents", *member.contents);
    if (member.listing) appendHash(out, "listing", *member.listing);
    out += '}';
}

// All that the digest is of.
void appendContents(std::string& out, const DuplicatePlan& plan) {
    out += fmt::format("  \"owner\": {},\n  \"made\": ", plan.owner);
    appendJsonText(out, plan.made);
    out += ",\n";
    appendPathList(out, "roots", plan.roots);
    appendPathList(out, "protected", plan.protectedFolders);
    appendPathList(out, "keep", plan.rules);
    out += "  \"groups\": [";
    for (const PlanGroup& group : plan.groups) {
        out += &group == plan.groups.data() ? "\n   [\n" : ",\n   [\n";
        for (const PlanMember& member : group.members) {
            appendMember(out, member);
            if (&member != &group.members.back()) out += ",\n";
        }
        out += ']';
    }
    out += "]\n}\n";
}

std::size_t membersIn(const DuplicatePlan& plan) {
    std::size_t count = 0;
    for (const PlanGroup& group : plan.groups) count += group.members.size();
    return count;
}

// As plainPath() would leave it; that is asked only where a component begins like one that it takes
// out.
bool isPlainPath(const std::string& path) {
    if (path.size() < 2 || path.front() != '/' || path.back() == '/') return false;
    char before = 0;
    for (const char c : path) {
        if (c == '\0' || (before == '/' && c == '/')) return false;
        if (before == '/' && c == '.') return plainPath(path) == path;
        before = c;
    }
    return true;
}

// By their hashes, which a person's paths share by next to no chance.
std::optional<std::string> pathTwiceIn(const DuplicatePlan& plan) {
    std::vector<std::size_t> hashes;
    hashes.reserve(membersIn(plan));
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members)
            hashes.push_back(std::hash<std::string>()(member.path));
    std::ranges::sort(hashes);
    if (std::ranges::adjacent_find(hashes) == hashes.end()) return std::nullopt;
    std::unordered_set<std::string_view> paths;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members)
            if (!paths.insert(member.path).second) return member.path;
    return std::nullopt;
}

bool isPlanBundle(const PlanMember& member) { return member.identity.type == FileType::Folder; }

// A bundle and a file are never compared with each other, and neither are folders that nobody
// listed.
std::optional<std::string> faultOfMember(const PlanMember& member, const PlanGroup& group) {
    if (!isPlainPath(member.path)) return std::string(notPlain);
    if (isPlanBundle(member) != isPlanBundle(group.members.front()))
        return "a bundle is no copy of a file";
    if (isPlanBundle(member) && !member.listing) return "a folder that nobody listed is no copy";
    if (!member.goes) return std::nullopt;
    if (member.isProtected) return "it is protected, and goes all the same";
    if (member.identity.type == FileType::SymbolicLink) return "a link is no copy";
    if (!isPlanBundle(member) && member.size == 0) return "an empty file is no copy";
    return std::nullopt;
}

}  // namespace

PlanSums sumsOf(const DuplicatePlan& plan) {
    PlanSums sums;
    std::vector<const PlanMember*> going;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            if (!member.goes) continue;
            ++(member.identity.type == FileType::Folder ? sums.bundles : sums.files);
            going.push_back(&member);
        }
    // A file with several names counts once.
    const auto fileOfMember = [](const PlanMember* member) {
        return std::pair(member->identity.device, member->identity.inode);
    };
    std::ranges::sort(going, {}, fileOfMember);
    for (std::size_t i = 0; i < going.size(); ++i)
        if (i == 0 || going[i]->identity.inode == 0 ||
            fileOfMember(going[i]) != fileOfMember(going[i - 1]))
            addSaturating(sums.bytes, going[i]->size);
    return sums;
}

std::optional<std::string> faultOf(const DuplicatePlan& plan, PlanUse use) {
    if (!parseDate(plan.made)) return "it does not tell when it was made";
    const auto told = [](const std::string& path, const std::string& fault) {
        return fmt::format("{}: {}", path, fault);
    };
    for (const std::string& folder : plan.protectedFolders)
        if (plainPath(folder) != folder) return told(folder, std::string(notPlain));
    for (const PlanGroup& group : plan.groups) {
        bool isAnyLeft = group.members.empty() || use == PlanUse::Undo;
        for (const PlanMember& member : group.members) {
            const auto fault = use == PlanUse::Removal    ? faultOfMember(member, group)
                               : isPlainPath(member.path) ? std::nullopt
                                                          : std::optional(std::string(notPlain));
            if (fault) return told(member.path, *fault);
            isAnyLeft = isAnyLeft || !member.goes;
        }
        if (!isAnyLeft) return told(group.members.front().path, "no copy of it would stay");
    }
    if (const auto path = pathTwiceIn(plan)) return told(*path, "it stands there twice");
    return std::nullopt;
}

std::string writePlan(const DuplicatePlan& plan) {
    constexpr std::size_t usualMember = 320;
    std::string out(planBeginning);
    out.reserve(1024 + membersIn(plan) * usualMember);
    out += fmt::format("{},\n  \"digest\": \"{:016x}\",\n", 1, 0);
    const std::size_t from = out.size();
    appendContents(out, plan);
    const auto digest =
        crc::crc64(out.data() + from, static_cast<std::uint32_t>(out.size() - from));
    constexpr std::size_t behindDigest = 3;  // what stands between it and the contents
    out.replace(from - behindDigest - 16, 16, fmt::format("{:016x}", digest));
    return out;
}

bool beginsAsPlan(std::string_view text) { return text.starts_with(planBeginning); }

}  // namespace orrinvale
