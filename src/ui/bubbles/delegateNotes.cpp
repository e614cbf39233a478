#include "ui/bubbles/delegateNotes.h"

#include <QCoreApplication>
#include <any>
#include <cmath>

#include "engine/text/Localized.h"
#include "engine/volumes/ZvVolumeInfo.h"
#include "ui/bubbles/StandingBubble.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int noteHeight = 50;

std::string textAt(const UserInfo& info, const char* key) {
    const auto found = info.find(key);
    const auto* const text =
        found == info.end() ? nullptr : std::any_cast<std::string>(&found->second);
    return text != nullptr ? *text : std::string();
}

QString lineOf(const char* key, const std::string& figure) {
    return QString::fromStdString(getLocalizedString(key) + ' ' + figure);
}

}  // namespace

HomeDisk HomeDisk::of(const ZvVolumeInfo& boot, float spaceAlarm) {
    // No level that a person can set lies outside, and a float beyond an integer has no integer.
    constexpr float most = 1'000'000;
    const float level = std::fmin(std::fmax(warningLevel(spaceAlarm), -most), most);
    return {boot.nFreeSize, spaceOf(boot).total, static_cast<std::int32_t>(level)};
}

bool HomeDisk::getWarningValue() const {
    return isShortOfSpace({homeDiskFreeSpace, homeDiskTotoleSpace},
                          static_cast<float>(homeDiskWarningSize));
}

QIcon statusImage(const ZvVolumeInfo* boot, float spaceAlarm) {
    if (boot == nullptr) return {};
    const std::string name = usagePictureName(UsagePicture::Status, spaceOf(*boot),
                                              warningLevel(spaceAlarm), LocalVolume);
    return name.empty() ? QIcon() : picture(QString::fromStdString(name));
}

QPointF statusFrame(const std::optional<Rect>& mainScreen) {
    const Rect frame = mainScreen.value_or(Rect{});
    const AttachedPoint anchor = bubbleAnchor(frame.width, frame.height);
    return {anchor.x, anchor.y};
}

std::unique_ptr<QLabel> noteField(const QString& text, const QRect& place, int pixels) {
    auto field = std::make_unique<QLabel>(text);
    field->setTextFormat(Qt::PlainText);
    field->setGeometry(place);
    QFont font(QStringLiteral("Lucida Grande"));
    font.setPixelSize(pixels);
    font.setBold(true);
    field->setFont(font);
    QPalette palette = field->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    field->setPalette(palette);
    return field;
}

std::unique_ptr<QWidget> noteOf(std::unique_ptr<QLabel> view, std::unique_ptr<QLabel> withBView) {
    auto container = std::make_unique<QWidget>();
    container->resize(withBView ? 280 : 220, noteHeight);
    for (auto* const each : {&view, &withBView})
        if (*each) each->release()->setParent(container.get());
    return container;
}

std::unique_ptr<QLabel> warningField(const QString& name) {
    return noteField(QCoreApplication::translate("AppDelegate", "%1 is error!").arg(name),
                     {10, 5, 180, 40}, 12);
}

// One above the other, as 20 and 5 above the lower edge.
CleanedFields cleanedFields(const Notification& notification) {
    const std::string count = textAt(notification.userInfo, "CLEAN_FILES_COUNT");
    const std::string size = textAt(notification.userInfo, "FREE_SPACE_SIZE");
    return {noteField(lineOf("CLEAN_FILES_COUNT", count), {10, noteHeight - 20 - 20, 280, 20}),
            noteField(lineOf("CLEAN_FILES_SIZE", size), {10, noteHeight - 5 - 20, 280, 20})};
}

}  // namespace orrinvale
