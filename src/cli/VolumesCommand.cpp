// engine/volumes/VolumesInfo.h makes the list, VolumeEvents.h what is told of two of them.
#include "cli/VolumesCommand.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "cli/NotedVolumes.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/VolumesReport.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/volumes/SpaceLevel.h"
#include "engine/volumes/VolumesInfo.h"
#include "platform/descriptor.h"
#include "platform/mounts.h"

namespace orrinvale::cli {
namespace {

// Ends the wait of whoever polls the descriptor, from another thread.
class Bell final {
public:
    [[nodiscard]] int descriptor() const { return m_event.get(); }
    void ring() const {
        const std::uint64_t one = 1;
        (void)!::write(m_event.get(), &one, sizeof one);
    }

private:
    const Descriptor m_event{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

// Waits for a change of the table of mounts or for the time to look at figures; false when the bell
// has been rung, or when nobody reads what is told.
bool waitForNews(int mounts, const Bell& bell) {
    constexpr int betweenLooks = 2000;  // milliseconds
    std::array<pollfd, 3> waits{
        {{bell.descriptor(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}, {mounts, POLLPRI, 0}}};
    ::poll(waits.data(), waits.size(), betweenLooks);
    const bool hasReader = (waits[1].revents & (POLLERR | POLLHUP | POLLNVAL)) == 0;
    return hasReader && (waits[0].revents & POLLIN) == 0;
}

}  // namespace

std::vector<OptionSpec> VolumesCommand::options() const {
    return {{"--watch", "",
             "Go on, and tell what is mounted, unmounted and renamed, and what free space changes "
             "by 1 % or across the warning level; with --json one document a line"}};
}

Status VolumesCommand::run(const Arguments& arguments) {
    return arguments.has("watch") ? watch(arguments) : list(arguments);
}

Status VolumesCommand::watch(const Arguments& arguments) {
    if (arguments.has("print0")) return badUsage("events can not be printed with -0");
    PreferenceViewController::initialize();
    VolumeEvents events(
        warningLevel(UserDefaults::standardUserDefaults().floatForKey(ZvSpaceAlarmKey)));
    // Polled from before the first look on, so that nothing comes or goes between the two.
    const Descriptor mounts = openMountNews();
    VolumeLook look(m_platform);
    Output out(STDOUT_FILENO);
    const Bell bell;
    const SearchWatch watch([&bell] { bell.ring(); }, {}, Telling::Nothing);
    const auto print = arguments.has("json") ? &printVolumeEventJson : &printVolumeEvent;
    do {
        for (const VolumeEvent& each : events.take(look.take())) print(out, each);
    } while (out.flush() && waitForNews(mounts.get(), bell));
    return finish(out, {}, watch.ending());
}

Status VolumesCommand::list(const Arguments& arguments) {
    NotedVolumes platform(m_platform);
    Ending ending{};
    std::optional<VolumesInfo> info;
    {
        // A walk is over within about a second, so a signal has nothing to stop; it is only told.
        const SearchWatch watch([] {}, {}, Telling::Nothing);
        info.emplace(platform);
        ending = watch.ending();
    }
    const VolumesInfo::VolumeArray& volumes = info->volsArray();
    const std::vector<Error>& skipped = platform.failures();
    if (!arguments.has("quiet")) complainOfEach(skipped);

    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printVolumesJson(out, volumes, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printVolumePaths(out, volumes);
    else printVolumeListing(out, volumes, wantsColour(STDOUT_FILENO));
    return finish(out, skipped, ending);
}

}  // namespace orrinvale::cli
