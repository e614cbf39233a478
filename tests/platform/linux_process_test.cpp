// How a program's end is told, whatever signals this one was told to ignore.
#include "platform/process.h"
#include "support/test.h"

namespace orrinvale {
namespace {

TEST(Process, TellsHowItEndedWhateverIsIgnored) {
    const struct {
        const char* script;
        int ignored;
        int status;
    } cases[] = {{"exit 3", SIGUSR1, 3},
                 {"kill -KILL $$", SIGUSR1, SIGKILL},
                 {"kill -HUP $$; exit 3", SIGUSR1, SIGHUP},
                 {"kill -HUP $$; exit 3", SIGHUP, 3},
                 {"kill -PIPE $$; exit 3", SIGPIPE, SIGPIPE},  // the toolkit ignores it
                 {"kill -KILL $$", SIGCHLD, Process::endUnknown}};
    for (const auto& each : cases) {
        const std::string told = runInChild({}, [&each] {
            ::signal(each.ignored, SIG_IGN);
            const auto process = Process::start("/bin/sh", {"-c", each.script}, {});
            while (process && !(*process)->endStatus()) std::this_thread::sleep_for(1ms);
            return process ? std::to_string(*(*process)->endStatus()) : "not started";
        });
        EXPECT_EQ(told, std::to_string(each.status)) << each.script << ' ' << each.ignored;
    }
}

}  // namespace
}  // namespace orrinvale
