// The buttons stay and are given other texts: an arrow key that is held down changes them thirty
// times a second.
#include "ui/preview/PreviewFolders.h"

#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QTextLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/paths.h"
#include "ui/kit/chrome/DrawnButton.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"

namespace orrinvale {

/// A folder's path, broken wherever the line ends.
class FolderButton final : public DrawnButton<QAbstractButton> {
public:
    FolderButton() : DrawnButton(nullptr) {
        setFocusPolicy(Qt::StrongFocus);
        setCursor(Qt::PointingHandCursor);
        QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }
    void setStrong(bool isStrong) {
        setFont(Theme::shared().font(isStrong ? Theme::Text::BodyStrong : Theme::Text::Body));
        updateGeometry();
    }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override { return layOut(nullptr, width); }
    [[nodiscard]] QSize sizeHint() const override { return {1, layOut(nullptr, width())}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const ButtonLook look = buttonLook(*this);
        if (look == ButtonLook::Hover || look == ButtonLook::Pressed)
            painter.fillRect(
                rect(), Theme::shared().color(look == ButtonLook::Hover ? Theme::Color::Hover
                                                                        : Theme::Color::Pressed));
        painter.setPen(palette().color(QPalette::WindowText));
        static_cast<void>(layOut(&painter, width()));
        drawFocus(painter, Theme::radiusSmall);
    }

private:
    // Draws it where there is a painter; the height in points.
    int layOut(QPainter* painter, int width) const {
        QTextLayout layout(text(), font());
        QTextOption option(Qt::AlignLeading);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTextDirection(Qt::LeftToRight);  // of paths, in every language
        layout.setTextOption(option);
        layout.beginLayout();
        qreal bottom = Theme::gapTiny;
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(std::max(1, width - 2 * Theme::gapTiny));
            line.setPosition({Theme::gapTiny, bottom});
            bottom += line.height();
        }
        layout.endLayout();
        if (painter != nullptr) layout.draw(painter, {});
        return static_cast<int>(bottom) + Theme::gapTiny;
    }
};

PreviewFolders::PreviewFolders(QWidget* parent)
    : QWidget(parent),
      m_title(makeLabel("previewCopies", Theme::Text::Caption, QPalette::PlaceholderText)),
      m_more(makeLabel("previewMoreCopies", Theme::Text::Caption, QPalette::PlaceholderText)),
      m_column(new QVBoxLayout) {
    for (QLabel* const label : {m_title, m_more}) {
        label->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
        label->setIndent(Theme::gapTiny);  // as the folders below it
        label->setMinimumWidth(1);
    }
    auto* const inside = new QWidget;
    inside->setAutoFillBackground(false);
    inside->setLayout(m_column);
    m_column->setContentsMargins({});
    m_column->setSpacing(0);
    m_column->addWidget(m_more);
    m_column->addStretch();
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumSize(1, 1);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    area->setWidget(inside);
    inside->setAutoFillBackground(false);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapTiny);
    column->addWidget(m_title);
    column->addWidget(area, 1);
}

FolderButton& PreviewFolders::button(std::size_t index) {
    while (m_buttons.size() <= index) {
        auto* const made = named(new FolderButton, "previewFolder");
        m_column->insertWidget(static_cast<int>(m_buttons.size()), made);
        m_buttons.push_back(made);
    }
    return *m_buttons[index];
}

void PreviewFolders::setPaths(const std::vector<std::string>& paths, std::size_t total,
                              const std::vector<std::string>& shown) {
    m_title->setText(total <= 1
                         ? tr("In this folder")
                         : tr("%Ln copies, in these folders", nullptr, static_cast<int>(total)));
    for (std::size_t i = 0; i < paths.size(); ++i) {
        FolderButton& each = button(i);
        const std::string& path = paths[i];
        const QString folder = onOneLine(QString::fromStdString(folderOf(path)));
        each.setText(folder);
        each.setShortcut({});  // an ampersand in a path is no key
        each.setStrong(std::ranges::find(shown, path) != shown.end());
        each.setAccessibleName(tr("Open the folder %1").arg(folder));
        each.setToolTip(asToolTip(
            tr("Shows %1 in the file manager").arg(onOneLine(QString::fromStdString(path)))));
        each.disconnect(this);
        connect(&each, &QAbstractButton::clicked, this,
                [this, path] { Q_EMIT folderWanted(path); });
        each.show();
    }
    for (std::size_t i = paths.size(); i < m_buttons.size(); ++i) m_buttons[i]->hide();
    m_more->setVisible(total > paths.size());
    m_more->setText(tr("and %Ln more", nullptr, static_cast<int>(total - paths.size())));
}

}  // namespace orrinvale
