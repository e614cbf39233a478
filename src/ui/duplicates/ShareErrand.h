// ShareErrand: the look at how ticked copies can share their space, before a person is asked.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "engine/base/Progress.h"
#include "engine/duplicates/share/ShareOutlook.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

class Sheet;

/// Looks aside; a sheet with Stop lies over the window where that takes long. When this object ends
/// the look stops before its next entry. Main thread only.
class ShareErrand final : public QObject {
public:
    /// Nothing where it was stopped, or where there is no thread.
    using Outlook = std::optional<ShareOutlook>;

    explicit ShareErrand(const PageServices& services, QObject* parent = nullptr);
    ~ShareErrand() override;

    [[nodiscard]] bool isLooking() const { return m_stop != nullptr; }
    /// `ended` comes later, once, unless this object has ended. One look at a time.
    void look(QWidget& window, DuplicatePlan plan, std::function<void(Outlook)> ended);
    void stop();

private:
    void showWaiting();
    void finish(Outlook outlook);

    const PageServices& m_services;
    std::shared_ptr<std::atomic<bool>> m_stop;  // of the look under way
    std::shared_ptr<ProgressBox> m_progress;
    std::function<void(Outlook)> m_ended;
    QPointer<QWidget> m_window;
    QPointer<Sheet> m_sheet;
    QTimer m_patience;
};

}  // namespace orrinvale
