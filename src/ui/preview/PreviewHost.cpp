// The pane has a size of its own: a share of the place, within bounds.
#include "ui/preview/PreviewHost.h"

#include <QAbstractItemView>
#include <QKeySequence>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
#include <algorithm>

#include "engine/settings/UserDefaults.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
namespace {

// In points. Of a low window the list gets all.
constexpr int leastBelow = 340;
constexpr int leastPaneWidth = 280, mostPaneWidth = 560;
constexpr int leastPaneHeight = 170, mostPaneHeight = 300;

int shareOf(int whole, int least, int most) { return std::clamp(whole * 2 / 5, least, most); }

}  // namespace

PreviewHost::PreviewHost(QStackedWidget& content, PreviewPane& pane, int leastBeside)
    : m_content(content),
      m_pane(pane),
      m_leastBeside(leastBeside),
      m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this)) {
    setObjectName(QStringLiteral("previewHost"));
    if (QWidget* const around = content.parentWidget(); around != nullptr && around->layout())
        delete around->layout()->replaceWidget(&content, this);
    m_layout->setContentsMargins({});
    m_layout->setSpacing(0);
    m_layout->addWidget(&content, 1);
    m_layout->addWidget(&pane);
    pane.hide();
    connect(&content, &QStackedWidget::currentChanged, this, &PreviewHost::arrange);
}

void PreviewHost::addList(QWidget& page, QAbstractItemView& list) {
    m_lists[&page] = &list;
    arrange();
}

void PreviewHost::setSwitch(TCImageButton& button, QWidget& view, UserDefaults& defaults,
                            const char* name) {
    button.setCheckable(true);
    m_isWanted = defaults.boolForKey(name);
    button.setChecked(m_isWanted);
    connect(&button, &QAbstractButton::toggled, this, [this, &defaults, name](bool isOn) {
        m_isWanted = isOn;
        defaults.setBool(isOn, name);
        arrange();
    });
    auto* const key = new QShortcut(QKeySequence(Qt::Key_F3), &view);
    connect(key, &QShortcut::activated, &button, &QAbstractButton::click);
    arrange();
}

void PreviewHost::arrange() {
    const bool isBeside = width() >= m_leastBeside;
    const auto before = m_layout->direction();
    const bool wasShown = m_pane.isVisible();
    place(isBeside);
    const auto found = m_lists.find(m_content.currentWidget());
    m_pane.setVisible(m_isWanted && found != m_lists.end() && (isBeside || height() >= leastBelow));
    // The list has become lower, and what is looked at shall be seen in it.
    if (m_pane.isVisible() && (!wasShown || m_layout->direction() != before))
        QTimer::singleShot(0, found->second,
                           [list = found->second] { list->scrollTo(list->currentIndex()); });
}

void PreviewHost::place(bool isBeside) {
    m_layout->setDirection(isBeside ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_pane.setDirection(isBeside ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    if (isBeside) {
        m_pane.setMinimumHeight(0);
        m_pane.setMaximumHeight(QWIDGETSIZE_MAX);
        m_pane.setFixedWidth(shareOf(width(), leastPaneWidth, mostPaneWidth));
    } else {
        m_pane.setMinimumWidth(0);
        m_pane.setMaximumWidth(QWIDGETSIZE_MAX);
        m_pane.setFixedHeight(shareOf(height(), leastPaneHeight, mostPaneHeight));
    }
}

void PreviewHost::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

TCImageButton* makePreviewButton() {
    TCImageButton* const button =
        makeImageButton("previewBtn", QStringLiteral("preview_pane"),
                        PreviewHost::tr("Show a preview beside the list (F3)"));
    button->setAccessibleName(PreviewHost::tr("Preview"));
    return button;
}

}  // namespace orrinvale
