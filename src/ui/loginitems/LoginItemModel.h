// LoginItemModel: the rows of the login items page. LoginItemController.h fills and shows it.
#pragma once

#include <QIcon>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/IconRequest.h"
#include "platform/login_items.h"
#include "ui/kit/lists/LevelModel.h"

class QMimeData;

namespace orrinvale {

/// The row that a plain text makes which is dropped among the items. It lasts until the next
/// reload.
class MyData final {
public:
    [[nodiscard]] static MyData newWithString(std::string text) { return MyData(std::move(text)); }
    explicit MyData(std::string text) : nsStr(std::move(text)) {}
    std::string nsStr;
};

struct LoginRow {
    LoginItemRecord item;
    std::string package;  ///< that brought it; empty where that is not known
    std::string text;     ///< of a row that is no item

    /// Whether an entry stands behind it: neither a text nor what is only about to be added.
    [[nodiscard]] bool isListed() const { return !item.file.empty(); }
};
using LoginRows = std::vector<std::unique_ptr<LoginRow>>;

/// Main thread only.
class LoginItemModel final : public LevelModel<LoginRow> {
    Q_OBJECT
public:
    enum Column { Name, Note, Package, View, Open, DeleteItem };
    static inline const QString rowsType = QStringLiteral("MyPrivateTableViewDataType");

    struct Parts {
        std::function<QIcon(const IconRequest&)> icons;
        std::function<void(const LoginRow& row)> boxClicked;
        /// Something was dropped before the row of that number; false where it is not taken.
        std::function<bool(const QMimeData& data, int row)> dropped;
    };
    explicit LoginItemModel(Parts parts, QObject* parent = nullptr);

    void setRows(LoginRows rows);
    [[nodiscard]] const LoginRows& rows() const { return m_rows; }
    /// Puts the dragged rows, in their order, before the row of that number. The system is not
    /// told, so that it holds until the next reload.
    void reorder(const std::vector<int>& dragged, int row);
    void insertText(const MyData& text, int row);
    void append(std::unique_ptr<LoginRow> row);
    void setPackage(std::size_t row, std::string package) {
        m_rows[row]->package = std::move(package);
    }

    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Never a move: the source would take away what it gave.
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    [[nodiscard]] static std::vector<int> draggedRows(const QMimeData& data);

protected:
    [[nodiscard]] std::vector<LoginRow*> rowsBelow(LoginRow* above,
                                                   std::size_t wanted) const override;
    [[nodiscard]] std::size_t countBelow(LoginRow* above) const override;
    [[nodiscard]] std::uint64_t revision() const override { return m_revision; }
    [[nodiscard]] std::optional<TickState> stateOf(const LoginRow& row) const override;
    [[nodiscard]] bool mayTick(const LoginRow& row) const override;
    [[nodiscard]] QString toolTipOf(const LoginRow& row) const override;
    [[nodiscard]] QString descriptionOf(const LoginRow& row) const override;
    [[nodiscard]] bool isGrey(const LoginRow& row) const override {
        return row.isListed() && !row.item.starts;
    }
    bool clickBox(const QModelIndex& index) override;

private:
    const Parts m_parts;
    LoginRows m_rows;
    std::uint64_t m_revision = 0;
};

/// What is to be said of an item besides whether it starts: that its program is gone, or where
/// it starts and where not. Empty for most.
[[nodiscard]] QString noteOf(const LoginItemRecord& item);

/// Whether there is something to start, and whether the entry is the person's to take away.
[[nodiscard]] bool mayOpen(const LoginRow& row);
[[nodiscard]] bool mayRemove(const LoginRow& row);

}  // namespace orrinvale
