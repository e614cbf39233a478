// PageStack: the place in a window where a page shows one of its views at a time.
#pragma once

#include <QPointer>
#include <QWidget>

namespace orrinvale {

/// Main thread only.
class PageStack final : public QWidget {
    Q_OBJECT
public:
    explicit PageStack(const char* name, QWidget* parent = nullptr);

    /// Shows the view in place of the one on show, which waits hidden. Takes the view over the
    /// first time. The keyboard is the page's matter: what had it may be gone.
    void showView(QWidget* view);

private:
    QPointer<QWidget> m_shown;
};

}  // namespace orrinvale
