// SegmentedControl: a few words beside each other, of which one holds.
#pragma once

#include <QStringList>
#include <QWidget>
#include <vector>

class QAbstractButton;

namespace orrinvale {

/// One stop of the Tab key; the arrow keys go from segment to segment and choose. To screen readers
/// its segments are buttons of which one is on. Main thread only.
class SegmentedControl final : public QWidget {
    Q_OBJECT
public:
    explicit SegmentedControl(const QStringList& words, QWidget* parent = nullptr);

    /// Tells nobody. There is no segment of another number.
    void setSelectedSegment(int segment);
    [[nodiscard]] int selectedSegment() const;
    /// A hidden one is not chosen by anybody; it is selected for whoever sets it all the same.
    void setSegmentShown(int segment, bool isShown);
    [[nodiscard]] QAbstractButton* segment(int number) const;

Q_SIGNALS:
    /// By a person.
    void chosen(int segment);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<QAbstractButton*> m_segments;
};

}  // namespace orrinvale
