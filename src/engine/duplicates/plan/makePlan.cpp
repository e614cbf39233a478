// keep/KeepRule.h decides; here is what a plan keeps of it.
#include "engine/duplicates/plan/makePlan.h"

#include <unistd.h>

#include <chrono>
#include <utility>

#include "engine/base/Date.h"
#include "engine/duplicates/keep/GroupMembers.h"

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
    PlanMaker(DuplicatePlan& plan, const KeepRules& rules, const duplicateFind& search)
        : m_plan(plan), m_rules(rules), m_group(search) {}

    void add(const DuplicateGroup& group) {
        const auto& members = m_group.of(group);
        m_stays.resize(members.size());
        decideKept(m_rules, members, m_stays);
        PlanGroup planned;
        for (const AppAttrbItem* bundle : group.bundles)
            planned.members.push_back(plannedBundle(*bundle));
        for (const fileAttrbItem* file : group.files) planned.members.push_back(plannedFile(*file));
        bool isAnyGoing = false;
        for (std::size_t i = 0; i < members.size(); ++i) {
            PlanMember& member = planned.members[i];
            member.isProtected = members[i].isProtected;
            member.goes = m_stays[i] == 0 && !member.isProtected && !members[i].isSymbolicLink();
            isAnyGoing = isAnyGoing || member.goes;
        }
        if (isAnyGoing) m_plan.groups.push_back(std::move(planned));
    }

private:
    DuplicatePlan& m_plan;
    const KeepRules& m_rules;
    GroupMembers m_group;
    std::vector<std::uint8_t> m_stays;
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
    PlanMaker maker(plan, origin.rules, *state);
    search.visitGroups([&](const DuplicateGroup& group) { maker.add(group); });
    return plan;
}

}  // namespace orrinvale
