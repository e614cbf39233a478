// keep/KeepRule.h decides; here is what a plan keeps of it.
#include "engine/duplicates/plan/makePlan.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <utility>

#include "engine/base/Date.h"
#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/folders/FolderFates.h"
#include "engine/duplicates/keep/GroupMembers.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

PlanMember plannedFile(const fileAttrbItem& file) {
    PlanMember member;
    member.path = file.filePathName();
    member.size = file.fileSize;
    member.identity = identityOf(file);
    if (file.md5 != 0) member.contents = file.md5;
    return member;
}

PlanMember plannedBundle(const AppAttrbItem& bundle) {
    PlanMember member;
    member.path = bundle.DirectoryPathName;
    member.size = bundle.DirectorySize;
    member.identity = identityOf(bundle);
    member.listing = bundle.digest;
    return member;
}

// Of a link that was searched what it leads to: a removal follows none.
const std::string& pathOfPlanned(const FileSystem& files, const FolderMember& folder) {
    if (folder.place.empty()) return folder.path;
    const auto seen = files.attributes(FileSystem::noParent, folder.path.c_str(), Links::Keep);
    return seen && seen->type == FileType::SymbolicLink ? folder.place : folder.path;
}

// Nothing where it can not be listed any more.
std::optional<PlanMember> plannedFolder(const FileSystem& files, const FolderMember& folder,
                                        std::uint64_t bytes,
                                        const std::vector<std::uint64_t>& passing) {
    const std::atomic<bool> never{false};
    const auto now = listBundle(files, folder.path, {passing}, never);
    if (!now) return std::nullopt;
    PlanMember member;
    member.path = pathOfPlanned(files, folder);
    member.size = bytes;
    member.isProtected = folder.isProtected;
    member.identity = folder.identity;
    member.listing = now->digest;
    return member;
}

std::string textOfRule(const KeepRule& rule) {
    switch (rule.by) {
        case KeepRule::By::Newest: return "newest";
        case KeepRule::By::Oldest: return "oldest";
        case KeepRule::By::ShortestPath: return "shortest-path";
        case KeepRule::By::ShortestName: return "shortest-name";
        case KeepRule::By::BestPlace: break;
    }
    return "path:" + (rule.folders.empty() ? std::string() : rule.folders.front());
}

/// One group after another, decided and added.
class PlanMaker final {
public:
    PlanMaker(DuplicatePlan& plan, const FolderFates& fates, const duplicateFind& search)
        : m_plan(plan), m_fates(fates), m_group(search) {}

    void add(const FileSystem& files, const FolderGroup& group) {
        const auto goes = [this](const FolderMember& folder) {
            return !folder.isProtected && m_fates.of(folder.path) == FolderFate::Goes;
        };
        if (std::ranges::none_of(group.members, goes)) return;
        if (!m_passing) m_passing = files.devicesOfPassingInodes();
        PlanGroup planned;
        bool isAnyGoing = false;
        bool isAnyLeft = false;
        for (const FolderMember& folder : group.members) {
            if (m_fates.of(folderOf(folder.path)) == FolderFate::Goes) continue;
            auto member = plannedFolder(files, folder, group.bytes, *m_passing);
            if (!member) continue;
            member->goes = goes(folder);
            (member->goes ? isAnyGoing : isAnyLeft) = true;
            planned.members.push_back(std::move(*member));
        }
        if (isAnyGoing && isAnyLeft) m_plan.groups.push_back(std::move(planned));
    }

    void add(const DuplicateGroup& group) {
        const auto& members = m_group.of(group);
        m_fates.decide(members, m_stays);
        PlanGroup planned;
        for (const AppAttrbItem* bundle : group.bundles)
            planned.members.push_back(plannedBundle(*bundle));
        for (const fileAttrbItem* file : group.files) planned.members.push_back(plannedFile(*file));
        for (std::size_t i = 0; i < members.size(); ++i) {
            PlanMember& member = planned.members[i];
            member.isProtected = members[i].isProtected;
            member.goes = m_stays[i] == 0 && !member.isProtected && !members[i].isSymbolicLink();
        }
        std::erase_if(planned.members, [&](const PlanMember& member) {
            return m_fates.of(member.path) == FolderFate::Goes;
        });
        if (std::ranges::any_of(planned.members, &PlanMember::goes))
            m_plan.groups.push_back(std::move(planned));
    }

private:
    DuplicatePlan& m_plan;
    const FolderFates& m_fates;
    GroupMembers m_group;
    std::vector<std::uint8_t> m_stays;
    std::optional<std::vector<std::uint64_t>> m_passing;  // asked once, for the first folders
};

}  // namespace

DuplicatePlan emptyPlan(const PlanOrigin& origin) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    DuplicatePlan plan;
    plan.owner = ::geteuid();
    plan.made = iso8601({std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()});
    plan.roots = origin.roots;
    plan.protectedFolders = origin.protectedFolders;
    for (const KeepRule& rule : origin.rules) plan.rules.push_back(textOfRule(rule));
    return plan;
}

DuplicatePlan makePlan(const DuplicateFilesOpt& search, const PlanOrigin& origin) {
    DuplicatePlan plan = emptyPlan(origin);
    const auto state = search.search();
    if (state == nullptr) return plan;
    static const FolderFindings none;
    const FolderFindings& folders = origin.files != nullptr ? state->folders() : none;
    const FolderFates fates(folders, origin.rules);
    PlanMaker maker(plan, fates, *state);
    for (const FolderGroup& group : folders.groups) maker.add(*origin.files, group);
    search.visitGroups([&](const DuplicateGroup& group) { maker.add(group); });
    return plan;
}

}  // namespace orrinvale
