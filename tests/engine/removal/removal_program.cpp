// removal_program LEAVING STAYING STATE [--blind]: removes the files of one folder, for each of
// which the file of the same name in the other one stays, and prints what became of them. Tests
// kill it, run two at once, and let its system calls fail. With --blind nothing is compared.
// `removal_program --recover STATE` is the next start.
#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

#include "engine/base/Log.h"
#include "engine/removal/PairList.h"
#include "platform/linux/LinuxFiles.h"

int main(int argc, char** argv) {
    using namespace orrinvale;
    const LinuxFileSystem files;
    if (std::getenv("ORRINVALE_LOG") == nullptr) Log::setSink([](std::string_view) {});
    if (argc == 3 && std::string_view(argv[1]) == "--recover") {
        const AsideRecovery recovery = bringBackAside(files, asideJournalFolder(argv[2]));
        fmt::print("{} back, {} stayed, {} later\n", recovery.broughtBack.size(),
                   recovery.stayed.size(), recovery.later);
        return 0;
    }
    if (argc < 4) return 2;
    testing::PairList list(files, argv[1], argv[2], argc == 4);
    const RemovalOutcome outcome = testing::removeAll(files, argv[3], list);
    fmt::print("{} removed, {} by others, {} failed\n", outcome.removed, outcome.byOthers,
               outcome.failed);
    for (std::size_t i = 0; i < outcome.stayed.size() && i < 10; ++i)
        fmt::print("{}: {}\n", outcome.stayed[i].reason, outcome.stayed[i].path);
    return outcome.failed == 0 ? 0 : 1;
}
