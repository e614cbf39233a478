// A field with the path and not the toolkit's chooser: what stays out of the plan is told beside
// it, and so is what stands in the way.
#include "ui/duplicates/SavePlanPanel.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"
#include "ui/duplicates/entryWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int savePanelWidth = 520, saveFieldMargin = 6;

}  // namespace

SavePlanPanel::SavePlanPanel(const PlanSums& sums, const LeftOutOfPlan& left, const QString& path,
                             QWidget* parent)
    : QWidget(parent), m_isAnything(sums.entries() > 0) {
    setObjectName(QStringLiteral("savePlanPanel"));
    setAccessibleName(tr("Save a plan"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    auto* const title = makeLabel("savePlanTitle", Theme::Text::Heading);
    title->setText(tr("Save what is ticked as a plan"));
    title->setAlignment(Qt::AlignLeading);
    const QString size = shownSize(UtilityFunction::convertVolSpace(sums.bytes));
    QStringList lines;
    if (sums.entries() > 0)
        lines << (sums.entries() == 1
                      ? tr("%1, %2. It goes when the plan is opened and confirmed.")
                      : tr("%1, %2. They go when the plan is opened and confirmed."))
                     .arg(countedEntries({sums.files, sums.bundles}), size);
    if (left.groups == 1)
        lines << tr("1 group is left out: all its copies are ticked, and a plan keeps one.");
    else if (left.groups > 1)
        lines << tr("%Ln groups are left out: all their copies are ticked, and a plan keeps one.",
                    nullptr, static_cast<int>(left.groups));
    if (left.links == 1) lines << tr("1 link is left out: a plan removes no links.");
    else if (left.links > 1)
        lines << tr("%Ln links are left out: a plan removes no links.", nullptr,
                    static_cast<int>(left.links));
    if (left.folders == 1)
        lines << tr("1 folder is left out: what is in it has changed since the search.");
    else if (left.folders > 1)
        lines << tr("%Ln folders are left out: what is in them has changed since the search.",
                    nullptr, static_cast<int>(left.folders));
    auto* const text = makeLabel("savePlanText", Theme::Text::Body, QPalette::PlaceholderText);
    text->setText(lines.join(QLatin1Char('\n')));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignLeading);
    setAccessibleDescription(text->text());
    pathField = named(new QLineEdit, "planPath", tr("Where the plan is kept"));
    pathField->setTextMargins(saveFieldMargin, 0, saveFieldMargin, 0);
    pathField->setText(path);
    connect(pathField, &QLineEdit::textChanged, this, &SavePlanPanel::read);
    chooseButton = named(new HoverButton, "planFolder");
    chooseButton->setText(tr("Choose Folder\u2026"));
    m_fault = makeLabel("savePlanFault", Theme::Text::Caption, QPalette::PlaceholderText);
    m_fault->setAlignment(Qt::AlignLeading);
    m_fault->setWordWrap(true);
    cancelButton = named(new TextImageButton(tr("Cancel")), "savePlanCancel");
    saveButton = named(new TextImageButton(tr("Save"), TextImageButton::Role::Primary), "savePlan");
    connect(pathField, &QLineEdit::returnPressed, saveButton, &QAbstractButton::click);

    auto* const field = new QHBoxLayout;
    field->setSpacing(Theme::gapSmall);
    field->addWidget(pathField, 1);
    field->addWidget(chooseButton);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gapSmall);
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(saveButton);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(title);
    column->addWidget(text);
    column->addLayout(field);
    column->addWidget(m_fault);
    column->addLayout(buttons);
    read();
}

QSize SavePlanPanel::sizeHint() const {
    return {savePanelWidth, layout()->heightForWidth(savePanelWidth)};
}

std::string SavePlanPanel::path() const {
    const std::string path = QFile::encodeName(pathField->text()).toStdString();
    return plainPath(path) == path && path.size() > 1 ? path : std::string();
}

void SavePlanPanel::setFolder(const std::string& folder) {
    const QString name = pathField->text().section(QLatin1Char('/'), -1);
    pathField->setText(QFile::decodeName(QByteArray::fromStdString(folder)) + QLatin1Char('/') +
                       name);
}

void SavePlanPanel::showFault(const QString& fault) { m_fault->setText(fault); }

void SavePlanPanel::read() {
    const bool isPath = !path().empty();
    saveButton->setEnabled(m_isAnything && isPath);
    showFault(!m_isAnything ? tr("Nothing that is ticked can go by a plan.")
              : isPath      ? QString()
                            : tr("Write the whole path, from the first slash on"));
}

}  // namespace orrinvale
