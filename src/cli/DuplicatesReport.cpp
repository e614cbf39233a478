// Groups are printed as the search visits them and never gathered but for two thousand, since
// there may be millions.
#include "cli/DuplicatesReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <functional>

#include "cli/FolderReport.h"
#include "engine/base/Date.h"
#include "engine/base/saturating.h"
#include "engine/duplicates/FileKind.h"
#include "engine/duplicates/keep/GainCount.h"
#include "engine/duplicates/keep/GroupMembers.h"
#include "engine/duplicates/results/GainOrder.h"
#include "engine/files/WorkCrew.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

struct Leaf {
    std::string_view path;
    std::uint64_t size = 0;
    std::optional<Date> modified = std::nullopt;
    bool isProtected = false;
    std::optional<bool> stays = std::nullopt;  // where somebody asked
};

// Calls visit(leaf, member) for each leaf of a group, with what the rules say of it.
class LeafVisit {
public:
    explicit LeafVisit(const DuplicatesReport& report)
        : m_fates(report.fates()), m_members(*report.search.search()) {}

    template <class Visit> void visit(const DuplicateGroup& group, Visit visit) {
        const std::vector<KeepMember>& members = m_members.of(group);
        if (m_fates) m_fates->decide(members, m_stays);
        for (std::size_t i = 0; i < members.size(); ++i) {
            Leaf leaf{members[i].path, m_members.size(i)};
            if (members[i].modified) leaf.modified = Date{*members[i].modified};
            leaf.isProtected = members[i].isProtected;
            if (m_fates) leaf.stays = m_stays[i] != 0;
            visit(leaf, members[i]);
        }
    }
    /// Whoever removes the folders has nothing left to do for it.
    [[nodiscard]] bool goesWithFolder(const Leaf& leaf) const {
        return m_fates && m_fates->of(leaf.path) == FolderFate::Goes;
    }
    template <class Visit> void leaves(const DuplicateGroup& group, Visit visit) {
        this->visit(group, [&](const Leaf& leaf, const KeepMember&) { visit(leaf); });
    }

private:
    const std::optional<FolderFates> m_fates;
    GroupMembers m_members;
    std::vector<std::uint8_t> m_stays;
};

// The groups that are printed, in the order that was asked for.
void visitPrinted(const DuplicatesReport& report,
                  const std::function<void(const DuplicateGroup&)>& visit) {
    const auto visitShown = [&](const DuplicateGroup& group) {
        if (!report.isTold(group)) visit(group);
    };
    if (report.order == DuplicatesReport::Order::Gain) visitByGain(report.search, visitShown);
    else report.search.visitGroups(visitShown);
}

void appendNumber(std::string& out, std::uint64_t number) {
    std::array<char, 20> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out.append(digits.data(), end);
}

std::string plural(std::uint64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

void appendGroup(std::string& out, const DuplicateGroup& group, LeafVisit& visit) {
    out += "{\"name\": ";
    appendJsonText(out, group.name);
    out += ", \"extension\": ";
    appendJsonText(out, group.extension);
    fmt::format_to(std::back_inserter(out),
                   ", \"type\": \"{}\", \"bundle\": {}, \"size\": {},\n     \"leaves\": [",
                   kindName(kindOfExtension(group.extension)), group.bundle, group.size);
    const char* between = "{";
    visit.leaves(group, [&](const Leaf& leaf) {
        out += between;
        appendJsonPath(out, leaf.path);
        out += ", \"size\": ";
        appendNumber(out, leaf.size);
        out += leaf.modified ? ", \"modified\": \"" + iso8601(*leaf.modified) + "\""
                             : ", \"modified\": null";
        if (leaf.isProtected) out += ", \"protected\": true";
        if (leaf.stays) out += *leaf.stays ? ", \"keep\": true" : ", \"keep\": false";
        out += '}';
        between = ",\n                {";
    });
    out += "]}";
}

// The groups of a document. Putting the texts together takes as long as everything else that a
// search does of which all is remembered, so that all processors do it, some thousand groups at a
// time.
class GroupTexts {
public:
    GroupTexts(Output& out, const DuplicatesReport& report)
        : m_out(out), m_visits(m_crew.most(), LeafVisit(report)) {}

    void add(const DuplicateGroup& group) {
        m_groups.push_back(group);
        if (m_groups.size() == mostGroups) flush();
    }
    void flush() {
        const std::size_t count = (m_groups.size() + groupsAPiece - 1) / groupsAPiece;
        m_texts.resize(std::max(m_texts.size(), count));
        const std::atomic<bool> never{false};
        m_crew.forEach(count, 1, never, [&](std::size_t at, unsigned worker) {
            std::string& text = m_texts[at];
            text.clear();
            const std::size_t end = std::min(m_groups.size(), (at + 1) * groupsAPiece);
            for (std::size_t group = at * groupsAPiece; group < end; ++group) {
                text += m_isFirst && group == 0 ? "\n    " : ",\n    ";
                appendGroup(text, m_groups[group], m_visits[worker]);
            }
        });
        for (std::size_t at = 0; at < count; ++at) m_out.write(m_texts[at]);
        m_isFirst = m_isFirst && m_groups.empty();
        m_groups.clear();
    }

private:
    static constexpr std::size_t mostGroups = 2048;
    static constexpr std::size_t groupsAPiece = 32;

    Output& m_out;
    WorkCrew m_crew{WorkCrew::cores()};
    std::vector<LeafVisit> m_visits;  // one for each thread
    std::vector<DuplicateGroup> m_groups;
    std::vector<std::string> m_texts;
    bool m_isFirst = true;
};

void appendRoots(std::string& out, const DuplicatesReport& report) {
    out += "{\n  ";
    appendJsonPath(out, report.request.roots.front(), "root");
    if (report.request.roots.size() < 2) return;
    const auto appendList = [&out](const char* name, const auto& list, auto append) {
        out += fmt::format(",\n  \"{}\": [", name);
        const char* between = "{";
        for (const auto& each : list) {
            out += between;
            append(each);
            out += '}';
            between = ", {";
        }
        out += ']';
    };
    appendList("roots", report.request.roots,
               [&](const std::string& root) { appendJsonPath(out, root); });
    appendList("covered", report.search.search()->coveredRoots(), [&](const CoveredRoot& root) {
        appendJsonPath(out, root.path);
        out += ", ";
        appendJsonPath(out, root.by, "by", "byHex");
    });
}

}  // namespace

// Without findings nothing is decided by folders.
std::optional<FolderFates> DuplicatesReport::fates() const {
    static const FolderFindings none;
    if (rules == nullptr) return std::nullopt;
    return FolderFates(folders != nullptr ? *folders : none, *rules);
}

bool DuplicatesReport::isTold(const DuplicateGroup& group) const {
    return folders != nullptr && !group.bundle && folders->cover(group.files);
}

DuplicatesSummary summarize(const DuplicatesReport& report) {
    DuplicatesSummary summary;
    const auto state = report.search.search();
    summary.files = state->counts().listedFiles;
    summary.bundles = state->listedBundles();
    GainCount gain;
    if (report.rules != nullptr)
        for (const KeepRule& rule : *report.rules)
            summary.emptyFolders.insert(summary.emptyFolders.end(), rule.folders.begin(),
                                        rule.folders.end());
    LeafVisit visit(report);
    report.search.visitGroups([&](const DuplicateGroup& group) {
        ++summary.groups;
        summary.leaves += group.files.size() + group.bundles.size();
        addSaturating(summary.bytes, group.size);
        addSaturating(summary.reclaimable, gainOfGroup(group));
        if (report.isTold(group)) ++summary.told;
        if (report.rules == nullptr) return;
        visit.visit(group, [&](const Leaf& leaf, const KeepMember& member) {
            std::erase_if(summary.emptyFolders,
                          [&](const std::string& folder) { return liesIn(member, folder); });
            if (leaf.stays.value_or(true)) return;
            ++summary.removable;
            gain.add(member.identity, member.links, leaf.size);
        });
    });
    summary.gain = gain.bytes();
    return summary;
}

void printJson(Output& out, const DuplicatesReport& report, const DuplicatesSummary& summary,
               const std::vector<Error>& skipped, bool stopped) {
    std::string text;
    appendRoots(text, report);
    text += ",\n  \"groups\": [";
    out.write(text);
    GroupTexts texts(out, report);
    visitPrinted(report, [&](const DuplicateGroup& group) { texts.add(group); });
    texts.flush();
    text = fmt::format(
        "{}],\n  \"summary\": {{\"files\": {}, \"bundles\": {}, \"groups\": {}, \"leaves\": {}, "
        "\"bytes\": {}, "
        "\"reclaimable\": {}",
        summary.groups == summary.told ? "" : "\n  ", summary.files, summary.bundles,
        summary.groups, summary.leaves, summary.bytes, summary.reclaimable);
    if (report.rules != nullptr)
        text += fmt::format(", \"removable\": {}, \"gain\": {}", summary.removable, summary.gain);
    if (report.folders != nullptr) text += fmt::format(", \"inFolders\": {}", summary.told);
    text += '}';
    if (report.folders != nullptr) appendFolders(text, report);
    text += ",\n  \"skipped\": [";
    appendJsonSkipped(text, skipped);
    text += fmt::format("],\n  \"stopped\": {}\n}}\n", stopped);
    out.write(text);
}

void printPaths(Output& out, const DuplicatesReport& report) {
    if (report.folders != nullptr) printFolderPaths(out, report);
    LeafVisit visit(report);
    visitPrinted(report, [&](const DuplicateGroup& group) {
        visit.leaves(group, [&](const Leaf& leaf) {
            if (leaf.stays.value_or(false) || visit.goesWithFolder(leaf)) return;
            out.write(leaf.path);
            out.write(std::string_view("\0", 1));
        });
    });
}

void printListing(Output& out, const DuplicatesReport& report, const DuplicatesSummary& summary,
                  bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view faint = colour ? "\x1b[2m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    if (report.folders != nullptr) printFolders(out, report, {strong, faint, plain});
    LeafVisit visit(report);
    visitPrinted(report, [&](const DuplicateGroup& group) {
        const std::uint64_t leaves = group.files.size() + group.bundles.size();
        const std::uint64_t each =
            group.bundle ? group.bundles.front()->DirectorySize : group.files.front()->fileSize;
        out.write(fmt::format("{}{}{}  {}{} of {}{}\n", strong, printable(group.name), plain, faint,
                              plural(leaves, "copy", "copies"),
                              UtilityFunction::convertVolSpace(each), plain));
        visit.leaves(group, [&](const Leaf& leaf) {
            const std::string_view word = !leaf.stays ? "" : *leaf.stays ? "stays  " : "goes   ";
            out.write(fmt::format("  {}{}{}\n", word, printable(leaf.path),
                                  leaf.isProtected ? "  (protected)" : ""));
        });
        out.write("\n");
    });
    std::string listed = plural(summary.files, "file", "files");
    if (summary.bundles > 0)
        listed += " and " + plural(summary.bundles, "application", "applications");
    if (summary.groups == 0) {
        out.write(fmt::format("No duplicates among {}.\n", listed));
        return;
    }
    out.write(fmt::format("{}{} of duplicates{} among {}: {}, {} can be freed.\n", strong,
                          plural(summary.groups, "group", "groups"), plain, listed,
                          plural(summary.leaves, "copy", "copies"),
                          UtilityFunction::convertVolSpace(summary.reclaimable)));
    if (summary.told != 0)
        out.write(fmt::format("{} of these groups {} of the equal folders.\n", summary.told,
                              summary.told == 1 ? "is" : "are"));
    if (report.rules != nullptr)
        out.write(fmt::format("By these rules {} would go, which gives {}. Nothing was removed.\n",
                              plural(summary.removable, "copy", "copies"),
                              UtilityFunction::convertVolSpace(summary.gain)));
}

}  // namespace orrinvale::cli
