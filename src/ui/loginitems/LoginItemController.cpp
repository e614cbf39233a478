// The list is read on threads of its own, since a home may be slow to answer. LoginItemChanges.cpp
// has what a person does with it.
#include "ui/loginitems/LoginItemController.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QShortcut>
#include <QStackedWidget>
#include <algorithm>
#include <utility>

#include "engine/loginitems/LoginItemRegistry.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/loginitems/AppInformation.h"

namespace orrinvale {
namespace {

constexpr int itemsSettleTime = 150;  // milliseconds; one change makes several notices
constexpr int readPatience = 300;

// Of a folder that is not there yet the one in which it will be. Reads disks.
std::vector<std::string> watchedFolders() {
    const LoginItemFolders& folders = LoginItemRegistry::parts().list().folders();
    std::vector<std::string> wanted = folders.systems;
    wanted.push_back(folders.persons);
    const auto isThere = [](const std::string& path) {
        return QFileInfo::exists(QFile::decodeName(path.c_str()));
    };
    for (std::string& each : wanted)
        if (!isThere(each)) each = folderOf(each);
    std::erase_if(wanted, [&](const std::string& each) { return !isThere(each); });
    return wanted;
}

}  // namespace

struct LoginItemController::Read {
    std::shared_ptr<LoginRows> rows;
    bool isList = false;
    std::vector<BackgroundService> services;
};

LoginItemController::LoginItemController(const PageServices& services, LoginItemSources sources)
    : m_services(services),
      m_sources(std::move(sources)),
      m_views(std::make_unique<LoginItemViews>()),
      m_model(new LoginItemModel(
          {.icons = services.icons,
           .boxClicked = [this](const LoginRow& row) { toggle(row); },
           .dropped = [this](const QMimeData& data, int row) { return acceptDrop(data, row); }},
          m_views->view)) {
    m_views->tableView->setModel(m_model);
    m_changed.setSingleShot(true);
    m_changed.setInterval(itemsSettleTime);
    connectControls();
    connectKeys();
    m_views->view->setAcceptDrops(true);
    m_views->view->installEventFilter(this);
    showContent();
    showChosen();
}

LoginItemController::~LoginItemController() {
    if (m_views->view != nullptr) m_views->view->removeEventFilter(this);
}

void LoginItemController::connectControls() {
    using Self = LoginItemController;
    const LoginItemViews& views = *m_views;
    connect(&m_changed, &QTimer::timeout, this, &Self::loginItemsListDidChange);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] { m_changed.start(); });
    connect(views.rail, &LeftRail::chosen, this, [this](int number) {
        m_views->rail->select(number);
        m_part = number;
        showContent();
    });
    connect(views.addButton, &QAbstractButton::clicked, this, &Self::addLoginItems);
    connect(views.hideBox, &QAbstractButton::clicked, this, &Self::changeHideState);
    connect(views.tableView, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == LoginItemModel::View) viewButtonAction();
        if (index.column() == LoginItemModel::Open) openButtonAction();
        if (index.column() == LoginItemModel::DeleteItem) delLoginItem();
    });
    connect(views.tableView, &TickOutline::menuWanted, this, &Self::showMenu);
    connect(views.tableView->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &Self::showChosen);
}

void LoginItemController::connectKeys() {
    const auto key = [&](const QKeySequence& keys, QWidget* over,
                         void (LoginItemController::*action)()) {
        auto* const made = new QShortcut(keys, over);
        made->setContext(Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, this, action);
    };
    key(QKeySequence::Delete, m_views->tableView, &LoginItemController::delLoginItem);
    key(Qt::Key_Return, m_views->tableView, &LoginItemController::openButtonAction);
    key(Qt::CTRL | Qt::Key_R, m_views->view, &LoginItemController::updateLoginItemsList);
}

// It reads only while somebody looks; what changed meanwhile is read then. A drop beside the rows
// counts as one below them.
bool LoginItemController::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Show: updateLoginItemsList(); break;
        case QEvent::Hide:
            if (!m_watcher.directories().isEmpty()) m_watcher.removePaths(m_watcher.directories());
            break;
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto& dragged = static_cast<QDragMoveEvent&>(*event);
            const QStringList types = m_model->mimeTypes();
            if (!std::ranges::any_of(types, [&](const QString& type) {
                    return dragged.mimeData()->hasFormat(type);
                }))
                break;
            dragged.setDropAction(Qt::CopyAction);
            dragged.accept();
            return true;
        }
        case QEvent::Drop: {
            auto& dropped = static_cast<QDropEvent&>(*event);
            dropped.setDropAction(Qt::CopyAction);
            dropped.setAccepted(acceptDrop(*dropped.mimeData(), m_model->rowCount()));
            return true;
        }
        default: break;
    }
    return QObject::eventFilter(watched, event);
}

void LoginItemController::watchFolders(const std::vector<std::string>& folders) {
    for (const std::string& each : folders)
        if (const QString name = QFile::decodeName(each.c_str());
            !m_watcher.directories().contains(name))
            m_watcher.addPath(name);
}

void LoginItemController::loginItemsListDidChange() { updateLoginItemsList(); }

void LoginItemController::updateLoginItemsList() {
    const int number = ++m_readings;
    m_isReading = true;
    QTimer::singleShot(readPatience, this, &LoginItemController::showContent);
    // Watched before it is read, so that no change falls in between.
    const auto thread = runAside(this, "watchedFolders", &watchedFolders,
                                 [this, number](const std::vector<std::string>& folders) {
                                     if (m_views->view->isVisible()) watchFolders(folders);
                                     read(number);
                                 });
    if (thread == nullptr) m_isReading = false;
}

// Only the newest reading counts: an older one may end behind it.
void LoginItemController::read(int number) {
    if (number != m_readings) return;
    const auto thread = runAside(
        this, "updateLoginItemsList",
        [services = m_sources.services] {
            Read read{std::make_shared<LoginRows>(), false, {}};
            read.isList = AppInformation::getAppInfo(read.rows.get());
            if (services) read.services = services();
            return read;
        },
        [this, number](const Read& read) {
            if (number == m_readings) take(read);
        });
    if (thread == nullptr) m_isReading = false;
}

void LoginItemController::take(const Read& read) {
    const LoginRow* const before = chosen();
    const std::string wanted = before != nullptr ? before->item.fileName : std::string();
    // The mark of an item whose application is missing.
    std::erase_if(*read.rows, [](const auto& row) { return row->item.name == "msng"; });
    m_model->setRows(std::move(*read.rows));
    m_isReading = false;
    m_wasRead = true;
    m_isList = read.isList;
    choose(wanted);
    showServices(read.services);
    showContent();
    showChosen();
    askPackages();
}

void LoginItemController::choose(const std::string& fileName) {
    if (fileName.empty()) return;
    for (int row = 0; row < m_model->rowCount(); ++row)
        if (m_model->rows()[std::size_t(row)]->item.fileName == fileName)
            m_views->tableView->setCurrentIndex(m_model->index(row, LoginItemModel::Name));
}

void LoginItemController::showServices(const std::vector<BackgroundService>& services) {
    std::vector<std::pair<QString, QString>> lines;
    lines.reserve(services.size());
    for (const BackgroundService& each : services)
        lines.emplace_back(QString::fromStdString(each.name),
                           QString::fromStdString(each.description));
    m_views->showServices(lines);
}

// The rows are there before anybody knows who brought them.
void LoginItemController::askPackages() {
    if (!m_sources.packages) return;
    std::vector<std::string> paths;
    for (const auto& row : m_model->rows()) paths.push_back(AppInformation::sourceOf(row->item));
    runAside(
        this, "packagesOf", [ask = m_sources.packages, paths] { return ask(paths); },
        [this](const std::map<std::string, std::string>& packages) {
            for (std::size_t row = 0; row < m_model->rows().size(); ++row) {
                const auto found =
                    packages.find(AppInformation::sourceOf(m_model->rows()[row]->item));
                if (found != packages.end()) m_model->setPackage(row, found->second);
            }
            m_model->refresh();
        });
}

// --- What is shown

void LoginItemController::showContent() {
    const LoginItemViews& views = *m_views;
    const bool isItems = m_part == LoginItemViews::Items;
    const bool isEmpty = isItems ? m_model->rows().empty() : views.backgroundList->count() == 0;
    views.loginItemBottom->setVisible(isItems);
    QString title;
    if (!m_wasRead) {
        title = m_isReading ? tr("Reading ...") : QString();
    } else if (isItems && !m_isList) {
        title = tr("Login Items");
    } else if (isItems) {
        const auto starting = std::ranges::count_if(
            m_model->rows(), [](const auto& row) { return row->isListed() && row->item.starts; });
        title = tr("Programs that start when you log in: %1").arg(starting);
    } else {
        title = tr("Services that run in the background: %1").arg(views.backgroundList->count());
    }
    views.titleLabel->setText(title);
    views.quietLine->setText(m_note);
    views.emptyLabel->setText(!m_wasRead ? QString()
                              : isItems  ? tr("Nothing starts when you log in.")
                                         : tr("No services run in the background."));
    const bool isFailed = isItems && !m_isList && isEmpty;
    views.content->setCurrentIndex(isFailed               ? LoginItemViews::Failed
                                   : m_wasRead && isEmpty ? LoginItemViews::Words
                                                          : m_part);
}

void LoginItemController::showChosen() {
    const LoginRow* const row = chosen();
    const bool canHide = row != nullptr && isOwn(row->item);
    const bool hides = row != nullptr && row->item.startsHidden;
    m_views->hideBox->setEnabled(canHide);
    m_views->hideBox->setState(hides ? TickState::All : TickState::Nothing);
    m_views->hideBox->setToolTip(canHide ? QString()
                                         : tr("Only Orrinvale itself can start hidden: other "
                                              "programs do not know this."));
}

const LoginRow* LoginItemController::chosen() const {
    return m_model->node(m_views->tableView->currentIndex());
}

bool LoginItemController::isOwn(const LoginItemRecord& item) const {
    return item.isOurs && item.path == LoginItemRegistry::parts().list().folders().ownProgram;
}

PageDescriptor loginItemsPage(const PageServices& services, const LoginItemSources& sources) {
    return {.identifier = QStringLiteral("login_items"),
            .label = LoginItemController::tr("Login Items"),
            .picture = QStringLiteral("login_items"),
            .make = [services, sources] {
                return std::make_unique<LoginItemController>(services, sources);
            }};
}

}  // namespace orrinvale
