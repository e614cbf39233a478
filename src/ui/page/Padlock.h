// Padlock: the button that asks for the administrator right, and gives it back.
#pragma once

#include <memory>

#include "engine/base/NotificationCenter.h"
#include "ui/kit/chrome/TCImageButton.h"

namespace orrinvale {

class ThreadWorker;

/// Shows whether the right is there, on every page at once: each padlock follows "changeLockState".
/// The person's answer may take minutes and is awaited on a worker, on which the padlock rests.
/// Main thread only.
class Padlock final : public TCImageButton {
    Q_OBJECT
public:
    /// The centre outlives it.
    explicit Padlock(NotificationCenter& notifications, QWidget* parent = nullptr);

    /// What a click is for: asks for the right where the button has been switched on, gives it back
    /// where it has been switched off.
    void toggleRight();
    /// Shows the right as it is; a click that is for nothing is undone by it.
    void showRight();
    /// Greys it again where somebody has switched it on meanwhile.
    void restWhileAsking() {
        if (m_asking != nullptr) setEnabled(false);
    }

Q_SIGNALS:
    /// The person has answered: who greys the padlock decides anew.
    void answered();

private:
    NotificationCenter& m_notifications;
    NotificationCenter::Observation m_observation;
    std::shared_ptr<ThreadWorker> m_asking;  // null while nobody is asked
};

}  // namespace orrinvale
