// UndoErrand: brings a removal back from the trash, aside.
#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <tl/expected.hpp>

#include "engine/duplicates/plan/TrashUndo.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

/// One at a time. When this object ends, what is under way stops before its next entry. Main thread
/// only.
class UndoErrand final : public QObject {
    Q_OBJECT
public:
    /// What came back, or why nothing could, in words.
    using Result = tl::expected<UndoOutcome, std::string>;

    explicit UndoErrand(const PageServices& services, QObject* parent = nullptr);
    ~UndoErrand() override;

    [[nodiscard]] bool isRunning() const { return m_stop != nullptr; }
    /// `ended` comes later, once, unless this object has ended. False where one is under way.
    bool begin(const std::string& id, std::function<void(Result)> ended);
    void stop() const;

private:
    const PageServices& m_services;
    std::shared_ptr<std::atomic<bool>> m_stop;  // of the one under way
};

}  // namespace orrinvale
