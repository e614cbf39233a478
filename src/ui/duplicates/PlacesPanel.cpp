// By keyboard: Delete takes a folder out, Ctrl with an arrow moves it. No shortcuts: a sheet lets
// none through.
#include "ui/duplicates/PlacesPanel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <type_traits>
#include <utility>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/FlatModel.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int placesPanelWidth = 520, placesListHeight = 140;

static_assert(std::is_nothrow_destructible_v<TickColumn<std::string>>);  // see TickModel.h

std::vector<TickColumn<std::string>> placeColumns() {
    return {{.title = PlacesPanel::tr("Folder"),
             .look = CellLook::Name,
             .text = [](const std::string& folder) { return QString::fromStdString(folder); }}};
}

}  // namespace

class PlacesPanel::Model final : public FlatModel<std::string> {
public:
    explicit Model(QObject* parent) : FlatModel(placeColumns(), parent) {}
};

PlacesPanel::PlacesPanel(std::vector<std::string> folders, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("placesPanel"));
    setAccessibleName(tr("Best places"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    auto* const title = makeLabel("placesTitle", Theme::Text::Heading);
    title->setText(tr("Keep the copy in the best place"));
    title->setAlignment(Qt::AlignLeading);
    auto* const hint = makeLabel("placesHint", Theme::Text::Caption, QPalette::PlaceholderText);
    hint->setText(tr("The copy in the topmost of these folders stays, and all others are ticked."));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignLeading);
    list = named(new TickOutline(new FlatHeader, this), "placesList", tr("Folders"));
    list->setRootIsDecorated(false);
    list->setIndentation(0);
    list->setMinimumHeight(placesListHeight);
    list->setHeaderHidden(true);
    m_model = new Model(list);
    list->setModel(m_model);
    connect(list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &PlacesPanel::showButtons);
    addButton = named(new TextImageButton(tr("Add Folder\u2026")), "placesAdd");
    m_takeOut = named(new TextImageButton(tr("Take Out")), "placesTakeOut");
    m_up = named(new TextImageButton(tr("Up")), "placesUp");
    m_down = named(new TextImageButton(tr("Down")), "placesDown");
    cancelButton = named(new TextImageButton(tr("Cancel")), "placesCancel");
    keepButton =
        named(new TextImageButton(tr("Keep"), TextImageButton::Role::Primary), "placesKeep");
    connect(m_takeOut, &QAbstractButton::clicked, this, &PlacesPanel::takeOut);
    connect(m_up, &QAbstractButton::clicked, this, [this] { move(-1); });
    connect(m_down, &QAbstractButton::clicked, this, [this] { move(1); });
    list->installEventFilter(this);

    auto* const order = new QHBoxLayout;
    order->setSpacing(Theme::gapSmall);
    for (QWidget* const each : {addButton, m_takeOut, m_up, m_down}) order->addWidget(each);
    order->addStretch();
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gapSmall);
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(keepButton);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(title);
    column->addWidget(hint);
    column->addWidget(list, 1);
    column->addLayout(order);
    column->addLayout(buttons);
    setFolders(std::move(folders), 0);
}

QSize PlacesPanel::sizeHint() const { return {placesPanelWidth, layout()->sizeHint().height()}; }

const std::vector<std::string>& PlacesPanel::folders() const { return m_model->rows(); }

void PlacesPanel::setFolders(std::vector<std::string> folders, int current) {
    m_model->setRows(std::move(folders));
    if (m_model->rowCount() > 0)
        list->setCurrentIndex(m_model->index(std::clamp(current, 0, m_model->rowCount() - 1), 0));
    showButtons();
}

void PlacesPanel::add(const std::string& folder) {
    std::vector<std::string> all = folders();
    if (std::ranges::find(all, folder) != all.end()) return;
    all.push_back(folder);
    setFolders(std::move(all), m_model->rowCount());
}

bool PlacesPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched != list || event->type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isMove = key.modifiers().testFlag(Qt::ControlModifier);
    if (key.key() == Qt::Key_Delete) takeOut();
    else if (isMove && key.key() == Qt::Key_Up) move(-1);
    else if (isMove && key.key() == Qt::Key_Down) move(1);
    else return false;
    return true;
}

void PlacesPanel::takeOut() {
    const int at = list->currentIndex().row();
    std::vector<std::string> all = folders();
    if (at < 0 || at >= static_cast<int>(all.size())) return;
    all.erase(all.begin() + at);
    setFolders(std::move(all), at);
}

void PlacesPanel::move(int step) {
    const int at = list->currentIndex().row();
    std::vector<std::string> all = folders();
    const int to = at + step;
    if (at < 0 || to < 0 || to >= static_cast<int>(all.size())) return;
    std::swap(all[std::size_t(at)], all[std::size_t(to)]);
    setFolders(std::move(all), to);
}

void PlacesPanel::showButtons() {
    const int at = list->currentIndex().isValid() ? list->currentIndex().row() : -1;
    m_takeOut->setEnabled(at >= 0);
    m_up->setEnabled(at > 0);
    m_down->setEnabled(at >= 0 && at + 1 < m_model->rowCount());
    keepButton->setEnabled(m_model->rowCount() > 0);
    keepButton->setToolTip(m_model->rowCount() > 0 ? QString() : tr("Add a folder first"));
}

}  // namespace orrinvale
