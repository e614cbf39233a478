// The scan, the result and the removal, in the order in which a person meets them.
#include "gallery/LargeFileScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTreeView>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "engine/largefiles/Controller.h"
#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/preview/PreviewPicture.h"
#include "ui/shell/DuplicateMainWindowController.h"

namespace orrinvale {
namespace {

// What the scan and the removal are held at, and what can not be removed.
constexpr const char* largeFolder = "Norway";
constexpr const char* largeVideo = "Graduation of Anna.mp4";
constexpr const char* lockedFile = "holiday-photos.zip";

}  // namespace

LargeFileScenes::LargeFileScenes(const SampleFolder& sample, UserDefaults& defaults,
                                 const PictureFolder& pictures, QSet<QString> wanted)
    : PageScenes(sample, defaults, pictures, std::move(wanted), QStringLiteral("large-files-")) {
    Controller::getController().setParts({.files = &m_files,
                                          .mainQueue = &m_workings.mainQueue,
                                          .ownFiles = {},
                                          .reveal = {},
                                          .openFolder = {}});
    m_controller->selectFileListButtonAction();
}

LargeFileScenes::~LargeFileScenes() {
    m_files.release();
    Controller::getController().setParts({});
}

bool LargeFileScenes::draw() {
    return save("first") && drawScan() && drawResult() && drawPane() && drawRemoval();
}

QTreeView& LargeFileScenes::outline() const {
    return *m_window->findChild<QTreeView*>(QStringLiteral("outlineView"));
}

QModelIndex LargeFileScenes::rowNamed(const char* name) const {
    QModelIndex row = outline().model()->index(0, 0);
    while (row.isValid() &&
           row.siblingAtColumn(FileNodeModel::Name).data().toString() != QLatin1String(name))
        row = outline().indexBelow(row);
    if (!row.isValid()) std::fprintf(stderr, "orrinvale-gallery: no row %s\n", name);
    return row;
}

void LargeFileScenes::tick(const char* name) const {
    outline().model()->setData(rowNamed(name).siblingAtColumn(FileNodeModel::CheckBox), {},
                               FileNodeModel::StateRole);
}

bool LargeFileScenes::waitForEnd() const {
    const auto* const page = m_controller->listFileVC();
    return waitFor("the scan to end", [page] { return !page->isScan(); });
}

bool LargeFileScenes::drawScan() {
    m_files.hold(largeFolder);
    m_controller->listFileVC()->viewDragAction(m_sample.family());
    // All but one of the nine folders are through.
    const auto* const percent = m_window->findChild<QLabel*>(QStringLiteral("progressLabel"));
    const bool isSaved =
        waitFor("the scan to rest",
                [&] { return percent->text() == shownPercent(QStringLiteral("88.9")); }) &&
        save("scan");
    m_files.release();
    return isSaved && waitForEnd();
}

bool LargeFileScenes::drawResult() {
    outline().expand(rowNamed("Phone"));
    QApplication::processEvents();
    outline().expand(rowNamed("DCIM"));
    QApplication::processEvents();
    for (const char* const name : {"Downloads", "Videos", "IMG_2107.jpg"}) tick(name);
    outline().setCurrentIndex(rowNamed("IMG_2107.jpg").siblingAtColumn(FileNodeModel::Name));
    return save("detail") && drawList();
}

bool LargeFileScenes::drawPane() {
    auto* const button = m_window->findChild<QAbstractButton*>(QStringLiteral("previewBtn"));
    button->click();
    const QPersistentModelIndex before = outline().currentIndex();
    outline().setCurrentIndex(
        rowNamed("Lake in the evening.png").siblingAtColumn(FileNodeModel::Name));
    const auto* const picture = m_window->findChild<PreviewPicture*>();
    const bool isSaved =
        waitFor("the picture",
                [picture] { return picture->isVisible() && !picture->place().isEmpty(); }) &&
        save("pane");
    button->click();
    outline().setCurrentIndex(before);
    return isSaved;
}

bool LargeFileScenes::drawRemoval() {
    m_files.refuse(lockedFile, EACCES);
    m_files.hold(largeVideo);
    m_window->findChild<QAbstractButton*>(QStringLiteral("deleteButton"))->click();
    const auto sheet = [this] { return m_window->findChild<Sheet*>(); };
    if (!waitFor("the question",
                 [&] { return sheet() != nullptr && sheet()->content()->y() == 0; }))
        return false;
    if (!save("question")) return false;
    sheet()->findChild<QAbstractButton*>()->click();  // the first one agrees
    const auto window = [this] {
        return m_window->findChild<QWidget*>(QStringLiteral("progressWindow"));
    };
    if (!waitFor("the removal to reach the video",
                 [&] { return m_files.isHolding() && window() != nullptr; }))
        return false;
    const bool isSaved = save("removal", window());
    m_files.release();
    return isSaved && waitFor("the removal to end", [&] { return window() == nullptr; }) &&
           save("after-removal");
}

bool LargeFileScenes::drawList() {
    auto* const views = m_window->findChild<SegmentedControl*>(QStringLiteral("viewSwitch"));
    const auto* const list = m_window->findChild<QTreeView*>(QStringLiteral("filesList"));
    views->segment(1)->click();
    const bool isSaved =
        waitFor("the list of files", [list] { return list->model()->rowCount() > 0; }) &&
        waitFor("the ticked files to be counted",
                [this] {
                    return m_window->findChild<TickBox*>(QStringLiteral("selectListedButton"))
                               ->state() == TickState::Some;
                }) &&
        save("list");
    views->segment(0)->click();
    return isSaved;
}

}  // namespace orrinvale
