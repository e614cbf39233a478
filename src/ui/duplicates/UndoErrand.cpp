// Nothing is unwound by a stop: what is back stays, and the rest can be brought back later.
#include "ui/duplicates/UndoErrand.h"

#include <QTimer>
#include <utility>

#include "engine/duplicates/plan/PlanHistory.h"
#include "services/foundation/runAside.h"

namespace orrinvale {

UndoErrand::UndoErrand(const PageServices& services, QObject* parent)
    : QObject(parent), m_services(services) {}

UndoErrand::~UndoErrand() { stop(); }

bool UndoErrand::begin(const std::string& id, std::function<void(Result)> ended) {
    if (isRunning()) return false;
    m_stop = std::make_shared<std::atomic<bool>>(false);
    const auto finish = [this, ended = std::move(ended)](Result result) {
        m_stop.reset();
        ended(std::move(result));
    };
    const auto worker = runAside(
        this, "undo",
        [files = m_services.files, history = PlanHistory(m_services.stateFolder), id,
         stop = m_stop]() -> Result {
            const auto noted = history.load(id);
            if (!noted) return tl::unexpected(noted.error());
            return undoPlan(*files, FolderVariables::ofThisProcess(), noted->plan, noted->folders,
                            *stop);
        },
        finish);
    if (worker == nullptr)
        QTimer::singleShot(0, this, [finish] {
            finish(tl::unexpected(std::string("Resource temporarily unavailable")));
        });
    return true;
}

void UndoErrand::stop() const {
    if (m_stop) *m_stop = true;
}

}  // namespace orrinvale
