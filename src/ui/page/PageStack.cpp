// PageStack: hidden views leave the layout, so that they do not ask for room.
#include "ui/page/PageStack.h"

#include <QVBoxLayout>

namespace orrinvale {

PageStack::PageStack(const char* name, QWidget* parent) : QWidget(parent) {
    setObjectName(QLatin1String(name));
    (new QVBoxLayout(this))->setContentsMargins({});
}

void PageStack::showView(QWidget* view) {
    if (m_shown != nullptr && m_shown != view) {
        layout()->removeWidget(m_shown);
        m_shown->hide();
    }
    m_shown = view;
    layout()->addWidget(view);
    view->show();
    view->raise();
}

}  // namespace orrinvale
