// DiskSizeView: all volumes as cards in a list that scrolls.
#pragma once

#include <QPointer>
#include <QScrollArea>
#include <functional>
#include <memory>
#include <vector>

#include "ui/volumes/MyMacView.h"

class QWidget;

namespace orrinvale {

/// Main thread only.
class DiskSizeView final {
public:
    /// The delegate outlives the cards.
    DiskSizeView(VolumeList volumes, CustomVolumViewDelegate& delegate);
    DiskSizeView(const DiskSizeView&) = delete;
    DiskSizeView& operator=(const DiskSizeView&) = delete;

    /// Fills the page, which has a layout, with a card for each volume, in place of the cards that
    /// this made before.
    void initDiskSizeView(QWidget* page);

    /// Shows the figures of a new list, row by row. Does nothing while either is empty. Throws
    /// std::out_of_range for a list that is longer than the rows: a list of another length is to be
    /// made anew.
    void updateViewAndData();

    [[nodiscard]] const std::vector<CustomVolumView*>& allItemArr() const { return m_allItemArr; }
    /// Null before the first initDiskSizeView().
    [[nodiscard]] QScrollArea* scrollArea() const { return m_scrollArea; }

private:
    const VolumeList m_volumes;
    CustomVolumViewDelegate& m_delegate;
    std::vector<CustomVolumView*> m_allItemArr;  // owned by the list
    QPointer<QScrollArea> m_scrollArea;
};

}  // namespace orrinvale
