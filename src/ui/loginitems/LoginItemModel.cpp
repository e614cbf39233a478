// Texts of the columns, and what is dragged and dropped.
#include "ui/loginitems/LoginItemModel.h"

#include <QMimeData>
#include <algorithm>
#include <utility>

#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

using Column = TickColumn<LoginRow>;

constexpr int packageWidth = 148;
constexpr int signWidth = 28;

QString nameOf(const LoginRow& row) {
    return QString::fromStdString(row.item.name.empty() ? row.text : row.item.name);
}

QIcon iconOf(const LoginRow& row, const std::function<QIcon(const IconRequest&)>& icons) {
    const QString name = QString::fromStdString(row.item.icon);
    if (!name.isEmpty() && !name.contains(QLatin1Char('/')) && QIcon::hasThemeIcon(name))
        return QIcon::fromTheme(name);
    const std::string& path = row.item.path.empty() ? row.item.file : row.item.path;
    return icons && !path.empty() ? icons({IconRequest::Path, path}) : QIcon();
}

QString sourceOf(const LoginRow& row) {
    if (!row.isListed()) return {};
    if (!row.package.empty()) return QString::fromStdString(row.package);
    return row.item.isPersons && !row.item.isSystems ? LoginItemModel::tr("You")
                                                     : LoginItemModel::tr("The system");
}

QIcon signOf(const LoginRow& row) {
    if (!row.item.fault.empty()) return picture(QStringLiteral("warning"));
    return noteOf(row.item).isEmpty() ? QIcon() : picture(QStringLiteral("info"));
}

Column button(const QString& name, const char* image, bool (*isOffered)(const LoginRow&)) {
    return {.name = name,
            .look = CellLook::Button,
            .width = boxColumnWidth,
            .toolTip = [name, isOffered](
                           const LoginRow& row) { return isOffered(row) ? name : QString(); },
            .icon =
                [image, isOffered](const LoginRow& row) {
                    return isOffered(row) ? picture(QLatin1String(image)) : QIcon();
                }};
}

std::vector<Column> columns(const std::function<QIcon(const IconRequest&)>& icons) {
    return {{.title = LoginItemModel::tr("Starts at login"),
             .look = CellLook::TwoLines,
             .hasBox = true,
             .text = nameOf,
             .second = [](const LoginRow& row) { return noteOf(row.item); },
             .icon = [icons](const LoginRow& row) { return iconOf(row, icons); }},
            {.name = LoginItemModel::tr("Note"),
             .look = CellLook::Sign,
             .width = signWidth,
             .toolTip = [](const LoginRow& row) { return noteOf(row.item); },
             .icon = signOf},
            {.title = LoginItemModel::tr("Brought by"), .width = packageWidth, .text = sourceOf},
            button(LoginItemModel::tr("Show in File Manager"), "search_file.png",
                   [](const LoginRow& row) { return row.isListed(); }),
            button(LoginItemModel::tr("Open"), "open.png",
                   [](const LoginRow& row) { return mayOpen(row); }),
            button(LoginItemModel::tr("Remove"), "delete_loginitem.png",
                   [](const LoginRow& row) { return mayRemove(row); })};
}

}  // namespace

QString noteOf(const LoginItemRecord& item) {
    if (!item.fault.empty()) return inWords(item.fault);
    if (item.onlyIn.empty())
        return item.isForThisDesktop ? QString() : LoginItemModel::tr("not on this desktop");
    QStringList desktops;
    for (const std::string& each : item.onlyIn) desktops.append(QString::fromStdString(each));
    return LoginItemModel::tr("only in %1").arg(desktops.join(QStringLiteral(", ")));
}

bool mayOpen(const LoginRow& row) {
    return row.isListed() && !row.item.path.empty() && row.item.fault.empty();
}

bool mayRemove(const LoginRow& row) { return row.isListed() && row.item.isPersons; }

LoginItemModel::LoginItemModel(Parts parts, QObject* parent)
    : LevelModel(columns(parts.icons), parent), m_parts(std::move(parts)) {}

void LoginItemModel::setRows(LoginRows rows) {
    restart(!rows.empty(), [&] {
        m_rows = std::move(rows);
        ++m_revision;
    });
}

void LoginItemModel::reorder(const std::vector<int>& dragged, int row) {
    const auto isDragged = [&](int each) {
        return std::ranges::find(dragged, each) != dragged.end();
    };
    LoginRows before, moved, behind;
    for (int each = 0; each < static_cast<int>(m_rows.size()); ++each) {
        auto& target = isDragged(each) ? moved : each < row ? before : behind;
        target.push_back(std::move(m_rows[static_cast<std::size_t>(each)]));
    }
    for (LoginRows* const piece : {&moved, &behind})
        std::ranges::move(*piece, std::back_inserter(before));
    setRows(std::move(before));
}

void LoginItemModel::insertText(const MyData& text, int row) {
    LoginRows rows = std::move(m_rows);
    auto made = std::make_unique<LoginRow>();
    made->text = text.nsStr;
    const auto at = std::clamp<std::ptrdiff_t>(row, 0, std::ssize(rows));
    rows.insert(rows.begin() + at, std::move(made));
    setRows(std::move(rows));
}

void LoginItemModel::append(std::unique_ptr<LoginRow> row) {
    LoginRows rows = std::move(m_rows);
    rows.push_back(std::move(row));
    setRows(std::move(rows));
}

std::vector<LoginRow*> LoginItemModel::rowsBelow(LoginRow* above, std::size_t wanted) const {
    std::vector<LoginRow*> rows;
    if (above != nullptr) return rows;
    for (const auto& each : m_rows)
        if (rows.size() < wanted) rows.push_back(each.get());
    return rows;
}

std::size_t LoginItemModel::countBelow(LoginRow* above) const {
    return above == nullptr ? m_rows.size() : 0;
}

std::optional<TickState> LoginItemModel::stateOf(const LoginRow& row) const {
    if (!row.isListed()) return std::nullopt;
    return row.item.starts ? TickState::All : TickState::Nothing;
}

bool LoginItemModel::mayTick(const LoginRow& row) const {
    return row.isListed() &&
           (row.item.starts || (row.item.fault.empty() && row.item.isForThisDesktop));
}

QString LoginItemModel::toolTipOf(const LoginRow& row) const {
    return row.item.command.empty() ? nameOf(row) : QString::fromStdString(row.item.command);
}

QString LoginItemModel::descriptionOf(const LoginRow& row) const { return noteOf(row.item); }

bool LoginItemModel::clickBox(const QModelIndex& index) {
    m_parts.boxClicked(*node(index));
    return true;
}

Qt::ItemFlags LoginItemModel::flags(const QModelIndex& index) const {
    return index.isValid() ? LevelModel::flags(index) | Qt::ItemIsDragEnabled
                           : Qt::ItemFlags(Qt::ItemIsDropEnabled);
}

QStringList LoginItemModel::mimeTypes() const {
    return {rowsType, QStringLiteral("text/uri-list"), QStringLiteral("text/plain")};
}

QMimeData* LoginItemModel::mimeData(const QModelIndexList& indexes) const {
    QStringList rows;
    for (const QModelIndex& each : indexes)
        if (each.column() == Name) rows.append(QString::number(each.row()));
    auto* const data = new QMimeData;
    data->setData(rowsType, rows.join(QLatin1Char(' ')).toLatin1());
    return data;
}

std::vector<int> LoginItemModel::draggedRows(const QMimeData& data) {
    std::vector<int> rows;
    for (const QByteArray& each : data.data(rowsType).split(' '))
        if (!each.isEmpty()) rows.push_back(each.toInt());
    return rows;
}

bool LoginItemModel::dropMimeData(const QMimeData* data, Qt::DropAction /*action*/, int row,
                                  int /*column*/, const QModelIndex& parent) {
    const int place = row >= 0 ? row : parent.isValid() ? parent.row() : rowCount();
    return m_parts.dropped(*data, place);
}

}  // namespace orrinvale
