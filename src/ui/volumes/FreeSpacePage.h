// FreeSpacePage: the page "Free Space" of the toolbar window: what is free, and a card for each
// volume. DiskSizeView.h is the list.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "services/volumes/Ejections.h"
#include "services/volumes/SystemWatch.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/volumes/CustomVolumView.h"
#include "ui/volumes/DiskSizeView.h"

class QStackedWidget;

namespace orrinvale {

/// What the page asks beside the services of all pages; both outlive it. `watch` looks at what
/// `ejections` ejects, and who listens to these tells what stayed.
struct FreeSpaceParts {
    SystemWatch* watch = nullptr;
    Ejections* ejections = nullptr;
};

/// It looks at the volumes only while it is on the screen. The cards are made anew when another
/// volume stands in the place of one, when the level of the warning changes, and not otherwise.
/// Main thread only.
class FreeSpacePage final : public QObject, public Page, private CustomVolumViewDelegate {
    Q_OBJECT
public:
    FreeSpacePage(const PageServices& services, FreeSpaceParts parts);
    ~FreeSpacePage() override;

    [[nodiscard]] QWidget* view() const override { return m_view; }
    void setMainWindow(QWidget* /*window*/) override {}

    [[nodiscard]] const DiskSizeView& diskSizeView() const { return m_diskSizeView; }

    /// Shows what was seen last: new figures in the cards that there are, or new cards.
    void updateNewDiskSizeViewData();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                     const std::string& volumeName) override;
    void browseVolume(const std::string& volRootDir) override;

    void makeView();
    void look(bool isOnScreen);
    void lookNow();
    void rebuild();
    void showEjecting() const;
    void showTitle() const;

    const PageServices m_services;
    const FreeSpaceParts m_parts;
    QPointer<QWidget> m_view;
    QStackedWidget* m_content = nullptr;
    QWidget* m_page = nullptr;  // that the list fills
    class ElidedLabel* m_titleLabel = nullptr;
    class QLabel* m_emptyLabel = nullptr;
    std::shared_ptr<const SystemSight> m_seen;  // in the cards; null before the first look
    std::string m_shownLevel;
    DiskSizeView m_diskSizeView;
    SystemWatch::Observation m_looking;  // null while nobody sees the page
    std::vector<NotificationCenter::Observation> m_observations;
};

[[nodiscard]] PageDescriptor freeSpacePage(const PageServices& services,
                                           const FreeSpaceParts& parts);

}  // namespace orrinvale
