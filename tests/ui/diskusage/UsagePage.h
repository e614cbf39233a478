// UsagePage: the disk usage page in a window, over real folders, driven by clicks and keys.
#pragma once

#include <QTest>
#include <QVBoxLayout>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/columns/ColumnView.h"
#include "ui/support/PageWindow.h"

namespace orrinvale::testing {

inline constexpr std::uint64_t mega = 1'000'000;

/// The page in a window of its own, with a limit of 1 MB.
class UsagePage : public NamedControls {
public:
    explicit UsagePage(bool keepsScans = false) {
        UserDefaults::setStandardUserDefaults(&defaults);
        defaults.setInteger(1, ZvDiskUsageLimit);
        defaults.setInteger(2, ZvDiskUsageUnit);
        files.onReadFolder = [this] { reading.pass(); };
        QnAuthorization::shareQnAuthorization().setParts(
            {&authorization, &files, &permissions, {}});
        page = std::make_unique<DiskUsageAppController>(
            PageServices{.files = &files,
                         .notifications = &notifications,
                         .defaults = &defaults,
                         .dialogs = &dialogs,
                         .mainQueue = &mainQueue,
                         .stateFolder = keepsScans ? stateFolder() : std::string(),
                         .icons = {},
                         .reveal = [this](const std::string& path) { told.push_back(path); },
                         .openAddress = {}},
            DiskUsageParts{.watch = &watch,
                           .home = tree.at("home"),
                           .userName = QStringLiteral("anna"),
                           .open = {}});
        (new QVBoxLayout(&window))->addWidget(page->view());
        page->setMainWindow(&window);
        window.resize(1000, 600);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~UsagePage() override {
        reading.open();
        page.reset();
        QnAuthorization::shareQnAuthorization().setParts({});
        UserDefaults::setStandardUserDefaults(nullptr);
    }
    UsagePage(const UsagePage&) = delete;
    UsagePage& operator=(const UsagePage&) = delete;

    /// As the program in the terminal finds it where the desktop's folder for such is "state".
    [[nodiscard]] std::string stateFolder() const {
        return tree.at("state/com.kelpford.Orrinvale");
    }
    ColumnBrowser& browser() { return control<ColumnBrowser>("browser"); }
    bool ended() {
        return waitFor([this] { return !page->isBusy(); });
    }
    bool scan(const std::string& name) {
        page->takeFolder(tree.at(name));
        return ended();
    }
    /// The rows of a column: box, name and size.
    std::string column(int number) {
        std::string text;
        if (number > browser().lastColumn()) return text;
        const ColumnModel& rows = browser().model(number);
        for (int row = 0; row < rows.rowCount({}); ++row) {
            const FSNode* const node = static_cast<const FSNodeColumn&>(rows).node(row);
            if (!text.empty()) text += ", ";
            if (node != nullptr) text += ".x-"[node->isButtonState()];
            text += rows.data(rows.index(row),
                              node != nullptr ? Qt::DisplayRole : Qt::AccessibleTextRole)
                        .toString()
                        .toStdString();
            if (node != nullptr) text += ' ' + sizeWords(*node, false).toStdString();
        }
        return text;
    }
    void clickRow(int number, int row, bool onBox) {
        ColumnView& view = *browser().view(number);
        const QRect place = view.visualRect(view.model()->index(row, 0));
        QTest::mouseClick(
            view.viewport(), Qt::LeftButton, {},
            onBox ? FileSystemBrowserCell::checkBoxForFrame(place, Qt::LeftToRight).center()
                  : place.center());
    }
    QWidget* row(int number) { return page->leftCellArr().at(std::size_t(number)); }
    /// One volume or none, and returns when the page has been told.
    void showVolume(const std::string& name, const std::string& path) {
        volumes.change([&](auto& standing) {
            standing.clear();
            if (!name.empty()) standing.push_back(FakeVolumes::volume(1, name, path, false));
        });
        bool isSeen = false;
        const auto watching =
            watch.observe(SystemWatch::Part::Volumes, [&](const SystemSight& seen) {
                isSeen = name.empty() ? seen.volumes.empty()
                                      : seen.volumes.size() == 1 &&
                                            seen.volumes.front().record->volumeName == name;
            });
        watch.lookNow();
        EXPECT_TRUE(waitFor([&] { return isSeen; }));
    }
    /// Presses Remove, waits for the question, and answers it.
    bool remove(int button) {
        const std::size_t asked = dialogs.alerts().size();
        dialogs.willAnswer(button);
        click("removeBtn");
        if (!waitFor([&] { return dialogs.alerts().size() > asked; })) return false;
        QTest::qWait(1);  // the answer comes in a turn of its own
        return ended();
    }

    TestTree tree;
    Gate reading;
    WatchedFiles files;
    LinuxPermissions permissions;
    FakeAuthorization authorization;
    UserDefaults defaults{tree.at("settings.ini")};
    NotificationCenter notifications;
    RecordedDialogs dialogs;
    QtMainQueue mainQueue;
    SteadyVolumes volumes;
    CountedMemory memory;
    SystemWatch watch{volumes, memory, mainQueue, std::chrono::hours(1)};
    Strings told;
    QWidget window;
    std::unique_ptr<DiskUsageAppController> page;

protected:
    std::vector<QWidget*> places() override { return {page->view()}; }
};

// A folder with 5 MB of what counts and 3 small files beside.
inline void fill(TestTree& tree, const std::string& name) {
    EXPECT_TRUE(tree.sparse(name + "/films/one.mkv", 3 * mega));
    EXPECT_TRUE(tree.sparse(name + "/films/two.mkv", 2 * mega));
    EXPECT_TRUE(tree.write(name + "/films/note.txt", std::string(500, 'n')));
    EXPECT_TRUE(tree.sparse(name + "/big.iso", 4 * mega));
    EXPECT_TRUE(tree.write(name + "/small.txt", std::string(300, 's')));
}

}  // namespace orrinvale::testing
