// A table a kind of control: its states side by side, each with its caption.
#include "gallery/ControlSheet.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>
#include <array>

#include "gallery/Exhibits.h"
#include "gallery/Portrait.h"
#include "gallery/drawing.h"
#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/dialogs/AlertPanel.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/shell/TitleTab.h"

namespace orrinvale {
namespace {

struct NamedState {
    ControlState state;
    const char* name;
};

constexpr std::array states{
    NamedState{ControlState::Normal, "normal"},     NamedState{ControlState::Hover, "hover"},
    NamedState{ControlState::Pressed, "pressed"},   NamedState{ControlState::Focused, "focused"},
    NamedState{ControlState::Disabled, "disabled"}, NamedState{ControlState::Checked, "checked"},
};
constexpr int sheetWidth = 1120;

QLabel* caption(const QString& text) {
    auto* const label = new QLabel(text);
    label->setFont(Theme::shared().font(Theme::Text::Caption));
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

// A table: one row a control, one column a state.
class ControlStates final {
public:
    explicit ControlStates(std::size_t columns) : m_columns(columns) {
        m_grid->setContentsMargins({});
        m_grid->setHorizontalSpacing(Theme::gap);
        m_grid->setVerticalSpacing(Theme::gap);
        for (std::size_t i = 0; i < m_columns; ++i)
            m_grid->addWidget(caption(QLatin1String(states.at(i).name)), 0,
                              static_cast<int>(i) + 1);
        m_grid->setColumnStretch(static_cast<int>(m_columns) + 1, 1);
    }

    void add(const QString& name, const Portrait::Make& make, bool isCheckable = false) {
        m_grid->addWidget(caption(name), m_row, 0);
        for (std::size_t i = 0; i < m_columns; ++i) {
            if (states.at(i).state == ControlState::Checked && !isCheckable) continue;
            QWidget* const shown = i == 0 ? make() : new Portrait(make, states.at(i).state);
            shown->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
            m_grid->addWidget(shown, m_row, static_cast<int>(i) + 1,
                              Qt::AlignLeft | Qt::AlignVCenter);
        }
        ++m_row;
    }

    [[nodiscard]] QWidget* widget() const { return m_widget; }

private:
    std::size_t m_columns;
    QWidget* m_widget = new QWidget;
    QGridLayout* m_grid = new QGridLayout(m_widget);
    int m_row = 1;
};

QWidget* sideBySide(const QList<QWidget*>& widgets, int spacing = Theme::gapHuge) {
    auto* const holder = new QWidget;
    auto* const row = new QHBoxLayout(holder);
    row->setContentsMargins({});
    row->setSpacing(spacing);
    for (QWidget* const each : widgets) row->addWidget(each, 0, Qt::AlignTop);
    row->addStretch();
    return holder;
}

QWidget* withCaption(const QString& text, QWidget* shown) {
    auto* const holder = new QWidget;
    auto* const column = new QVBoxLayout(holder);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapSmall);
    column->addWidget(caption(text));
    column->addWidget(shown);
    column->addStretch();
    return holder;
}

Portrait::Make textButton(const QString& text, TextImageButton::Role role) {
    return [=] { return new TextImageButton(text, role); };
}

QWidget* imageButton() {
    auto* const button = new TCImageButton;
    button->setImage(QStringLiteral("ic_lock"));
    button->setIconSize({20, 20});
    button->setFixedSize(Theme::controlHeight, Theme::controlHeight);
    return button;
}

QWidget* hoverButton() {
    auto* const button = new HoverButton;
    button->setText(QStringLiteral("3 skipped"));
    button->setIcon(picture(QStringLiteral("info")));
    return button;
}

Alert sampleAlert(Alert::Severity severity, const QString& title, const QString& text,
                  bool isQuestion) {
    Alert alert;
    alert.severity = severity;
    alert.title = title;
    alert.text = text;
    if (isQuestion) alert.buttons = QStringList{QStringLiteral("Sure"), QStringLiteral("Cancel")};
    alert.isDestructive = isQuestion;
    return alert;
}

}  // namespace

ControlSheet::ControlSheet(NotificationCenter& notifications, QWidget* parent)
    : QWidget(parent), m_notifications(notifications), m_column(new QVBoxLayout(this)) {
    m_column->setContentsMargins(Theme::gapSection, Theme::gapSection, Theme::gapSection,
                                 Theme::gapSection);
    m_column->setSpacing(Theme::gap);
    setFixedWidth(sheetWidth);
    addSection(QStringLiteral("Buttons"), buttons());
    addSection(QStringLiteral("Tick boxes"),
               sideBySide({tickBoxes(), tickRows()}, Theme::gapSection));
    addSection(QStringLiteral("Rows of the list of types"), leftRows());
    addSection(QStringLiteral("Progress"), strips());
    addSection(QStringLiteral("Where a folder is dropped"), dropAreas());
    addSection(QStringLiteral("Alerts"), alerts());
    addSection(QStringLiteral("Letters"), typeScale());
    addSection(QStringLiteral("Colours"), allColors());
    addSection(QStringLiteral("Pictures"), allPictures());
    connect(&Theme::shared(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void ControlSheet::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), Theme::shared().color(Theme::Color::Window));
}

void ControlSheet::addSection(const QString& title, QWidget* content) {
    auto* const heading = new QLabel(title);
    heading->setFont(Theme::shared().font(Theme::Text::Heading));
    if (m_column->count() > 0) m_column->addSpacing(Theme::gapLarge);
    m_column->addWidget(heading);
    m_column->addWidget(content);
}

QWidget* ControlSheet::buttons() const {
    using Role = TextImageButton::Role;
    ControlStates table(states.size());
    table.add(QStringLiteral("TextImageButton"), textButton(QStringLiteral("Stop"), Role::Plain),
              true);
    table.add(QStringLiteral("... primary"),
              textButton(QStringLiteral("Choose a Folder"), Role::Primary));
    table.add(QStringLiteral("... danger"), textButton(QStringLiteral("Remove"), Role::Danger));
    table.add(QStringLiteral("... link"), textButton(QStringLiteral("Learn More"), Role::Link));
    table.add(QStringLiteral("TCImageButton"), imageButton, true);
    table.add(QStringLiteral("HoverButton"), hoverButton, true);
    table.add(QStringLiteral("TitleTab"), [] { return new TitleTab(QStringLiteral("Files")); });
    table.add(QStringLiteral("... on"), [] {
        auto* const tab = new TitleTab(QStringLiteral("Files"));
        tab->setOn(true);
        return tab;
    });
    using Window = WindowButton::Kind;
    for (const Window kind : {Window::Close, Window::Miniaturize, Window::Zoom})
        table.add(kind == Window::Close ? QStringLiteral("WindowButton") : QStringLiteral("..."),
                  [kind] { return new WindowButton(kind, nullptr); });
    return table.widget();
}

QWidget* ControlSheet::tickBoxes() const {
    constexpr std::size_t withoutChecked = states.size() - 1;
    ControlStates table(withoutChecked);
    const auto box = [](TickState state, const QString& text) {
        return [=] {
            auto* const made = new TickBox(text);
            made->setState(state);
            return made;
        };
    };
    table.add(QStringLiteral("nothing"), box(TickState::Nothing, QStringLiteral("Caches")));
    table.add(QStringLiteral("some"), box(TickState::Some, QStringLiteral("Caches")));
    table.add(QStringLiteral("all"), box(TickState::All, QStringLiteral("Caches")));
    return table.widget();
}

QWidget* ControlSheet::tickRows() const {
    auto* const list = new QTreeView;
    auto* const model = new QStandardItemModel(list);
    const std::array texts{"User Caches", "User Logs", "Downloads", "Trash"};
    int number = 0;
    for (const char* const text : texts) {
        auto* const item = new QStandardItem(QLatin1String(text));
        item->setData(static_cast<int>(CellLook::Name), TickModel::LookRole);
        item->setData(picture(QStringLiteral("folder")), TickModel::IconRole);
        item->setData(number % 3, TickModel::StateRole);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        if (++number == static_cast<int>(texts.size())) item->setEnabled(false);
        auto* const size = new QStandardItem(QStringLiteral("%1 MB").arg(number * 90));
        size->setData(static_cast<int>(CellLook::Figure), TickModel::LookRole);
        size->setData(number / 4.0, TickModel::ShareRole);
        size->setEnabled(item->isEnabled());
        model->appendRow({item, size});
    }
    list->setModel(model);
    list->setItemDelegate(new RowDelegate(list));
    QPalette colors = list->palette();  // as a TickOutline has it
    colors.setColor(QPalette::Highlight, Theme::shared().color(Theme::Color::Selection));
    list->setPalette(colors);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->setHeaderHidden(true);
    list->setRootIsDecorated(false);
    list->setCurrentIndex(model->index(1, 0));
    list->setFixedSize(
        320, static_cast<int>(texts.size()) * RowDelegate::rowHeight + 2 * list->frameWidth());
    return list;
}

QWidget* ControlSheet::leftRows() const {
    const auto row = [this](std::int32_t number, bool isSelected, bool hasBox = false) {
        return [=, this] {
            auto* const cell = new DuplicationLeftCell(number, QStringLiteral("Documents"),
                                                       QStringLiteral("ic_doc"), m_notifications);
            cell->setSizeTextFieldString(QStringLiteral("812.20 MB"));
            cell->setHiglightImage(isSelected);
            if (hasBox) cell->setBox(TickState::Some);
            cell->resize(cell->sizeHint().width(), DuplicationLeftCell::cellHeight);
            return cell;
        };
    };
    return sideBySide(
        {withCaption(QStringLiteral("normal"), new Portrait(row(1, false), ControlState::Normal)),
         withCaption(QStringLiteral("hover"), new Portrait(row(1, false), ControlState::Hover)),
         withCaption(QStringLiteral("selected"), new Portrait(row(1, true), ControlState::Normal)),
         withCaption(QStringLiteral("with a box"),
                     new Portrait(row(1, false, true), ControlState::Normal)),
         withCaption(QStringLiteral("focused"),
                     new Portrait(row(1, true), ControlState::Focused))});
}

QWidget* ControlSheet::strips() const {
    QList<QWidget*> shown;
    for (const int percent : {0, 37, 100}) {
        auto* const strip = new Animation(m_notifications);
        strip->baseNumberSetPrograss(percent);
        shown.append(withCaption(QStringLiteral("%1 %").arg(percent), strip));
    }
    return sideBySide(shown, Theme::gapLarge);
}

QWidget* ControlSheet::dropAreas() const {
    constexpr QSize areaSize{320, 120};
    QList<QWidget*> areas;
    for (const bool isOver : {false, true}) {
        auto* const area = new DragView;
        area->setFixedSize(areaSize);
        if (isOver) hoverWithFolder(*area, true);
        areas.append(withCaption(
            isOver ? QStringLiteral("DragView, a folder over it") : QStringLiteral("DragView"),
            area));
    }
    const auto target = [](bool isDropTarget) {
        return [=] {
            auto* const view = new AnimationHoverImageView;
            view->setImages(QStringLiteral("addbg"), QStringLiteral("addbg_hover"),
                            QStringLiteral("addbg_press"));
            view->setDropTarget(isDropTarget);
            return view;
        };
    };
    auto* const holder = new QWidget;
    auto* const column = new QVBoxLayout(holder);
    column->setContentsMargins({});
    column->addWidget(sideBySide(areas));
    QList<QWidget*> row;
    const auto add = [&](QWidget* shown) {
        constexpr qsizetype inARow = 3;
        row.append(shown);
        if (row.size() < inARow) return;
        column->addWidget(sideBySide(row, Theme::gap));
        row.clear();
    };
    for (const NamedState& each : states)
        if (each.state != ControlState::Checked)
            add(withCaption(QLatin1String(each.name), new Portrait(target(false), each.state)));
    add(withCaption(QStringLiteral("drop"), new Portrait(target(true), ControlState::Normal)));
    return holder;
}

QWidget* ControlSheet::alerts() const {
    using Severity = Alert::Severity;
    Alert information = sampleAlert(Severity::Information, QStringLiteral("Nothing to remove"),
                                    QStringLiteral("Tick what is to go first."), false);
    information.linkText = QStringLiteral("Learn More");
    information.linkAction = [] {};
    const std::array alerts{
        information,
        sampleAlert(Severity::Warning,
                    QStringLiteral("Are you sure you want to delete all your selected files?"), {},
                    true),
        sampleAlert(Severity::Critical, QStringLiteral("The disk is full"),
                    QStringLiteral("The list of what was removed could not be written to "
                                   "/home/anna/.local/share/orrinvale."),
                    false)};
    auto* const holder = new QWidget;
    auto* const grid = new QGridLayout(holder);
    grid->setContentsMargins({});
    grid->setSpacing(Theme::gapLarge);
    int index = 0;
    for (const Alert& alert : alerts) {
        auto* const frame = new Panel(Theme::Color::SurfaceRaised);
        auto* const panel = new AlertPanel(alert);
        auto* const around = new QVBoxLayout(frame);
        around->setContentsMargins({});
        around->addWidget(panel);
        frame->setFixedSize(panel->sizeHint());
        grid->addWidget(frame, index / 2, index % 2, Qt::AlignLeft | Qt::AlignTop);
        ++index;
    }
    grid->setColumnStretch(2, 1);
    return holder;
}

}  // namespace orrinvale
