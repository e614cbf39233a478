#include "gallery/LoginItemScenes.h"

#include <QApplication>
#include <QStackedWidget>
#include <array>

#include "engine/loginitems/LoginItemRegistry.h"
#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/loginitems/LoginItemController.h"
#include "ui/preferences/AppPrefsWindowController.h"

namespace orrinvale {
namespace {

LoginItemRecord made(const char* name, const char* fault, bool isPersons, bool starts) {
    LoginItemRecord item;
    item.name = name;
    item.fileName = std::string(name) + ".desktop";
    item.file = "/home/anna/.config/autostart/" + item.fileName;
    item.path = std::string("/usr/bin/") + name;
    item.command = item.path;
    item.fault = fault;
    item.isPersons = isPersons;
    item.isSystems = !isPersons;
    item.starts = starts;
    return item;
}

// As a person of some years has them.
class MadeUpItems final : public LoginItems {
public:
    MadeUpItems(bool isEmpty, std::int32_t status) : answer(status) {
        if (isEmpty) return;
        items = {made("Orrinvale", "", true, true),
                 made("KeePassXC", "", true, true),
                 made("Nextcloud", "", true, false),
                 made("Old Notes", "its program is gone", true, false),
                 made("Print Queue", "", false, true),
                 made("Tracker Miner", "", false, true),
                 made("Evolution Alarm", "", false, false)};
        items[0].isOurs = true;
        items[0].path = own.ownProgram;
        items[0].startsHidden = true;
        items[5].onlyIn = {"GNOME"};
    }
    std::vector<LoginItemRecord> list(std::int32_t& status) const override {
        status = answer;
        return items;
    }
    std::int32_t add(const std::string& /*path*/, bool /*hidden*/) override { return 0; }
    Result<void> setStarts(const std::string& /*name*/, bool /*starts*/) override { return {}; }
    Result<void> setHidden(const std::string& /*name*/, bool /*hidden*/) override { return {}; }
    const LoginItemFolders& folders() const override { return own; }

    LoginItemFolders own{.persons = "/nonexistent/autostart",
                         .systems = {},
                         .links = {},
                         .desktops = {},
                         .languages = {},
                         .programs = {},
                         .ownProgram = "/usr/bin/orrinvale"};
    std::vector<LoginItemRecord> items;
    const std::int32_t answer;
};

struct Scene {
    const char* name;
    LoginItemViews::Content content;  // that it shows
};

LoginItemSources madeUpSources() {
    return {
        .packages =
            [](const std::vector<std::string>& paths) {
                std::map<std::string, std::string> owners;
                for (const std::string& each : paths)
                    if (each.ends_with("Queue.desktop")) owners[each] = "system-config-printer";
                return owners;
            },
        .services =
            [] {
                return std::vector<BackgroundService>{
                    {"pipewire.service", "PipeWire Multimedia Service", {}, false},
                    {"syncthing.service", "Syncthing - Open Source File Synchronization", {}, true},
                    {"xdg-user-dirs-update.service", {}, {}, false}};
            },
        .start = {}};
}

bool drawScene(const PageServices& services, const PictureFolder& pictures, const Scene& scene) {
    const bool hasRows =
        scene.content == LoginItemViews::Items || scene.content == LoginItemViews::Background;
    // A thread may still look at them.
    auto& items =
        *new MadeUpItems(!hasRows, scene.content == LoginItemViews::Failed ? errLoginItemIO : 0);
    LoginItemRegistry::setParts({.items = &items, .remove = {}, .waitOneSecond = {}});
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    controller.registerPage(loginItemsPage(services, madeUpSources()));
    controller.showWindow();
    controller.window()->activateWindow();
    const auto& page = static_cast<LoginItemController&>(*controller.pages().front());
    const LoginItemViews& views = page.views();
    if (scene.content == LoginItemViews::Background) Q_EMIT views.rail->chosen(scene.content);
    const auto isDrawn = [&] {
        return views.content->currentIndex() == scene.content &&
               (!hasRows || page.allLoginItemsInfo().size() > 4) &&
               (!hasRows || !page.allLoginItemsInfo()[4]->package.empty());
    };
    if (!waitFor("the login items", isDrawn)) return false;
    if (hasRows)
        views.tableView->setCurrentIndex(views.tableView->model()->index(0, LoginItemModel::Name));
    QApplication::processEvents();
    return pictures.save(QLatin1String(scene.name), controller.window()->grab());
}

}  // namespace

bool drawLoginItems(UserDefaults& defaults, const PictureFolder& pictures,
                    const QSet<QString>& wanted) {
    const LinuxFileSystem files;
    const PageServices services = (new PageWorkings)->parts(files, defaults);
    bool isDrawn = true;
    constexpr std::array scenes{Scene{"login-items", LoginItemViews::Items},
                                Scene{"login-items-background", LoginItemViews::Background},
                                Scene{"login-items-none", LoginItemViews::Words},
                                Scene{"login-items-failed", LoginItemViews::Failed}};
    for (const Scene& each : scenes)
        if (wanted.isEmpty() || wanted.contains(QLatin1String(each.name)))
            isDrawn = isDrawn && drawScene(services, pictures, each);
    LoginItemRegistry::setParts({});
    return isDrawn;
}

}  // namespace orrinvale
