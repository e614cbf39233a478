// Padlock: QnAuthorization has the right; UtilityObject says to the whole program whether it is
// there.
#include "ui/page/Padlock.h"

#include <QCoreApplication>
#include <QPointer>
#include <string>

#include "engine/base/UtilityObject.h"
#include "engine/base/notices.h"
#include "engine/cleaning/QnAuthorization.h"
#include "services/foundation/runAside.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr QSize lockSize{20, 20};

}  // namespace

Padlock::Padlock(NotificationCenter& notifications, QWidget* parent)
    : TCImageButton(parent), m_notifications(notifications) {
    setObjectName(QStringLiteral("lockButton"));
    setFixedSize(Theme::controlHeight, Theme::controlHeight);
    setAccessibleName(tr("Administrator right"));
    setCheckable(true);
    m_observation = notice::changeLockState.observe(m_notifications, [this] { showRight(); });
    showRight();
}

void Padlock::toggleRight() {
    if (m_asking != nullptr) {
        showRight();
        return;
    }
    if (!isChecked()) {
        QnAuthorization::shareQnAuthorization().freeAuthorization();
        UtilityObject::getMyObject().setIsOpenLocked(false);
        notice::changeLockState.post(m_notifications);
        return;
    }
    setEnabled(false);
    // The answer is the whole program's, also when this padlock has gone meanwhile.
    m_asking = runAside(
        QCoreApplication::instance(), "allocAuthorization",
        [] { return QnAuthorization::shareQnAuthorization().allocAuthorization(); },
        [self = QPointer(this), notifications = &m_notifications](bool granted) {
            UtilityObject::getMyObject().setIsOpenLocked(granted);
            if (self != nullptr) {
                self->m_asking.reset();
                self->setEnabled(true);
                Q_EMIT self->answered();
                self->setFocus();  // it lost the keyboard while it rested
            }
            notice::changeLockState.post(*notifications);
        });
    if (m_asking != nullptr) return;
    setEnabled(true);
    showRight();
}

void Padlock::showRight() {
    const bool isOpen = UtilityObject::getMyObject().isOpenLocked;
    setChecked(isOpen);
    setImage(isOpen ? QStringLiteral("ic_unlock") : QStringLiteral("ic_lock"));
    setIconSize(lockSize);
    const std::string refusal =
        isOpen ? std::string() : QnAuthorization::shareQnAuthorization().refusalText();
    QString said = tr("Click lock to get a higer privileges.");
    if (!refusal.empty()) said += QLatin1Char('\n') + QString::fromStdString(refusal);
    setToolTip(said);
}

}  // namespace orrinvale
