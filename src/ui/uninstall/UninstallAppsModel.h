// UninstallAppsModel: the applications that are shown, as a table. UninstallList has them;
// UninstallAppsViews.h shows it.
#pragma once

#include <QIcon>
#include <functional>
#include <string>
#include <vector>

#include "engine/uninstall/UninstallList.h"
#include "ui/kit/lists/LevelModel.h"

namespace orrinvale {

/// What a kind is called: of one row, and of many.
[[nodiscard]] QString kindWord(ApplicationType type);
[[nodiscard]] QString kindRowTitle(ApplicationType type);
/// "up to 1.25 GB", or "--" where it is not known.
[[nodiscard]] QString applicationSizeText(const AppItems& item);

/// Main thread only.
class UninstallAppsModel final : public LevelModel<AppItems> {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column { CheckBox, Name, SystemApp, Kind, Size, LastUse, Created, View, ColumnCount };

    struct Workings {
        std::function<QIcon(const std::string& name)> icon;
        std::function<void(AppItems& item)> clickBox;  ///< a click on the box of a row
        std::function<bool()> mayTick;                 ///< rows take ticks at this moment
    };
    /// The list outlives it.
    UninstallAppsModel(const UninstallList& list, Workings workings, QObject* parent = nullptr);

    /// The row of an application; an invalid one where it is not shown.
    [[nodiscard]] QModelIndex indexOf(const AppItems* item, int column) const;

protected:
    [[nodiscard]] std::vector<AppItems*> rowsBelow(AppItems* above,
                                                   std::size_t wanted) const override;
    [[nodiscard]] std::size_t countBelow(AppItems* above) const override;
    [[nodiscard]] std::uint64_t revision() const override { return m_list.revision(); }

    [[nodiscard]] std::optional<TickState> stateOf(const AppItems& item) const override;
    [[nodiscard]] bool mayTick(const AppItems& item) const override;
    [[nodiscard]] QString toolTipOf(const AppItems& item) const override;
    [[nodiscard]] QString descriptionOf(const AppItems& item) const override;
    [[nodiscard]] bool isGrey(const AppItems& item) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    const UninstallList& m_list;
    const Workings m_workings;
};

}  // namespace orrinvale
