// PreviewHost: the place of a page's list together with that of its preview.
#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <map>

class QAbstractItemView;
class QStackedWidget;

namespace orrinvale {

class PreviewPane;
class TCImageButton;
class UserDefaults;

/// Beside the list where there is room for both, below it in a narrow window, and away in one that
/// is low as well; to be seen only while a list is. Main thread only.
class PreviewHost final : public QWidget {
    Q_OBJECT
public:
    /// Takes the place of `content` in the layout of its parent, with it inside. From the width
    /// `leastBeside` on, in points, list and preview have room beside each other.
    PreviewHost(QStackedWidget& content, PreviewPane& pane, int leastBeside);

    /// A list to which the preview belongs, with the page of the content that holds it, or is it.
    void addList(QWidget& page, QAbstractItemView& list);

    /// The switch of it: checkable, with the key F3 while `view` is to be seen, and remembered by
    /// this name. The settings and the name outlive it.
    void setSwitch(TCImageButton& button, QWidget& view, UserDefaults& defaults, const char* name);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();
    void place(bool isBeside);

    QStackedWidget& m_content;
    std::map<const QWidget*, QAbstractItemView*> m_lists;  // by their pages
    PreviewPane& m_pane;
    const int m_leastBeside;
    QBoxLayout* m_layout;
    bool m_isWanted = false;
};

/// "previewBtn", for setSwitch().
[[nodiscard]] TCImageButton* makePreviewButton();

}  // namespace orrinvale
