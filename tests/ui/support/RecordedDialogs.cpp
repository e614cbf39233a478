// RecordedDialogs: see RecordedDialogs.h.
#include "ui/support/RecordedDialogs.h"

#include <QMetaObject>

#include "support/test.h"

namespace orrinvale::testing {

RecordedDialogs::~RecordedDialogs() {
    EXPECT_TRUE(m_buttons.empty()) << m_buttons.size() << " answers to alerts that never came";
    EXPECT_TRUE(m_choices.empty()) << m_choices.size() << " paths that nobody asked for";
}

void RecordedDialogs::alert(QWidget* /*window*/, const Alert& alert, Answer answered) {
    m_alerts.push_back(alert);
    int button = escapeButton(alert);
    if (m_buttons.empty()) {
        ADD_FAILURE() << "unexpected alert: " << alert.title.toStdString() << " / "
                      << alert.text.toStdString();
    } else {
        button = m_buttons.front();
        m_buttons.pop_front();
        EXPECT_LT(button, alert.buttons.size()) << "the alert has no such button";
    }
    QMetaObject::invokeMethod(
        &m_context, [answered = std::move(answered), button] { answered(button); },
        Qt::QueuedConnection);
}

void RecordedDialogs::choosePaths(QWidget* /*window*/, const PathChoice& choice, Paths chosen) {
    m_asked.push_back(choice);
    Strings paths;
    if (m_choices.empty()) {
        ADD_FAILURE() << "unexpected choice: " << choice.title.toStdString();
    } else {
        paths = std::move(m_choices.front());
        m_choices.pop_front();
    }
    QMetaObject::invokeMethod(
        &m_context, [chosen = std::move(chosen), paths = std::move(paths)] { chosen(paths); },
        Qt::QueuedConnection);
}

}  // namespace orrinvale::testing
