// Copies that stay stand greyed below those that go, so that a person sees what is left of each.
#include "ui/duplicates/PlanPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "ui/duplicates/entryWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/FlatModel.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int planPanelWidth = 640, planListHeight = 220, planSizeWidth = 96, planStateWidth = 96;

using PlanRow = const PlanMember*;

static_assert(std::is_nothrow_destructible_v<TickColumn<PlanRow>>);  // see TickModel.h

std::vector<TickColumn<PlanRow>> planColumns() {
    return {{.title = PlanPanel::tr("Name"),
             .look = CellLook::PathName,
             .text = [](const PlanRow& row) { return QString::fromStdString(row->path); }},
            {.name = PlanPanel::tr("What becomes of it"),
             .width = planStateWidth,
             .text =
                 [](const PlanRow& row) {
                     return row->goes          ? PlanPanel::tr("goes")
                            : row->isProtected ? PlanPanel::tr("protected")
                                               : PlanPanel::tr("stays");
                 }},
            {.title = PlanPanel::tr("Size"),
             .look = CellLook::Figure,
             .width = planSizeWidth,
             .text = [](const PlanRow& row) {
                 return shownSize(UtilityFunction::convertVolSpace(row->size));
             }}};
}

/// The plan itself is what it shows.
class PlanModel final : public FlatModel<PlanRow> {
public:
    PlanModel(std::shared_ptr<const DuplicatePlan> plan, QObject* parent)
        : FlatModel(planColumns(), parent), m_plan(std::move(plan)) {
        std::vector<PlanRow> rows;
        for (const PlanGroup& group : m_plan->groups)
            for (const bool goes : {true, false})
                for (const PlanMember& member : group.members)
                    if (member.goes == goes) rows.push_back(&member);
        setRows(std::move(rows));
    }

protected:
    [[nodiscard]] QString toolTipOf(const PlanRow& row) const override {
        return QString::fromStdString(row->path);
    }
    [[nodiscard]] bool isGrey(const PlanRow& row) const override { return !row->goes; }

private:
    const std::shared_ptr<const DuplicatePlan> m_plan;
};

}  // namespace

PlanPanel::PlanPanel(const std::shared_ptr<const DuplicatePlan>& plan, const PlanFacts& facts,
                     QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("planPanel"));
    setAccessibleName(tr("Plan"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    addTexts(*column, facts);
    addList(*column, plan);
    addButtons(*column, facts);
}

QSize PlanPanel::sizeHint() const { return {planPanelWidth, layout()->sizeHint().height()}; }

void PlanPanel::addTexts(QVBoxLayout& column, const PlanFacts& facts) {
    auto* const title = named(new ElidedLabel(Qt::ElideMiddle), "planTitle");
    title->setFont(Theme::shared().font(Theme::Text::Heading));
    title->setText(facts.name);
    const QString size = shownSize(UtilityFunction::convertVolSpace(facts.sums.bytes));
    QStringList lines{(facts.sums.entries() == 1 ? tr("%1, %2, can go. A copy of it stays.")
                                                 : tr("%1, %2, can go. Of each a copy stays."))
                          .arg(countedEntries({facts.sums.files, facts.sums.bundles}), size)};
    if (facts.outside == 1) lines << tr("1 of them lies outside of the folders of the plan.");
    else if (facts.outside > 1)
        lines << tr("%Ln of them lie outside of the folders of the plan.", nullptr,
                    static_cast<int>(facts.outside));
    lines << tr("Each is compared with its copy once more before it goes.");
    auto* const text = makeLabel("planText", Theme::Text::Body, QPalette::PlaceholderText);
    text->setText(lines.join(QLatin1Char('\n')));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignLeading);
    setAccessibleDescription(text->text());
    column.addWidget(title);
    column.addWidget(text);
}

void PlanPanel::addList(QVBoxLayout& column, const std::shared_ptr<const DuplicatePlan>& plan) {
    list = named(new TickOutline(new FlatHeader, this), "planList", tr("Files of the plan"));
    list->setRootIsDecorated(false);
    list->setIndentation(0);
    list->setModel(new PlanModel(plan, list));
    list->setMinimumHeight(planListHeight);
    column.addWidget(list, 1);
}

void PlanPanel::addButtons(QVBoxLayout& column, const PlanFacts& facts) {
    using Role = TextImageButton::Role;
    m_state = named(new ElidedLabel(Qt::ElideMiddle), "planState");
    failedLink = named(new HoverButton, "planFailedLink");
    undoButton = named(new HoverButton, "planUndo");
    undoButton->setText(tr("Undo"));
    cancelButton = named(new TextImageButton(tr("Cancel")), "planCancel");
    stopButton = named(new TextImageButton(tr("Stop")), "planStop");
    const Role trashRole = facts.isTrashFirst ? Role::Primary : Role::Plain;
    const Role removeRole = facts.isTrashFirst ? Role::Plain : Role::Danger;
    trashButton = named(new TextImageButton(tr("Move to Trash"), trashRole), "planTrash");
    removeButton = named(new TextImageButton(tr("Remove"), removeRole), "planRemove");
    for (TextImageButton* const each : {trashButton, removeButton})
        each->setEnabled(facts.sums.entries() > 0);
    auto* const row = new QHBoxLayout;
    row->setSpacing(Theme::gapSmall);
    row->addWidget(m_state, 1);
    for (QWidget* const each :
         {static_cast<QWidget*>(undoButton), static_cast<QWidget*>(failedLink),
          static_cast<QWidget*>(stopButton), static_cast<QWidget*>(cancelButton),
          static_cast<QWidget*>(facts.isTrashFirst ? removeButton : trashButton),
          static_cast<QWidget*>(facts.isTrashFirst ? trashButton : removeButton)})
        row->addWidget(each);
    for (QWidget* const each :
         {static_cast<QWidget*>(undoButton), static_cast<QWidget*>(failedLink),
          static_cast<QWidget*>(stopButton)})
        each->hide();
    column.addLayout(row);
}

void PlanPanel::showRunning() {
    for (QWidget* const each :
         {static_cast<QWidget*>(trashButton), static_cast<QWidget*>(removeButton),
          static_cast<QWidget*>(cancelButton), static_cast<QWidget*>(undoButton),
          static_cast<QWidget*>(failedLink)})
        each->hide();
    m_state->setText(tr("One moment\u2026"));
    stopButton->setEnabled(true);
    stopButton->show();
    stopButton->setFocus();
}

void PlanPanel::showProgress(const Progress& progress, bool isToTrash) {
    m_state->setText((isToTrash ? tr("Compared again and moved: %1 of %2")
                                : tr("Compared again and removed: %1 of %2"))
                         .arg(QLocale().toString(qulonglong(progress.done)),
                              QLocale().toString(qulonglong(progress.of))));
}

void PlanPanel::showEnd(const QString& text, const QString& failed, bool canUndo) {
    m_state->setText(text);
    failedLink->setText(failed);
    failedLink->setVisible(!failed.isEmpty());
    undoButton->setVisible(canUndo);
    stopButton->hide();
    cancelButton->setText(tr("Close"));
    cancelButton->show();
    cancelButton->setFocus();
}

}  // namespace orrinvale
