// A stop only greys the button: the removal finishes its entry and tells of the end by 100 percent.
#include "ui/largefiles/ProgressWindowController.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/viewParts.h"

namespace orrinvale {
namespace {

constexpr int windowWidth = 460;

}  // namespace

ProgressWindowController::ProgressWindowController(QWidget* parent,
                                                   ProgressWindowControllerDelegate& delegate)
    : QDialog(parent),
      m_delegate(delegate),
      m_progressView(
          named(new QnProgressView, "removalProgressView", tr("Progress of the removal"))),
      m_pathLabel(named(new ElidedLabel(Qt::ElideMiddle), "pathLabel")),
      m_stopButton(named(new TextImageButton(tr("Stop")), "stopButton")) {
    setObjectName(QStringLiteral("progressWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Removing"));
    setWindowModality(Qt::ApplicationModal);
    setFixedWidth(windowWidth);
    QLabel* const heading = makeLabel("removalHeading", Theme::Text::Heading);
    heading->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    heading->setText(tr("Removing what you selected"));
    m_pathLabel->setForegroundRole(QPalette::PlaceholderText);
    connect(m_stopButton, &QAbstractButton::clicked, this,
            &ProgressWindowController::stopButtonAction);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_stopButton);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapLarge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(heading);
    column->addWidget(m_progressView);
    column->addWidget(m_pathLabel);
    column->addLayout(buttons);
}

void ProgressWindowController::changeProgressValue(std::int32_t percent, const std::string& path) {
    m_pathLabel->setText(QString::fromStdString(path));
    m_progressView->changeProgressValue(static_cast<float>(percent));
    constexpr std::int32_t over = 100;
    if (percent >= over) done(Accepted);
}

void ProgressWindowController::stopButtonAction() {
    m_stopButton->setEnabled(false);
    m_delegate.stopRemove();
}

}  // namespace orrinvale
