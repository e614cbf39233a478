// DropInvitation: what lies over a full view while a folder is dragged over it. DragView.h shows
// and hides it.
#pragma once

#include <QWidget>

namespace orrinvale {

/// A tint and a frame over all of its parent, with a sentence in the middle. The pointer goes
/// through it. Main thread only.
class DropInvitation final : public QWidget {
    Q_OBJECT
public:
    DropInvitation(QString text, QWidget& over);

    void setShown(bool isShown);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString m_text;
};

}  // namespace orrinvale
