// UninstallList: which applications the uninstall page shows, in what order, and which are ticked.
// AppItems.h is one of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "engine/uninstall/AppItems.h"

namespace orrinvale {

/// What a search has found.
struct FoundApplications {
    AppItemsArray items;
    /// Kinds that could not all be read, and why, for people.
    std::map<ApplicationType, std::string> unread;
};

/// Ticks stand in the records, so that they outlast a change of filter; but all that is asked of
/// ticks here looks at what is shown alone, so that nothing goes that nobody sees. Main thread
/// only, as the records are; a record's `record` never changes and may be read elsewhere.
class UninstallList final {
public:
    /// The left rows. Behind the last stands one for each ApplicationType, in its order.
    enum Row : std::int32_t { AllSoftware, SystemProgram, Application, FirstKind };
    static constexpr std::int32_t rowCount = FirstKind + 6;

    /// Found is the order of the inventory.
    enum class Sort : std::uint8_t { Found, Name, Kind, Size, Date, LastUse };

    /// What a name is ordered and found by, such as its letters without accents and capitals.
    using NameKey = std::function<std::string(const std::string& name)>;

    /// Without a key names count as they are.
    explicit UninstallList(NameKey nameKey = {});

    [[nodiscard]] const AppItemsArray& allApplications() const { return m_allApplications; }
    [[nodiscard]] const AppItemsArray& searchAllAppArr() const { return m_searchAllAppArr; }

    /// What an inventory has found. Of a kind that could not be read what was there before stays,
    /// since nobody can say that it is gone. A record that was there before stays the same object,
    /// with its tick, and with its size where neither version nor date is another.
    void setFound(const AppItemsArray& found,
                  const std::map<ApplicationType, std::string>& unread = {});
    void takeOut(const AppItemsArray& removed);

    [[nodiscard]] std::int32_t nowSelectRow() const { return m_nowSelectRow; }
    void select(std::int32_t row);
    /// Only what has this in its name, identifier or package; all for an empty text.
    void setFilter(const std::string& text);
    [[nodiscard]] bool isFiltered() const { return !m_filter.empty(); }

    /// Equal ones keep their order. What is not known comes last, in either direction. Under the
    /// first left row that is the order of all that was found, too.
    void sortBy(Sort key, bool isDescending);
    /// The same anew, for records that have changed.
    void sortAgain() { sortBy(m_sort, m_isDescending); }

    /// How many a left row would show.
    [[nodiscard]] std::size_t countOf(std::int32_t row) const;

    /// Whether a person may tick it: anything but this program.
    [[nodiscard]] static bool mayTick(const AppItems& item) { return !item.record->isOurs; }
    static void flip(AppItems& item);
    /// All that is shown and may be ticked.
    void selectAllList(bool isSelected);
    /// The ticked ones of what is shown; nothing where none is.
    [[nodiscard]] std::optional<AppItemsArray> getAllSelectApp() const;
    /// Whether all that may be ticked is: of an empty list, all.
    [[nodiscard]] bool isEverythingSelected() const;
    /// A ticked one of those that are shown is a system program.
    [[nodiscard]] bool hasSelectedSystemApp() const;

    /// Another number when the rows shown are others, or in another order.
    [[nodiscard]] std::uint64_t revision() const { return m_revision; }

private:
    [[nodiscard]] bool isInRow(const AppItems& item, std::int32_t row) const;
    [[nodiscard]] bool isWanted(const AppItems& item) const;
    [[nodiscard]] std::string keyOf(const std::string& name) const;
    void show();

    const NameKey m_nameKey;
    AppItemsArray m_searchAllAppArr;
    AppItemsArray m_allApplications;
    std::int32_t m_nowSelectRow = AllSoftware;
    std::string m_filter;  // as a key
    Sort m_sort = Sort::Found;
    bool m_isDescending = false;
    std::uint64_t m_revision = 0;
};

}  // namespace orrinvale
