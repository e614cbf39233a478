// ShareRun: a plan whose copies share their space, and what became of each, in words.
#pragma once

#include "engine/duplicates/share/ShareDoor.h"
#include "engine/duplicates/share/ShareList.h"
#include "engine/duplicates/share/ShareOutlook.h"
#include "engine/removal/PairList.h"
#include "support/realFiles.h"

namespace orrinvale::testing {

// A plan in whose only group the first file stays.
inline DuplicatePlan sharePlan(const Strings& paths) {
    DuplicatePlan plan;
    plan.owner = ::geteuid();
    plan.made = "2026-11-22T15:00:00+00:00";
    plan.groups.emplace_back();
    for (const std::string& path : paths) {
        PlanMember member;
        member.path = path;
        member.goes = !plan.groups[0].members.empty();
        member.identity = EntryIdentity::of(attributesOf(path));
        member.size = member.identity.size;
        plan.groups[0].members.push_back(std::move(member));
    }
    return plan;
}

struct ShareRun {
    bool mayLink = false;
    bool onlyLooks = false;
    std::string state = {};
    std::uint64_t promised = 0;
    std::shared_ptr<ShareList> list = nullptr;

    // "extents", "link", "already", "gone", or the reason, of each; in the order of the plan.
    std::string run(const FileSystem& of, const DuplicatePlan& plan) {
        list = std::make_shared<ShareList>(of, plan);
        ShareDoor door(of, {}, shareOrder(list, mayLink, onlyLooks));
        const std::atomic<bool> never{false};
        RemovalRun removal(of, state, *list, door, never, testing::nobodyTold());
        (void)removal.run();
        removal.settleJournal();
        promised = list->promised();
        std::string told;
        for (const auto& each : list->account()) told += wordFor(each) + "; ";
        return told;
    }

    static std::string wordFor(const ShareList::Settled& each) {
        using As = ShareList::Settled::As;
        if (each.as == As::GoneByOthers) return "gone";
        if (each.as != As::Shared) return each.reason;
        constexpr const char* words[] = {"already", "extents", "link"};
        return words[static_cast<int>(each.shared.by)];
    }
};

inline std::string sharedIn(const Strings& paths, ShareRun run = {}, const FileSystem& of = files) {
    return run.run(of, sharePlan(paths));
}

inline constexpr const char* otherSystem = "the copy that stays is on another file system; ";
inline constexpr const char* otherBelongings =
    "owner, group, rights or extended attributes are not those of the copy that stays; ";
inline constexpr const char* mostNames =
    "the copy that stays has as many names as its file system allows; ";

// What is told by a look, if it is also what is done.
inline std::string promisedAndDone(const DuplicatePlan& plan, const std::string& state) {
    ShareRun looks{.mayLink = true, .onlyLooks = true, .state = state};
    ShareRun run{.mayLink = true, .state = state};
    const std::string promise = looks.run(files, plan);
    const std::string done = run.run(files, plan);
    if (promise != done) return "promised " + promise + " done " + done;
    return looks.promised == run.promised ? done : done + " of other sizes";
}

}  // namespace orrinvale::testing
