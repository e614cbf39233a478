// removal-bench: removals that removal.py times.
//
//   removal-bench search FOLDER STATE        finds the duplicates in a folder and removes all but
//   one of each group, as the page does removal-bench aside LEAVING STAYING STATE  removes the
//   files of one folder whose copies stand in another one, without comparing removal-bench unlink
//   LEAVING             unlinks the files of a folder one by one: the floor of the former
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "engine/base/Log.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/results/DuplicateSelection.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/removal/PairList.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalRun.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale {
namespace {

int remove(const FileSystem& files, const std::string& state, RemovalList& list) {
    PlainDoor door(files, ProtectedPlaces::ofThisMachine(files, {}));
    const std::atomic<bool> never{false};
    RemovalRun removal(files, state, list, door, never,
                       {.waiting = [](bool) {},
                        .begins = [](std::size_t, const std::string&, bool) {},
                        .settled = [](std::size_t, const RemovalResult&) {}});
    const RemovalOutcome outcome = removal.run();
    std::printf("%zu removed, %zu failed\n", outcome.removed, outcome.failed);
    return outcome.failed == 0 ? 0 : 1;
}

int searchAndRemove(const FileSystem& files, const std::string& folder, const std::string& state) {
    DuplicateFilesOpt search(files);
    search.beginSearchAtPath(folder, 0);
    std::shared_ptr<SimpleTreeNode> root;
    if (!search.getDuplicateFiles(&root)) return 1;
    DuplicateSelection selection;
    selection.setAll(*root, true);
    RemovalPlan plan(files, selection.allSelectNumArr().entries(), RemovalPlan::Comparing::Always);
    return remove(files, state, plan);
}

int removePairs(const FileSystem& files, const std::string& leaving, const std::string& staying,
                const std::string& state) {
    testing::PairList list(files, leaving, staying, false);
    return remove(files, state, list);
}

int unlinkAll(const FileSystem& files, const std::string& leaving) {
    const testing::PairList list(files, leaving, {}, false);
    const int folder = ::open(leaving.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (std::size_t i = 0; i < list.size(); ++i)
        if (::unlinkat(folder, std::string(lastPathComponent(list.path(i))).c_str(), 0) != 0)
            return 1;
    return 0;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    using namespace orrinvale;
    const LinuxFileSystem files;
    Log::setSink([](std::string_view) {});
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "search" && argc == 4) return searchAndRemove(files, argv[2], argv[3]);
    if (what == "aside" && argc == 5) return removePairs(files, argv[2], argv[3], argv[4]);
    if (what == "unlink" && argc == 3) return unlinkAll(files, argv[2]);
    return 2;
}
