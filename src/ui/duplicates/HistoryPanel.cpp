// Rows whose files have left the trash stay in the list, greyed, so that a person sees that nothing
// can be had back of them.
#include "ui/duplicates/HistoryPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>
#include <algorithm>
#include <type_traits>
#include <utility>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/FlatModel.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int historyPanelWidth = 560, historyListHeight = 220;
constexpr int historyCountWidth = 84, historySizeWidth = 96, historyTrashWidth = 116;

QString historyCount(std::size_t count) { return QLocale().toString(qulonglong(count)); }

QString inTrashText(const HistoryRow& row) {
    if (!row.fault.empty()) return {};
    return row.inTrash ? historyCount(*row.inTrash) : QStringLiteral("\u2026");
}

QString whenText(const HistoryRow& row) {
    return row.when.isValid() ? QLocale().toString(row.when, QLocale::ShortFormat)
                              : QString::fromStdString(row.id);
}

static_assert(std::is_nothrow_destructible_v<TickColumn<HistoryRow>>);  // see TickModel.h

std::vector<TickColumn<HistoryRow>> historyColumns() {
    return {{.title = HistoryPanel::tr("When"), .look = CellLook::Name, .text = whenText},
            {.title = HistoryPanel::tr("Entries"),
             .look = CellLook::Figure,
             .width = historyCountWidth,
             .text =
                 [](const HistoryRow& row) {
                     return row.fault.empty() ? historyCount(row.entries) : QString();
                 }},
            {.title = HistoryPanel::tr("Size"),
             .look = CellLook::Figure,
             .width = historySizeWidth,
             .text =
                 [](const HistoryRow& row) {
                     return row.fault.empty()
                                ? shownSize(UtilityFunction::convertVolSpace(row.bytes))
                                : QString();
                 }},
            {.title = HistoryPanel::tr("In the trash"),
             .look = CellLook::Figure,
             .width = historyTrashWidth,
             .text = inTrashText}};
}

}  // namespace

class HistoryPanel::Model final : public FlatModel<HistoryRow> {
public:
    explicit Model(QObject* parent) : FlatModel(historyColumns(), parent) {}

protected:
    [[nodiscard]] QString toolTipOf(const HistoryRow& row) const override {
        return inWords(row.fault);
    }
    [[nodiscard]] bool isGrey(const HistoryRow& row) const override {
        return !row.fault.empty() || row.inTrash == std::size_t{0};
    }
};

HistoryPanel::HistoryPanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("historyPanel"));
    setAccessibleName(tr("Removals of the last 30 days"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    auto* const title = makeLabel("historyTitle", Theme::Text::Heading);
    title->setText(tr("Removals of the last 30 days"));
    title->setAlignment(Qt::AlignLeading);
    auto* const hint = makeLabel("historyHint", Theme::Text::Caption, QPalette::PlaceholderText);
    hint->setText(
        tr("What was moved to the trash can be brought back until the trash is emptied."));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignLeading);
    list = named(new TickOutline(new FlatHeader, this), "historyList", tr("Removals"));
    list->setRootIsDecorated(false);
    list->setIndentation(0);
    list->setMinimumHeight(historyListHeight);
    m_model = new Model(list);
    list->setModel(m_model);
    connect(list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &HistoryPanel::showButtons);
    m_state = makeLabel("historyState", Theme::Text::Body);
    m_state->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    m_state->setText(tr("One moment\u2026"));
    failedLink = named(new HoverButton, "historyFailedLink");
    failedLink->hide();
    clearButton = named(new HoverButton, "historyClear");
    clearButton->setText(tr("Clear"));
    clearButton->setToolTip(tr("Forget this list; what is in the trash stays there"));
    stopButton = named(new TextImageButton(tr("Stop")), "historyStop");
    closeButton = named(new TextImageButton(tr("Close")), "historyClose");
    restoreButton = named(new TextImageButton(tr("Bring Back"), TextImageButton::Role::Primary),
                          "historyRestore");
    auto* const told = new QHBoxLayout;
    told->addWidget(m_state);
    told->addWidget(failedLink);
    told->addStretch();
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gapSmall);
    buttons->addWidget(clearButton);
    buttons->addStretch();
    for (QWidget* const each : {stopButton, closeButton, restoreButton}) buttons->addWidget(each);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(title);
    column->addWidget(hint);
    column->addWidget(list, 1);
    column->addLayout(told);
    column->addLayout(buttons);
    showButtons();
}

QSize HistoryPanel::sizeHint() const { return {historyPanelWidth, layout()->sizeHint().height()}; }

void HistoryPanel::setRows(std::vector<HistoryRow> rows) {
    const std::string before = chosen();
    const auto at = std::ranges::find(rows, before, &HistoryRow::id);
    const auto number = at != rows.end() ? static_cast<int>(at - rows.begin()) : 0;
    if (rows.empty()) m_state->setText(tr("Nothing was moved to the trash in the last 30 days."));
    else if (m_isFresh) m_state->clear();
    m_isFresh = false;
    m_model->setRows(std::move(rows));
    if (m_model->rowCount() > 0) list->setCurrentIndex(m_model->index(number, 0));
    showButtons();
}

void HistoryPanel::setInTrash(const std::string& id,
                              const tl::expected<std::size_t, std::string>& count) {
    for (int row = 0; row < m_model->rowCount(); ++row) {
        HistoryRow* const each = m_model->row(m_model->index(row, 0));
        if (each->id != id) continue;
        if (count) each->inTrash = *count;
        else each->fault = count.error();
    }
    m_model->refresh();
    showButtons();
}

std::string HistoryPanel::chosen() const {
    const HistoryRow* const row = m_model->row(list->currentIndex());
    const bool isAnything = row != nullptr && row->fault.empty() && row->inTrash != std::size_t{0};
    return isAnything ? row->id : std::string();
}

void HistoryPanel::showButtons() {
    for (QWidget* const each :
         {static_cast<QWidget*>(closeButton), static_cast<QWidget*>(restoreButton),
          static_cast<QWidget*>(clearButton)})
        each->setVisible(!m_isRunning);
    stopButton->setVisible(m_isRunning);
    list->setEnabled(!m_isRunning);
    clearButton->setEnabled(m_model->rowCount() > 0);
    restoreButton->setEnabled(!chosen().empty());
    restoreButton->setToolTip(m_model->rowCount() > 0 && chosen().empty()
                                  ? tr("Nothing of it is in the trash")
                                  : QString());
}

void HistoryPanel::showRunning() {
    m_isRunning = true;
    m_state->setText(tr("Bringing it back\u2026"));
    failedLink->hide();
    stopButton->setEnabled(true);
    showButtons();
    stopButton->setFocus();
}

void HistoryPanel::showEnd(const QString& text, const QString& failed) {
    m_isRunning = false;
    m_state->setText(text);
    failedLink->setText(failed);
    failedLink->setVisible(!failed.isEmpty());
    showButtons();
    list->setFocus();
}

}  // namespace orrinvale
