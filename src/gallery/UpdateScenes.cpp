// Nothing is asked of any server: what would come of it is handed to the window.
#include "gallery/UpdateScenes.h"

#include <QApplication>
#include <thread>

#include "gallery/drawing.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/updates/QnCheckUpdateWindowController.h"

namespace orrinvale {
namespace {

using UpdateState = QnCheckUpdateWindowController::State;

constexpr const char* newerVersion =
    R"(<plist version="1.0"><dict><key>VersionCheck</key><string>10200</string>
<key>Version</key><string>1.2</string>
<key>1</key><string>Duplicates of pictures are found that differ in their notes alone.</string>
<key>2</key><string>The page Disk Usage opens large folders twice as fast.</string>
<key>3</key><string>Fast Clean tells what stayed, and why.</string>
<key>4</key><string>Disks that fall asleep no longer hold up the list of volumes.</string>
<key>5</key><string>Spanish and French.</string>
</dict></plist>)";

/// As a network that answers, or is silent for as long as somebody waits.
class StagedTransport final : public UpdateTransport {
public:
    [[nodiscard]] Result<std::string> fetch(const std::string& address,
                                            const std::function<bool()>& isStopped) const override {
        while (!isStopped()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return tl::unexpected(systemError("fetch", address, ECANCELED));
    }
};

// Of a thread that is let go; never freed.
UpdateParts partsWith(bool hasNetwork, bool isOwned) {
    static const StagedTransport transport;
    return {.transport = &transport,
            .address = {},
            .keys = {"00"},
            .isOwnedByPackage = [isOwned] { return isOwned; },
            .isCanBeUseNetWork = [hasNetwork](const auto& /*isStopped*/) { return hasNetwork; },
            .localNumber = [] { return 10'000; },
            .lastTime = {},
            .writeTime = {}};
}

}  // namespace

bool drawUpdates(const PictureFolder& pictures, const QSet<QString>& wanted) {
    const struct {
        const char* name;
        UpdateState end;
        bool hasNetwork, isOwned, isNewer;
    } scenes[] = {{"progress", UpdateState::Checking, true, false, false},
                  {"failure", UpdateState::NoNetwork, false, false, false},
                  {"first", UpdateState::NoUpdate, true, false, false},
                  {"package", UpdateState::NoUpdate, true, true, false},
                  {"detail", UpdateState::HaveUpdate, true, false, true}};
    for (const auto& scene : scenes) {
        const QString name = QLatin1String(scene.name);
        if (!wanted.isEmpty() && !wanted.contains(name)) continue;
        QnCheckUpdateWindowController controller(
            {.updates = partsWith(scene.hasNetwork, scene.isOwned),
             .openAddress = {},
             .terminate = {}});
        controller.showWindow();
        if (scene.isNewer) {
            auto list = PropertyList::parse(newerVersion);
            controller.whatIsNewVersionDiff(list ? &*list : nullptr);
        } else if (scene.end == UpdateState::NoUpdate && !scene.isOwned) {
            controller.whatIsNewVersionDiff(nullptr);
        }
        QWidget& window = *controller.window();
        const bool isThere = waitFor("the update window", [&] {
            return controller.state() == scene.end && window.isActiveWindow();
        });
        QApplication::processEvents();
        if (!isThere || !pictures.save(QStringLiteral("update-") + name, window.grab()))
            return false;
    }
    return true;
}

}  // namespace orrinvale
