// columns() says what each column shows; LevelModel keeps the rows.
#include "ui/uninstall/UninstallAppsModel.h"

#include <QDateTime>
#include <QLocale>
#include <utility>

#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/ImageTextCell.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

using Sort = UninstallList::Sort;

constexpr int signColumnWidth = 28, kindColumnWidth = 84, sizeColumnWidth = 128;
constexpr int dayColumnWidth = 96;
constexpr ImageTextCell nameCell{2};

QString day(const std::optional<Date>& date) {
    if (!date) return {};
    constexpr std::int64_t perMillisecond = 1'000'000;
    const auto moment = QDateTime::fromMSecsSinceEpoch(date->nanoseconds / perMillisecond);
    return QLocale().toString(moment.date(), QLocale::ShortFormat);
}

QString itemText(const std::string& bytes) { return QString::fromStdString(bytes); }

QString signText(const AppItems& item) {
    return item.isSystemApp ? UninstallAppsModel::tr("System program") : QString();
}

std::vector<TickColumn<AppItems>> columns(
    const std::function<QIcon(const std::string& name)>& icon) {
    return {
        {.name = UninstallAppsModel::tr("Ticked"), .look = CellLook::Box, .width = boxColumnWidth},
        {.title = UninstallAppsModel::tr("Application"),
         .look = CellLook::TwoLines,
         .sortKey = int(Sort::Name),
         .text = [](const AppItems& item) { return nameCell.primaryText(itemText(item.name)); },
         .second =
             [](const AppItems& item) {
                 return itemText(item.bundleVersion.value_or(std::string()));
             },
         .icon = [icon](const AppItems& item) { return icon(item.record->icon); }},
        {.name = UninstallAppsModel::tr("System program"),
         .look = CellLook::Sign,
         .width = signColumnWidth,
         .toolTip = signText,
         .icon =
             [](const AppItems& item) {
                 return item.isSystemApp ? picture(QStringLiteral("sign_system")) : QIcon();
             }},
        {.title = UninstallAppsModel::tr("Kind"),
         .width = kindColumnWidth,
         .sortKey = int(Sort::Kind),
         .text = [](const AppItems& item) { return kindWord(item.record->type); }},
        {.title = UninstallAppsModel::tr("Size"),
         .look = CellLook::Figure,
         .width = sizeColumnWidth,
         .sortKey = int(Sort::Size),
         .text = applicationSizeText},
        {.title = UninstallAppsModel::tr("Last Used"),
         .width = dayColumnWidth,
         .sortKey = int(Sort::LastUse),
         .text = [](const AppItems& item) { return day(item.lastUse); }},
        {.title = UninstallAppsModel::tr("Installed"),
         .width = dayColumnWidth,
         .sortKey = int(Sort::Date),
         .text = [](const AppItems& item) { return day(item.date); }},
        {.name = UninstallAppsModel::tr("Details"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip = [](const AppItems& /*item*/) { return UninstallAppsModel::tr("Details"); },
         .icon =
             [](const AppItems& /*item*/) { return picture(QStringLiteral("search_file.png")); }},
    };
}

}  // namespace

QString kindWord(ApplicationType type) {
    switch (type) {
        case ApplicationType::App: return UninstallAppsModel::tr("Bundle");
        case ApplicationType::Flatpak: return UninstallAppsModel::tr("Flatpak");
        case ApplicationType::Snap: return UninstallAppsModel::tr("Snap");
        case ApplicationType::Deb: return UninstallAppsModel::tr("Package");
        case ApplicationType::AppImage: return UninstallAppsModel::tr("AppImage");
        case ApplicationType::Folder: return UninstallAppsModel::tr("Folder");
    }
    return {};
}

QString kindRowTitle(ApplicationType type) {
    switch (type) {
        case ApplicationType::App: return UninstallAppsModel::tr("Bundles");
        case ApplicationType::Flatpak: return UninstallAppsModel::tr("Flatpaks");
        case ApplicationType::Snap: return UninstallAppsModel::tr("Snaps");
        case ApplicationType::Deb: return UninstallAppsModel::tr("Packages");
        case ApplicationType::AppImage: return UninstallAppsModel::tr("AppImages");
        case ApplicationType::Folder: return UninstallAppsModel::tr("Folders");
    }
    return {};
}

QString applicationSizeText(const AppItems& item) {
    if (item.fileSize.empty()) return QStringLiteral("--");
    const QString size = shownSize(item.fileSize);
    return item.isUpTo ? UninstallAppsModel::tr("up to %1").arg(size) : size;
}

UninstallAppsModel::UninstallAppsModel(const UninstallList& list, Workings workings,
                                       QObject* parent)
    : LevelModel(columns(workings.icon), parent), m_list(list), m_workings(std::move(workings)) {
    restart(true, [] {});
}

QModelIndex UninstallAppsModel::indexOf(const AppItems* item, int column) const {
    for (int row = 0; row < rowCount(); ++row)
        if (node(index(row, column)) == item) return index(row, column);
    return {};
}

std::vector<AppItems*> UninstallAppsModel::rowsBelow(AppItems* /*above*/,
                                                     std::size_t wanted) const {
    std::vector<AppItems*> rows;
    for (const auto& each : m_list.allApplications()) {
        if (rows.size() == wanted) break;
        rows.push_back(each.get());
    }
    return rows;
}

std::size_t UninstallAppsModel::countBelow(AppItems* /*above*/) const {
    return m_list.allApplications().size();
}

std::optional<TickState> UninstallAppsModel::stateOf(const AppItems& item) const {
    return item.bIsSelected ? TickState::All : TickState::Nothing;
}

bool UninstallAppsModel::mayTick(const AppItems& item) const {
    return UninstallList::mayTick(item) && (!m_workings.mayTick || m_workings.mayTick());
}

QString UninstallAppsModel::toolTipOf(const AppItems& item) const {
    QStringList lines{itemText(item.name), itemText(item.path)};
    if (item.record->isOurs)
        lines.push_back(tr("This is Orrinvale, which does not remove itself."));
    if (item.isSystemApp) lines.push_back(signText(item));
    return lines.join(QLatin1Char('\n'));
}

QString UninstallAppsModel::descriptionOf(const AppItems& item) const {
    QStringList words{itemText(item.bundleVersion.value_or(std::string())), signText(item)};
    words.removeAll(QString());
    return words.join(QStringLiteral(", "));
}

bool UninstallAppsModel::isGrey(const AppItems& item) const { return item.record->isOurs; }

bool UninstallAppsModel::clickBox(const QModelIndex& index) {
    AppItems* const item = node(index);
    if (item == nullptr || !m_workings.clickBox) return false;
    m_workings.clickBox(*item);
    return true;
}

}  // namespace orrinvale
