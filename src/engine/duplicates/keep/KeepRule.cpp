// decideKept() is the rule of all rules: one copy is chosen, and with it stays what must.
#include "engine/duplicates/keep/KeepRule.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "platform/paths.h"

namespace orrinvale {
namespace {

using By = KeepRule::By;

constexpr std::string_view placePrefix = "path:";
constexpr std::array<std::pair<std::string_view, By>, 4> ruleNames{{
    {"newest", By::Newest},
    {"oldest", By::Oldest},
    {"shortest-path", By::ShortestPath},
    {"shortest-name", By::ShortestName},
}};

// As a person counts them: the bytes that continue a character do not count.
std::size_t charactersOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string_view realPlace(const KeepMember& member) {
    return member.place.empty() ? member.path : member.place;
}

std::size_t placeIn(const std::vector<std::string>& folders, const KeepMember& member) {
    return static_cast<std::size_t>(
        std::ranges::find_if(folders,
                             [&](const std::string& folder) { return liesIn(member, folder); }) -
        folders.begin());
}

// Below 0 where `a` stands before `b`.
template <class Value> int compareValues(const Value& a, const Value& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

int compareDates(const KeepMember& a, const KeepMember& b, bool newestFirst) {
    if (!a.modified || !b.modified)
        return int(b.modified.has_value()) - int(a.modified.has_value());
    return newestFirst ? compareValues(*b.modified, *a.modified)
                       : compareValues(*a.modified, *b.modified);
}

int compareByRule(const KeepRule& rule, const KeepMember& a, const KeepMember& b) {
    switch (rule.by) {
        case By::Newest: return compareDates(a, b, true);
        case By::Oldest: return compareDates(a, b, false);
        case By::ShortestPath: return compareValues(charactersOf(a.path), charactersOf(b.path));
        case By::ShortestName:
            return compareValues(charactersOf(lastPathComponent(a.path)),
                                 charactersOf(lastPathComponent(b.path)));
        case By::BestPlace:
            return compareValues(placeIn(rule.folders, a), placeIn(rule.folders, b));
    }
    return 0;
}

bool standsBefore(const KeepRules& rules, const KeepMember& a, const KeepMember& b) {
    if (a.isProtected != b.isProtected) return a.isProtected;
    for (const KeepRule& rule : rules)
        if (const int order = compareByRule(rule, a, b); order != 0) return order < 0;
    return a.path < b.path;
}

// Where numbers do not last two files with several names may be one, and count as one.
std::pair<std::uint64_t, std::uint64_t> keptFileOf(const KeepMember& member) {
    const EntryIdentity& identity = *member.identity;
    return {identity.device, identity.inodePasses ? 0 : identity.inode};
}

bool hasTellingNumber(const KeepMember& member) {
    return member.identity != nullptr && !member.isSymbolicLink() &&
           (!member.identity->inodePasses || member.links > 1);
}

void markHardLinks(std::span<const KeepMember> members, std::vector<std::uint8_t>& marked) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> files;
    for (std::size_t i = 0; i < members.size(); ++i)
        if (marked[i] != 0 && hasTellingNumber(members[i])) files.push_back(keptFileOf(members[i]));
    std::sort(files.begin(), files.end());
    for (std::size_t i = 0; i < members.size(); ++i)
        if (marked[i] == 0 && hasTellingNumber(members[i]) &&
            std::ranges::binary_search(files, keptFileOf(members[i])))
            marked[i] = 1;
}

void markLinks(std::span<const KeepMember> members, std::vector<std::uint8_t>& marked) {
    if (std::ranges::none_of(members, &KeepMember::isSymbolicLink)) return;
    std::vector<std::string_view> places;
    for (std::size_t i = 0; i < members.size(); ++i)
        if (marked[i] != 0) places.push_back(realPlace(members[i]));
    std::sort(places.begin(), places.end());
    for (std::size_t i = 0; i < members.size(); ++i)
        if (marked[i] == 0 && members[i].isSymbolicLink() &&
            std::ranges::binary_search(places, realPlace(members[i])))
            marked[i] = 1;
}

// Marks what is another name of a marked member. A link may lead to any of its hard links.
void markOtherNames(std::span<const KeepMember> members, std::vector<std::uint8_t>& marked) {
    if (std::ranges::find(marked, 0) == marked.end()) return;
    markHardLinks(members, marked);
    markLinks(members, marked);
}

constexpr std::size_t nobody = ~std::size_t{0};

// The first of those that may be the copy; `nobody` where none may.
template <class May>
std::size_t firstOf(const KeepRules& rules, std::span<const KeepMember> members, May may) {
    std::size_t first = nobody;
    for (std::size_t i = 0; i < members.size(); ++i)
        if (!members[i].isSymbolicLink() && may(i) &&
            (first == nobody || standsBefore(rules, members[i], members[first])))
            first = i;
    return first;
}

}  // namespace

bool liesIn(const KeepMember& member, std::string_view folder) {
    return isWithin(member.path, folder) ||
           (!member.isSymbolicLink() && isWithin(realPlace(member), folder));
}

std::optional<KeepRule> keepRuleOf(std::string_view text) {
    if (text.starts_with(placePrefix)) {
        const auto folder = plainPath(text.substr(placePrefix.size()));
        if (!folder) return std::nullopt;
        return KeepRule{By::BestPlace, {*folder}};
    }
    const auto* const found =
        std::ranges::find(ruleNames, text, &decltype(ruleNames)::value_type::first);
    if (found == ruleNames.end()) return std::nullopt;
    return KeepRule{found->second};
}

void decideKept(const KeepRules& rules, std::span<const KeepMember> members,
                std::vector<std::uint8_t>& stays) {
    const std::size_t copy = firstOf(rules, members, [](std::size_t) { return true; });
    stays.assign(members.size(), copy == nobody ? 1 : 0);
    if (copy == nobody) return;
    stays[copy] = 1;
    for (std::size_t i = 0; i < members.size(); ++i)
        if (members[i].isProtected) stays[i] = 1;
    markOtherNames(members, stays);
}

void tickWithin(std::string_view folder, std::span<const KeepMember> members,
                std::vector<std::uint8_t>& ticked) {
    std::vector<std::uint8_t> stays(members.size());
    bool hasCopy = false;
    for (std::size_t i = 0; i < members.size(); ++i) {
        stays[i] = members[i].isProtected || (ticked[i] == 0 && !liesIn(members[i], folder));
        hasCopy |= stays[i] != 0 && !members[i].isSymbolicLink();
    }
    if (!hasCopy) {
        const std::size_t copy =
            firstOf({}, members, [&](std::size_t i) { return ticked[i] == 0; });
        if (copy == nobody) return;  // a person has ticked the last one, and not by folders
        stays[copy] = 1;
    }
    markOtherNames(members, stays);
    for (std::size_t i = 0; i < members.size(); ++i)
        if (stays[i] == 0) ticked[i] = 1;
}

void untickWithin(std::string_view folder, std::span<const KeepMember> members,
                  std::vector<std::uint8_t>& ticked) {
    for (std::size_t i = 0; i < members.size(); ++i)
        if (liesIn(members[i], folder)) ticked[i] = 0;
}

}  // namespace orrinvale
