// A heading, the list in a frame, and the buttons.
#include "ui/diagnostics/ComputerPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/diagnostics/CustomComInfoView.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int computerPanelWidth = 520;

}  // namespace

ComputerPanel::ComputerPanel(const SystemValues& system)
    : infoView(new CustomComInfoView(system)),
      copyButton(named(new TextImageButton(tr("Copy Report…"), TextImageButton::Role::Link),
                       "copyReport")),
      closeButton(named(new TextImageButton(tr("Close"), TextImageButton::Role::Primary),
                        "closeComputer")) {
    setObjectName(QStringLiteral("computerPanel"));
    setAccessibleName(tr("About This Computer"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    QLabel* const title = makeLabel("computerTitle", Theme::Text::Heading);
    title->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    title->setText(tr("About This Computer"));
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(copyButton);
    buttons->addStretch();
    buttons->addWidget(closeButton);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    column->addWidget(title);
    column->addWidget(infoView);
    column->addLayout(buttons);
}

QSize ComputerPanel::sizeHint() const {
    return {computerPanelWidth, layout()->sizeHint().height()};
}

}  // namespace orrinvale
