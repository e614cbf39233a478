// ApplicationSizes: fills in the sizes of applications aside, one after another.
#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>

#include "engine/uninstall/AppItems.h"

namespace orrinvale {

/// Main thread only.
class ApplicationSizes final : public QObject {
    Q_OBJECT
public:
    /// Asked on a thread aside; a raised flag ends it early, and what it then says is dropped. Each
    /// pass over the applications asks a copy of its own, which may keep what it has read.
    using Measure = std::function<ApplicationDetails(const ApplicationRecord& record,
                                                     const std::atomic<bool>& stop)>;

    explicit ApplicationSizes(Measure measure, QObject* parent = nullptr);
    ~ApplicationSizes() override;

    /// Measures those whose size is not known, and leaves aside what it was at before.
    void fillIn(const AppItemsArray& items);
    void stop();

Q_SIGNALS:
    /// Records have sizes that had none. No record has moved.
    void changed();

private:
    struct Work;
    void take();

    const Measure m_measure;
    std::shared_ptr<Work> m_work;  // null while nothing is measured
    QTimer m_taking;
};

}  // namespace orrinvale
