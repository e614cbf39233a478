// HistoryDesk: shows what was moved to the trash, and brings it back.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "ui/duplicates/UndoErrand.h"
#include "ui/page/PageServices.h"

class QWidget;

namespace orrinvale {

class HistoryPanel;
class Sheet;

/// One sheet at a time. What is read of the disk is read aside. When this object ends what is under
/// way stops before its next entry. Main thread only.
class HistoryDesk final : public QObject {
    Q_OBJECT
public:
    explicit HistoryDesk(const PageServices& services, QObject* parent = nullptr);
    ~HistoryDesk() override;

    /// Something comes back.
    [[nodiscard]] bool isRunning() const { return m_undoing.isRunning(); }
    void stop() { m_undoing.stop(); }

    void open(QWidget* window);

Q_SIGNALS:
    void runningChanged();

private:
    void read();
    void countNext();
    void restore();
    void clear();
    void ended(const UndoErrand::Result& result);
    void close();

    const PageServices& m_services;
    QPointer<QWidget> m_window;
    QPointer<Sheet> m_sheet;
    QPointer<HistoryPanel> m_panel;
    std::vector<std::string> m_uncounted;  // the next one last
    std::shared_ptr<std::atomic<bool>> m_stopCounting;
    QStringList m_failedLines;
    UndoErrand m_undoing;
};

}  // namespace orrinvale
