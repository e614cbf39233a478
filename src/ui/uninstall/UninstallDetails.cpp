#include "ui/uninstall/UninstallDetails.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/ImageTextCell.h"
#include "ui/kit/look/IconScaling.h"
#include "ui/uninstall/UninstallAppsModel.h"

namespace orrinvale {
namespace {

constexpr int detailPictureSide = 200, panelWidth = 600;
constexpr qsizetype nameLetters = 28, pathLetters = 70;

QString moment(const Date& date) {
    constexpr std::int64_t perMillisecond = 1'000'000;
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(date.nanoseconds / perMillisecond),
                              QLocale::ShortFormat);
}

QPixmap largePicture(const QIcon& icon, qreal scale) {
    // A small picture stands in the middle, at most twice its size, else it would blur.
    const QImage drawn = icon.pixmap(QSize(detailPictureSide, detailPictureSide), scale).toImage();
    const int side = qRound(detailPictureSide * scale);
    QImage grown =
        drawn.scaled(std::min(side, 2 * drawn.width()), std::min(side, 2 * drawn.height()),
                     Qt::KeepAspectRatio, Qt::SmoothTransformation);
    grown.setDevicePixelRatio(1);
    QImage whole(side, side, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    QPainter painter(&whole);
    painter.drawImage(QPoint((side - grown.width()) / 2, (side - grown.height()) / 2), grown);
    painter.end();
    whole.setDevicePixelRatio(scale);
    ImageObject image(whole);
    const QImage large = IconScaling::get200X200BigImage(image, false, 1.0F).rendered(scale);
    return QPixmap::fromImage(large);
}

}  // namespace

QString UninstallDetails::shownName(const QString& name) {
    return name.size() <= nameLetters ? name : ImageTextCell::cutText(name, nameLetters);
}

QString UninstallDetails::shownPath(const QString& path) {
    return path.size() <= pathLetters ? path : ImageTextCell::cutText(path, pathLetters);
}

UninstallDetails::UninstallDetails(const AppItems& item, const QIcon& icon) {
    setObjectName(QStringLiteral("listWindow"));
    auto* const picture = new QLabel;
    picture->setPixmap(largePicture(icon, devicePixelRatioF()));
    picture->setFixedSize(detailPictureSide, detailPictureSide);
    m_lines = new QVBoxLayout;
    m_lines->setSpacing(Theme::gapSmall);
    m_lines->addStretch();
    const QString name = onOneLine(QString::fromStdString(item.name));
    getTextFiledLabel(shownName(name), "nameLabel", name)
        ->setFont(Theme::shared().font(Theme::Text::Heading));
    const QString version = QString::fromStdString(item.bundleVersion.value_or(std::string()));
    const QString kind = kindWord(item.record->type);
    getTextFiledLabel(version.isEmpty() ? kind : kind + QStringLiteral(", ") + version,
                      "kindLabel");
    m_size = getTextFiledLabel(tr("Measuring ..."), "sizeLabel");
    if (item.date) getTextFiledLabel(tr("Created: %1").arg(moment(*item.date)), "dateLabel");
    m_use = getTextFiledLabel({}, "useLabel");
    m_use->hide();
    const QString path = onOneLine(QString::fromStdString(item.path));
    QLabel* const pathLabel = getTextFiledLabel(shownPath(path), "pathLabel", path);
    pathLabel->setForegroundRole(QPalette::PlaceholderText);
    m_lines->addStretch();
    okButton = named(new TextImageButton(tr("OK"), TextImageButton::Role::Primary), "okButton");
    auto* const row = new QHBoxLayout;
    row->setSpacing(Theme::gapHuge);
    row->addWidget(picture, 0, Qt::AlignTop);
    row->addLayout(m_lines, 1);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    column->addLayout(row);
    column->addWidget(pathLabel);  // the whole width, where 70 letters have room
    column->addWidget(okButton, 0, Qt::AlignTrailing);
}

QSize UninstallDetails::sizeHint() const { return {panelWidth, layout()->sizeHint().height()}; }

QLabel* UninstallDetails::getTextFiledLabel(const QString& text, const char* withName,
                                            const QString& withToolTip) {
    QLabel* const made = makeLabel(withName, Theme::Text::Body);
    made->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    made->setText(text);
    if (!withToolTip.isEmpty()) made->setToolTip(asToolTip(withToolTip));
    m_lines->addWidget(made);
    return made;
}

void UninstallDetails::showSize(const ApplicationDetails& details) {
    const std::string size = details.bytes ? UtilityFunction::convertVolSpace(*details.bytes) : "";
    const QString shown = shownSize(size);
    m_size->setText(size.empty()     ? QStringLiteral("--")
                    : details.isUpTo ? tr("up to %1").arg(shown)
                                     : shown);
    if (!details.lastUse) return;
    m_use->setText(tr("Last used: %1").arg(moment({*details.lastUse})));
    m_use->show();
}

}  // namespace orrinvale
