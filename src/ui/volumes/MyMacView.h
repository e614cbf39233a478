// MyMacView: the boot volume alone, for the overview of the cleaning page.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "engine/volumes/SystemSight.h"

namespace orrinvale {

class CustomVolumView;
class CustomVolumViewDelegate;
class NotificationCenter;

/// The volumes as they stand now, in the platform's order.
using VolumeList = std::function<std::vector<SeenVolume>()>;

/// Main thread only.
class MyMacView final : public QWidget {
    Q_OBJECT
public:
    /// Posts "FreeTotleArr" with the boot volume's texts, where there is one. Centre and delegate
    /// outlive the view.
    MyMacView(VolumeList volumes, const NotificationCenter& notifications,
              CustomVolumViewDelegate& delegate, QWidget* parent = nullptr);

    /// Shows the figures of the list's first volume, which is taken for the boot volume. Does
    /// nothing where there was none at first.
    void updateViewAndData();

    [[nodiscard]] CustomVolumView* customView() const { return m_customView; }  ///< null for none
    /// What the card compares with. It keeps the level that it was made with.
    [[nodiscard]] const std::string& level() const { return m_level; }

private:
    const VolumeList m_volumes;
    const std::string m_level;
    CustomVolumView* m_customView = nullptr;
};

}  // namespace orrinvale
