// PreviewHost: the place of a page's list together with that of its preview.
#pragma once

#include <QBoxLayout>
#include <QWidget>

class QStackedWidget;

namespace orrinvale {

class PreviewPane;
class TCImageButton;
class UserDefaults;

/// Beside the list where there is room for both, below it in a narrow window, and away in one that
/// is low as well; to be seen only while the list is. Main thread only.
class PreviewHost final : public QWidget {
    Q_OBJECT
public:
    /// Takes the place of `content` in the layout of its parent, with it inside; the preview goes
    /// with its page `list` alone.
    PreviewHost(QStackedWidget& content, QWidget& list, PreviewPane& pane);

    /// The switch of it: checkable, with the key F3 while `view` is to be seen, and remembered by
    /// this name. The settings and the name outlive it.
    void setSwitch(TCImageButton& button, QWidget& view, UserDefaults& defaults, const char* name);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    QStackedWidget& m_content;
    QWidget& m_list;
    PreviewPane& m_pane;
    QBoxLayout* m_layout;
    bool m_isWanted = false;
};

/// "previewBtn", for setSwitch().
[[nodiscard]] TCImageButton* makePreviewButton();

}  // namespace orrinvale
