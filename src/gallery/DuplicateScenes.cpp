// The order matters: the percent shown by the page only climbs while the program runs, so the
// search is drawn first.
#include "gallery/DuplicateScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTreeView>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "engine/base/notices.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/duplicates/HistoryPanel.h"
#include "ui/duplicates/PartlyPanel.h"
#include "ui/duplicates/PlanPanel.h"
#include "ui/duplicates/ScopePanel.h"
#include "ui/duplicates/shareWords.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/picture.h"
#include "ui/page/ResultFrame.h"
#include "ui/preview/PreviewPicture.h"
#include "ui/shell/DuplicateMainWindowController.h"

namespace orrinvale {
namespace {

// What a removal is held at, and what it can not remove.
constexpr const char* heldCopy = "Aria (1).mp3";
constexpr const char* lockedCopy = "holiday-photos.zip";

// The buttons of a sheet.
constexpr int agree = 0;
constexpr int cancel = 1;

}  // namespace

DuplicateScenes::DuplicateScenes(const SampleFolder& sample, UserDefaults& defaults,
                                 const PictureFolder& pictures, QSet<QString> wanted)
    : PageScenes(sample, defaults, pictures, std::move(wanted), QStringLiteral("duplicates-")),
      m_defaults(defaults) {
    QnAuthorization::shareQnAuthorization().setParts(
        {.authorization = nullptr, .files = &m_files, .permissions = nullptr, .ownFiles = {}});
    m_files.refuse(SampleFolder::unreadableFile, EACCES);
}

bool DuplicateScenes::draw() {
    return drawFirstView() && drawScope() && drawFolders() && drawSearch() && drawResult() &&
           drawKeep() && drawKeyboard() && drawQuestion() && drawLargeWindow() && drawPane() &&
           drawPreview() && drawMoved() && drawHistory() && drawPlan() && drawSharing() &&
           drawRemoval() && drawFailures() && drawEmptyResult();
}

QTreeView* DuplicateScenes::outline() const {
    return m_window->findChild<QTreeView*>(QStringLiteral("outline"));
}

QModelIndex DuplicateScenes::groupNamed(const char* name) const {
    const auto* const model = outline()->model();
    const auto found = model->match(model->index(0, DuplicateResultModel::NameColumn),
                                    Qt::DisplayRole, QLatin1String(name), 1, Qt::MatchStartsWith);
    return found.isEmpty() ? QModelIndex() : found.first();
}

bool DuplicateScenes::click(const char* objectName) const {
    auto* const button = m_window->findChild<QAbstractButton*>(QLatin1String(objectName));
    if (button == nullptr || !button->isEnabled()) {
        std::fprintf(stderr, "orrinvale-gallery: no button %s to press\n", objectName);
        return false;
    }
    button->click();
    return true;
}

void DuplicateScenes::tickGroup(const char* name) {
    const QModelIndex group = groupNamed(name);
    if (!group.isValid()) {
        std::fprintf(stderr, "orrinvale-gallery: no group %s\n", name);
        return;
    }
    outline()->model()->setData(group.siblingAtColumn(DuplicateResultModel::Checkbox), {},
                                DuplicateResultModel::StateRole);
}

bool DuplicateScenes::drawFirstView() {
    auto* const area = m_window->findChild<DragView*>();
    if (!save("first")) return false;
    hoverWithFolder(*area, true);
    const auto* const target = m_window->findChild<AnimationHoverImageView*>();
    const bool isSaved =
        waitFor("the fading to end", [target] { return target->fadeProgress() >= 1.0; }) &&
        save("first-drop");
    hoverWithFolder(*area, false);
    return isSaved;
}

bool DuplicateScenes::drawScope() {
    auto* const page = m_controller->sameFileDeleteVC();
    page->openScope({m_sample.family(), m_sample.tidy()});
    const auto panel = [this] { return m_window->findChild<ScopePanel*>(); };
    if (!waitForSheet(true) ||
        !waitFor("both folders", [&] { return panel()->scope().roots.size() == 2; }))
        return false;
    const auto boxes = panel()->findChildren<TickBox*>(QStringLiteral("protectedBox"));
    boxes.back()->click();
    const bool isSaved = save("scope");
    panel()->cancelButton->click();
    return isSaved && waitForSheet(false);
}

// Whole folders, the menu that asks for them, and the sheet of those that are equal in parts.
bool DuplicateScenes::drawFolders() {
    m_defaults.setBool(true, wholeFoldersKey);
    startSearch(m_sample.attic());
    if (!waitForResult()) return false;
    tickGroup("Photos 2024");
    outline()->collapseAll();
    for (const char* const name : {"Photos 2024", "IMG_1003"})
        outline()->expand(groupNamed(name).siblingAtColumn(0));
    // The copy that stays is open too.
    const QModelIndex stays =
        outline()->model()->index(1, 0, groupNamed("Photos 2024").siblingAtColumn(0));
    outline()->expand(stays);
    if (!waitFor("what is in a folder", [&] { return outline()->model()->rowCount(stays) > 1; }))
        return false;
    outline()->setCurrentIndex(groupNamed("Photos 2024"));
    outline()->scrollToTop();
    const auto* const remove = m_window->findChild<QAbstractButton*>(QStringLiteral("stopBtn"));
    if (!waitFor("the button that removes", [&] { return remove->isEnabled(); }) ||
        !save("folders") || !click("otherWayBtn"))
        return false;
    auto* const ways = m_window->findChild<QMenu*>(QStringLiteral("moreMenu"));
    ways->actions().back()->trigger();
    ways->close();
    auto* const menu = m_window->findChild<QMenu*>(QStringLiteral("viewMenu"));
    if (!save("view", menu)) return false;
    menu->actions().back()->trigger();
    menu->close();
    const auto sheet = [this] { return m_window->findChild<PartlyPanel*>(); };
    if (!waitForSheet(true) || !save("partly")) return false;
    sheet()->closeButton->click();
    tickGroup("Photos 2024");
    m_defaults.setBool(false, wholeFoldersKey);
    return waitForSheet(false);
}

bool DuplicateScenes::drawKeep() {
    if (!click("keepBtn")) return false;
    auto* const menu = m_window->findChild<QMenu*>(QStringLiteral("keepMenu"));
    if (!waitFor("the menu", [menu] { return menu != nullptr && menu->isVisible(); })) return false;
    const bool isSaved = save("keep", menu);
    menu->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return isSaved;
}

bool DuplicateScenes::startSearch(const std::string& folder) {
    m_controller->sameFileDeleteVC()->viewDragAction(folder);
    return true;
}

bool DuplicateScenes::waitForResult() {
    const auto* const page = m_controller->sameFileDeleteVC();
    return waitFor("the result",
                   [page] { return page->bSearchFinished() && page->detailView()->isVisible(); });
}

bool DuplicateScenes::drawSearch() {
    m_files.hold(SampleFolder::largeVideo);
    startSearch(m_sample.family());
    if (!waitFor("the search to reach the video", [this] { return m_files.isHolding(); }))
        return false;
    // Everything but the video has been compared once the counts rest.
    const auto* const counts = m_window->findChild<QLabel*>(QStringLiteral("countsLabel"));
    QString before;
    int rests = 0;
    constexpr int enough = 25;
    const bool isAtRest = waitFor("the search to rest", [&] {
        rests = counts->text() == before && !before.isEmpty() ? rests + 1 : 0;
        before = counts->text();
        return rests >= enough;
    });
    const bool isSaved = isAtRest && save("progress");
    m_files.release();
    return isSaved && waitForResult();
}

bool DuplicateScenes::drawResult() {
    tickGroup("Tax return");
    tickGroup("Lake at sunrise");
    outline()->collapseAll();
    const QModelIndex open = groupNamed("Tax return");
    outline()->expand(open.siblingAtColumn(0));
    outline()->setCurrentIndex(
        outline()->model()->index(0, DuplicateResultModel::NameColumn, open.siblingAtColumn(0)));
    outline()->scrollToTop();
    // The picture that flies to the bin takes a second.
    if (!waitFor("the button that removes", [this] {
            return m_window->findChild<QAbstractButton*>(QStringLiteral("stopBtn"))->isEnabled();
        }))
        return false;
    if (!save("detail")) return false;
    notice::refViewBgColor.post(m_workings.notifications, {5});
    outline()->expandAll();
    if (!save("pictures")) return false;
    notice::refViewBgColor.post(m_workings.notifications, {0});
    return saveLines("unreadable", "quietLine");
}

bool DuplicateScenes::saveLines(const char* scene, const char* lineButton) {
    if (!click(lineButton)) return false;
    const auto find = [this] { return m_window->findChild<QWidget*>(QStringLiteral("lineList")); };
    if (!waitFor("the list of lines", [&] { return find() != nullptr && find()->isVisible(); }))
        return false;
    const bool isSaved = save(scene, find());
    find()->close();
    return isSaved && waitFor("the list of lines to go", [&] { return find() == nullptr; });
}

bool DuplicateScenes::waitForSheet(bool isThere) {
    return waitFor(isThere ? "the sheet" : "the sheet to go", [this, isThere] {
        const auto* const sheet = m_window->findChild<Sheet*>();
        return isThere ? sheet != nullptr && sheet->content()->y() == 0 : sheet == nullptr;
    });
}

bool DuplicateScenes::pressInSheet(int number) {
    const auto* const sheet = m_window->findChild<Sheet*>();
    const auto buttons =
        sheet != nullptr ? sheet->findChildren<QAbstractButton*>() : QList<QAbstractButton*>();
    if (number >= buttons.size()) {
        std::fprintf(stderr, "orrinvale-gallery: the sheet has no button %d\n", number);
        return false;
    }
    buttons.at(number)->click();
    return waitForSheet(false);
}

bool DuplicateScenes::drawQuestion() {
    return click("stopBtn") && waitForSheet(true) && save("question") && pressInSheet(cancel);
}

bool DuplicateScenes::drawKeyboard() {
    m_window->activateWindow();
    QApplication::processEvents();
    QWidget* const before = m_window->focusWidget();
    const QModelIndex open = groupNamed("Lake at sunrise");
    outline()->expand(open.siblingAtColumn(0));
    outline()->setCurrentIndex(
        outline()->model()->index(1, DuplicateResultModel::NameColumn, open.siblingAtColumn(0)));
    outline()->clearFocus();  // a focus that is there already would keep its reason
    outline()->setFocus(Qt::TabFocusReason);
    const bool isSaved = save("keyboard");
    if (before != nullptr) before->setFocus(Qt::PopupFocusReason);
    return isSaved;
}

bool DuplicateScenes::drawLargeWindow() {
    const QRect usual = m_window->frame();
    constexpr QSize large{1200, 900};
    m_window->setFrame({usual.topLeft(), large});
    outline()->expandAll();
    const bool isSaved = save("large");
    m_window->setFrame(usual);
    return isSaved;
}

bool DuplicateScenes::drawPane() {
    const QRect usual = m_window->frame();
    constexpr QSize wide{1200, 760};
    m_window->setFrame({usual.topLeft(), wide});
    const QModelIndex open = groupNamed("Lake in the evening");
    outline()->expand(open.siblingAtColumn(0));
    outline()->setCurrentIndex(
        outline()->model()->index(0, DuplicateResultModel::NameColumn, open.siblingAtColumn(0)));
    if (!click("previewBtn")) return false;
    const auto pictures = [this] { return m_window->findChildren<PreviewPicture*>(); };
    const auto areShown = [&] {
        const auto all = pictures();
        return std::ranges::all_of(all, [](const PreviewPicture* each) {
            return each->isVisible() && !each->place().isEmpty();
        });
    };
    const bool isSaved = waitFor("both pictures", areShown) && save("pane");
    m_window->setFrame(usual);
    const bool isNarrowSaved = isSaved && waitFor("both pictures", areShown) && save("pane-narrow");
    return click("previewBtn") && isNarrowSaved;
}

bool DuplicateScenes::drawPreview() {
    m_controller->quickLookWithPath(m_sample.painting());
    auto* const preview = m_window->findChild<QWidget*>(QStringLiteral("previewPanel"));
    const bool isShown = waitFor("the preview", [preview] {
        for (const QLabel* const label : preview->findChildren<QLabel*>())
            if (label->isVisible() && label->pixmap().width() > preview->width() / 2) return true;
        return false;
    });
    const bool isSaved = isShown && save("preview", preview);
    m_controller->quickLookWithPath(m_sample.painting());
    return isSaved;
}

// There and back, so that the scenes after it find everything as it was.
bool DuplicateScenes::drawMoved() {
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(folderOf(m_sample.settings()) + "/data"));
    const auto isShown = [this](const char* name) {
        const auto* const widget = m_window->findChild<QWidget*>(QLatin1String(name));
        return widget != nullptr && widget->isVisible();
    };
    if (!click("otherWayBtn")) return false;
    auto* const ways = m_window->findChild<QMenu*>(QStringLiteral("moreMenu"));
    ways->actions().at(1)->trigger();
    ways->close();
    const bool isSaved = waitForSheet(true) && save("trash-question") && pressInSheet(agree) &&
                         waitFor("the move", [&] { return isShown("undoBtn"); }) && save("moved");
    if (!isSaved || !click("undoBtn") ||
        !waitFor("the way back", [&] { return isShown("againBtn"); }) || !click("againBtn") ||
        !waitFor("the search", [this] { return !m_controller->sameFileDeleteVC()->isBusy(); }) ||
        !waitForResult())
        return false;
    if (before.isNull()) qunsetenv("XDG_DATA_HOME");
    else qputenv("XDG_DATA_HOME", before);
    for (const char* const name : {"Tax return", "Lake at sunrise"}) tickGroup(name);
    return waitFor("the ticks", [this] {
        return m_window->findChild<QAbstractButton*>(QStringLiteral("stopBtn"))->isEnabled();
    });
}

// The days of made-up removals are the same in each picture.
bool DuplicateScenes::drawHistory() {
    auto* const panel = new HistoryPanel;
    auto* const sheet = new Sheet(*m_window, panel);  // ends itself
    const auto row = [](int day, std::size_t entries, std::uint64_t bytes, std::size_t inTrash) {
        HistoryRow made;
        made.id = std::to_string(day);
        made.when = QDateTime(QDate(2026, 11, day), QTime(9 + day % 9, 2 * day));
        made.entries = entries;
        made.bytes = bytes;
        made.inTrash = inTrash;
        return made;
    };
    panel->setRows({row(21, 1090, 127'000'000, 1090), row(18, 12, 4'800'000'000, 9),
                    row(3, 348, 61'300'000, 0)});
    sheet->open(panel->list);
    const bool isSaved = waitForSheet(true) && save("history");
    sheet->close({});
    return isSaved && waitForSheet(false);
}

bool DuplicateScenes::drawPlan() {
    auto plan = std::make_shared<DuplicatePlan>();
    for (const char* const name : {"Tax return 2025.pdf", "Lake at sunrise.jpg", "Aria.mp3"})
        for (const char* const folder : {"Documents/", "Backup/", "Desktop/"}) {
            if (folder == std::string_view("Documents/")) plan->groups.emplace_back();
            PlanMember member;
            member.path = std::string("/home/lena/") + folder + name;
            member.goes = folder != std::string_view("Documents/");
            member.size = 100'000 * (3 + plan->groups.size() * plan->groups.size());
            member.identity.inode = 10 * plan->groups.size() + plan->groups.back().members.size();
            member.identity.type = FileType::Regular;
            plan->groups.back().members.push_back(member);
        }
    PlanFacts facts;
    facts.name = QStringLiteral("Duplicates 2026-11-22.json");
    facts.sums = sumsOf(*plan);
    auto* const panel = new PlanPanel(plan, facts);
    auto* const sheet = new Sheet(*m_window, panel);  // ends itself
    sheet->open(panel->list);
    const bool isSaved = waitForSheet(true) && save("plan");
    sheet->close({});
    return isSaved && waitForSheet(false);
}

// Made up, since most machines that draw can share nothing.
bool DuplicateScenes::drawSharing() {
    ShareOutlook outlook;
    outlook.extents = {1090, 127'000'000};
    outlook.links = {12, 4'800'000};
    outlook.noFiles = 2;
    outlook.kept.resize(3);
    Alert question = shareQuestion(outlook);
    question.linkAction = [] {};
    WindowDialogs().alert(m_window, question, [](int /*button*/) {});
    if (!waitForSheet(true) || !save("share-question") || !pressInSheet(cancel + 1))
        return false;  // behind the link
    constexpr std::array ticked{"Tax return", "Lake at sunrise"};
    for (const char* const name : ticked) tickGroup(name);  // what shares is ticked no more
    auto* const line = m_window->findChild<QLabel*>(QStringLiteral("removedLine"));
    auto* const kept = m_window->findChild<HoverButton*>(QStringLiteral("failureLine"));
    RemovalOutcome outcome;
    outcome.failed = 3;
    ResultFrame::showLine(
        *line, sharedText({.files = 1090, .promised = 127'000'000, .gained = 126'400'000}));
    ResultFrame::showLine(*kept, unsharedText(outcome));
    for (int turn = 0; turn < 3; ++turn) QApplication::processEvents();  // the bar makes room
    const bool isSaved = save("shared");
    ResultFrame::showLine(*line, {});
    ResultFrame::showLine(*kept, {});
    for (const char* const name : ticked) tickGroup(name);
    return isSaved;
}

bool DuplicateScenes::drawRemoval() {
    for (const char* const name : {"holiday-photos", "Aria", "Graduation", "Letter"})
        tickGroup(name);
    m_files.refuse(lockedCopy, EACCES);
    m_files.hold(heldCopy);
    if (!click("stopBtn") || !waitForSheet(true) || !pressInSheet(agree)) return false;
    if (!waitFor("the removal to reach the song", [this] { return m_files.isHolding(); }))
        return false;
    // The spinner has gone round to its third picture, with the path in hand beside it.
    const auto* const spinner = m_window->findChild<QLabel*>(QStringLiteral("imageView"));
    const auto* const path = m_window->findChild<ElidedLabel*>(QStringLiteral("nameTextStr"));
    const QImage third =
        picturePixmap(QStringLiteral("loading_3"), QSize(64, 64), spinner->devicePixelRatioF())
            .toImage();
    const bool isShown = waitFor("the spinner", [&] {
        return path->text().endsWith(QLatin1String(heldCopy)) &&
               spinner->pixmap().toImage() == third;
    });
    const bool isSaved = isShown && save("removal");
    m_files.release();
    return isSaved;
}

bool DuplicateScenes::drawFailures() {
    return waitForSheet(true) && save("failure") && pressInSheet(agree) && save("after-removal") &&
           saveLines("failures", "failureLine");
}

bool DuplicateScenes::drawEmptyResult() {
    startSearch(m_sample.tidy());
    return waitForResult() && save("nothing-found");
}

}  // namespace orrinvale
