// plan-bench: rules, plans, and the way to the trash and back, for plans.py.
//
//   plan-bench rules          ticks copies by a rule
//   plan-bench file FOLDER    writes a plan into the folder and reads it back
//   plan-bench trash FOLDER   moves files in the folder to a trash there and back, beside renaming
//
// Each line that it prints is NAME, then figures in milliseconds, with tabs between.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "engine/base/Log.h"
#include "engine/duplicates/keep/KeepTicks.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/duplicates/plan/TrashUndo.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "engine/removal/RemovalRun.h"
#include "engine/removal/TrashDoor.h"
#include "platform/files.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale {
namespace {

constexpr int rounds = 9;
constexpr int copiesOfAll = 200'000;
constexpr int entriesMoved = 10'000;

/// Milliseconds of the wall and of this process.
struct Span {
    double wall = 0;
    double processor = 0;
};

template <class Work> Span spanOf(Work work) {
    const auto processor = [] { return double(std::clock()) * 1000 / CLOCKS_PER_SEC; };
    const auto begun = std::chrono::steady_clock::now();
    const double before = processor();
    work();
    return {
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count(),
        processor() - before};
}

double middleOf(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// As a search of photographs would find them: groups of three or four, or all copies in one.
std::shared_ptr<SimpleTreeNode> treeOf(int groups) {
    auto tree = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName({}));
    for (int g = 0; g < groups; ++g) {
        auto node = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName({}));
        const int copies = groups == 1 ? copiesOfAll : copiesOfAll / groups + (g % 3 == 0 ? 1 : 0);
        for (int m = 0; m < copies; ++m) {
            auto leaf = SimpleNodeData::leafDataWithName(fmt::format(
                "/home/person/Pictures/2024/album {:03}/IMG_{:06}_{}.jpg", (g + m) % 500, g, m));
            leaf->setFileSize(3'000'000);
            leaf->setModificationDate(Date{1'732'000'000'000'000'000 + (g * 7 + m * 13) % 100'003});
            leaf->setIdentity(
                EntryIdentity{.device = 66306,
                              .inode = std::uint64_t(g) * 1'000'000 + std::uint64_t(m),
                              .type = FileType::Regular,
                              .size = 3'000'000});
            node->insertChild(SimpleTreeNode::treeNodeWithData(std::move(leaf)),
                              node->numberOfChildren());
        }
        tree->insertChild(node, tree->numberOfChildren());
    }
    return tree;
}

void rules() {
    const struct {
        const char* name;
        KeepRule rule;
    } kinds[] = {
        {"newest", {KeepRule::By::Newest}},
        {"shortest name", {KeepRule::By::ShortestName}},
        {"in a folder", {KeepRule::By::BestPlace, {"/home/person/Pictures/2024/album 007"}}}};
    for (const int groups : {60'000, 1}) {
        const auto tree = treeOf(groups);
        for (const auto& [name, rule] : kinds) {
            std::vector<double> walls, processors, longest;
            for (int round = 0; round < rounds; ++round) {
                DuplicateSelection selection;
                KeepTicks keep(selection);
                const Span whole = spanOf([&] {
                    keep.keep(*tree, {rule});
                    keep.finish();
                });
                walls.push_back(whole.wall);
                processors.push_back(whole.processor);
                selection.clearTree(*tree);
                keep.keep(*tree, {rule});
                double most = 0;
                constexpr std::chrono::milliseconds slice{10};  // as the page does it
                for (bool isDone = false; !isDone;) {
                    const auto until = std::chrono::steady_clock::now() + slice;
                    most = std::max(most, spanOf([&] { isDone = keep.step(until); }).processor);
                }
                longest.push_back(most);
                selection.clearTree(*tree);
            }
            std::puts(fmt::format("{} in {}\t{:.1f}\t{:.1f}\t{:.1f}", name, groups, middleOf(walls),
                                  middleOf(processors), middleOf(longest))
                          .c_str());
        }
    }
}

DuplicatePlan planOf(int entries) {
    DuplicatePlan plan;
    plan.owner = ::geteuid();
    plan.made = "2026-11-22T15:00:00+00:00";
    for (int i = 0; i < entries; ++i) {
        if (i % 4 == 0) plan.groups.emplace_back();
        PlanMember member;
        member.path = fmt::format(
            "/home/person/Pictures/2024/summer holidays/album {:03}/IMG_{:06}.jpg", i % 500, i);
        member.goes = i % 4 != 0;
        member.size = 3'000'000;
        member.identity = {.device = 66306,
                           .inode = 5'000'000U + std::uint64_t(i),
                           .type = FileType::Regular,
                           .size = member.size,
                           .modified = 1'732'000'000'123'456'789 + i,
                           .changed = 1'732'000'000'987'654'321 + i};
        member.contents = 0x0123'4567'89AB'CDEF * std::uint64_t(i / 4 + 1);
        plan.groups.back().members.push_back(std::move(member));
    }
    return plan;
}

int file(const std::string& folder) {
    const DuplicatePlan plan = planOf(copiesOfAll);
    const std::string path = folder + "/plan.json";
    std::vector<double> written, read;
    bool isWell = true;
    for (int round = 0; round < rounds; ++round) {
        written.push_back(spanOf([&] { isWell = isWell && !savePlan(path, plan); }).wall);
        read.push_back(spanOf([&] { isWell = isWell && loadPlan(path); }).wall);
    }
    std::filesystem::remove(path);
    std::puts(
        fmt::format("plan of {}\t{:.0f}\t{:.0f}", copiesOfAll, middleOf(written), middleOf(read))
            .c_str());
    return isWell ? 0 : 1;
}

void renameAll(const std::string& from, const std::string& to) {
    for (int i = 0; i < entriesMoved; ++i) {
        const std::string name = fmt::format("/IMG_{:06}.jpg", i);
        (void)::rename((from + name).c_str(), (to + name).c_str());
    }
}

// Pairs of equal files in two folders, of which those in the first go.
DuplicatePlan pairsIn(const std::string& base, const FileSystem& files) {
    DuplicatePlan plan;
    for (int i = 0; i < entriesMoved; ++i) {
        PlanGroup& group = plan.groups.emplace_back();
        for (const char* const folder : {"/a", "/b"}) {
            PlanMember member;
            member.path = fmt::format("{}{}/IMG_{:06}.jpg", base, folder, i);
            const std::string text = fmt::format("{}", i);
            const int made = ::open(member.path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
            (void)!::write(made, text.data(), text.size());
            ::close(made);
            member.goes = folder[1] == 'a';
            member.identity = EntryIdentity::of(
                *files.attributes(FileSystem::noParent, member.path.c_str(), Links::Keep));
            member.size = member.identity.size;
            group.members.push_back(std::move(member));
        }
    }
    return plan;
}

int trash(const std::string& folder) {
    const LinuxFileSystem files;
    const std::string base = folder + "/moved";
    for (const char* const each : {"", "/a", "/b", "/aside"}) ::mkdir((base + each).c_str(), 0700);
    DuplicatePlan plan = pairsIn(base, files);
    const FolderVariables variables{.home = base + "/home", .user = ::geteuid()};
    const std::atomic<bool> never{false};
    std::vector<double> bare, there, back, ratios, ofProcessor;
    bool isWell = true;
    for (int round = 0; round < rounds; ++round) {
        const Span renamed = spanOf([&] {
            renameAll(base + "/a", base + "/aside");
            renameAll(base + "/aside", base + "/a");
        });
        for (PlanGroup& group : plan.groups)
            for (PlanMember& member : group.members)
                member.identity.changed =
                    files.attributes(FileSystem::noParent, member.path.c_str(), Links::Keep)
                        ->changed;
        const auto folders = foldersOf(files, plan);
        const Span moved = spanOf([&] {
            PlanRemoval list(files, plan);
            TrashDoor door(files, {}, variables);
            RemovalRun run(files, {}, list, door, never,
                           {.waiting = [](bool) {},
                            .begins = [](auto, const auto&, bool) {},
                            .settled = [](auto, const auto&) {}});
            isWell = isWell && run.run().removed == std::size_t(entriesMoved);
            run.settleJournal();
        });
        const Span undoing = spanOf([&] {
            const auto undone = undoPlan(files, variables, plan, folders, never);
            isWell = isWell && undone.restored.size() == std::size_t(entriesMoved);
        });
        bare.push_back(renamed.wall);
        there.push_back(moved.wall);
        back.push_back(undoing.wall);
        ratios.push_back((moved.wall + undoing.wall) / renamed.wall);
        ofProcessor.push_back((moved.processor + undoing.processor) / renamed.processor);
    }
    std::filesystem::remove_all(base);
    std::puts(fmt::format("trash and back\t{:.0f}\t{:.0f}\t{:.0f}\t{:.2f}\t{:.2f}\t{:.2f}\t{:.2f}",
                          middleOf(bare), middleOf(there), middleOf(back), middleOf(ratios),
                          *std::ranges::min_element(ratios), *std::ranges::max_element(ratios),
                          middleOf(ofProcessor))
                  .c_str());
    return isWell ? 0 : 1;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    using namespace orrinvale;
    Log::setEnabled(false);
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "rules") return rules(), 0;
    if (what == "file" && argc == 3) return file(argv[2]);
    if (what == "trash" && argc == 3) return trash(argv[2]);
    return 2;
}
