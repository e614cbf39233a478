// V3MainListView: the summary of one category: its box, what was found, and what was cleaned.
#pragma once

#include <QWidget>
#include <array>
#include <cstdint>
#include <string>

#include "engine/base/NotificationCenter.h"
#include "ui/kit/lists/paintTickBox.h"

class QLabel;

namespace orrinvale {

class Animation;
class QnProgressView;
class TickBox;

/// What was found of each category, as texts. They begin as "0.00KB".
struct FoundSizes {
    std::string sysCachesSize, usrCachesSize, sysLogsSize, usrLogsSize, usrTrashSize,
        usrDownloadsSize;

    FoundSizes() { comeBackStringValue(); }
    void comeBackStringValue();
    /// Of the category with this context of notices; null for another context.
    [[nodiscard]] std::string* of(const std::string& context);
    /// By category index. Throws std::out_of_range for none.
    [[nodiscard]] const std::string& at(std::size_t category) const;
};

/// A click beside the box chooses the row. Main thread only.
class V3MainListView final : public QWidget {
    Q_OBJECT
public:
    /// The centre outlives it.
    V3MainListView(std::int32_t listViewTag, const NotificationCenter& notifications,
                   QWidget* parent = nullptr);

    [[nodiscard]] std::int32_t listViewTag() const { return m_listViewTag; }

    /// A size of the category with this context: keeps it and posts "refNewTableViewSizeLabel".
    void observeFoundText(const std::string& context, const std::string& size);
    [[nodiscard]] const std::string& getFoundText() const;

    void initSizeLable(const std::string& size);
    [[nodiscard]] const std::string& sizeText() const { return m_size; }
    /// What was cleaned; nothing for an empty text.
    void setSizeStrLabelString(const QString& size);

    /// 0, 1, 2.
    void refCheckBox(std::int32_t state);
    void setBoxHidden(bool isHidden);
    /// Its share of all that was found, 0 to 1.
    void showShare(double share);

    void startPrograssAnimation();
    void stopPrograssAnimation();
    /// A clean of this row begins: in the place of its share stands what showCleaned() is told.
    void minishPrograss();
    /// How much of what is to go is gone, in bytes.
    void showCleaned(std::uint64_t gone, std::uint64_t all);
    void setAnimationFinish();

    [[nodiscard]] QSize sizeHint() const override { return {460, rowDistance}; }

    static constexpr int rowDistance = 73;  ///< from one row to the next, where there is room
    static constexpr int leastHeight = 44;

Q_SIGNALS:
    void boxClicked();
    void chosen();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void layOut();
    void showAnimation(bool isOn);

    const std::int32_t m_listViewTag;
    const NotificationCenter& m_notifications;
    FoundSizes m_found;
    std::string m_size;
    bool m_hasShare = false;
    bool m_isCleaning = false;
    TickBox* checkBoxButton = nullptr;
    QLabel* sizeLabel = nullptr;
    QLabel* cleanSizeLabel = nullptr;
    Animation* animation = nullptr;
    QnProgressView* progress = nullptr;
};

}  // namespace orrinvale
