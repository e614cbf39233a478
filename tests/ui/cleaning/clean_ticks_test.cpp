// Ticks: six lists, rows, the outline and the settings say the same after whatever a person clicks.
#include <QAbstractButton>
#include <QTreeView>
#include <random>

#include "engine/cleaning/cleanNotices.h"
#include "ui/cleaning/CleanDesk.h"
#include "ui/cleaning/CleanTreeModel.h"
#include "ui/cleaning/CustomTableView.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;
using Ticks = std::array<std::vector<bool>, 6>;

int stateOf(const std::vector<bool>& ticks) {
    const auto ticked = std::count(ticks.begin(), ticks.end(), true);
    return ticked == 0 ? 0 : ticked == std::ssize(ticks) ? 1 : 2;
}

// Rows of different numbers; the user's logs have none.
std::initializer_list<std::pair<const char*, std::size_t>> sixCategories() {
    static constexpr std::initializer_list<std::pair<const char*, std::size_t>> files{
        {"sys/cache/a.bin", 1'000'000},
        {"sys/cache/b.bin", 500'000},
        {".cache/a/x", 3'000'000},
        {".cache/b", 20'000},
        {".cache/c", 7'000},
        {"sys/log/x.log.1", 5'000},
        {".local/share/Trash/files/t1", 100},
        {".local/share/Trash/files/t2", 200},
        {"Downloads/d1", 4'000},
        {"Downloads/d2", 5'000}};
    return files;
}

/// What a person sees of each place, in one text.
std::string shown(CleanDesk& desk) {
    std::string text = desk.settings() + " rows ";
    for (int i = 0; i < 6; ++i) {
        auto& row = desk.control<V3MainListView>(fmt::format("summary{}", i).c_str());
        text += std::to_string(int(row.findChild<TickBox*>()->state()));
    }
    text += " left ";
    for (int i = 1; i < 7; ++i)
        text += std::to_string(int(
            desk.control<LeftLinkTabviewCell>(fmt::format("leftCell{}", i).c_str()).box().value()));
    text += " lists ";
    for (const auto& list : desk.page->tableControllers()) {
        text += list->selectButton ? '+' : '-';
        for (const auto& row : *list->scanFiles) text += row->bIsSelected ? 'x' : '.';
        text += ' ';
    }
    text += "groups ";
    for (std::size_t i = 0; i < 6; ++i)
        if (const TreeNode* const group = desk.page->tree().group(i)) {
            text += simpleData(*group)->showSelectNumStr() + ' ' +
                    std::to_string(simpleData(*group)->selectNum());
            for (std::size_t r = 0; r < group->numberOfChildren(); ++r)
                text += std::to_string(simpleData(*group->childAtIndex(r))->selectNum());
            text += ' ';
        }
    return text + desk.textOf("trashFileNumTF") + ' ' +
           std::to_string(int(desk.control<TickBox>("button").state()));
}

std::string expected(const Ticks& ticks) {
    std::string states, lists, groups;
    std::size_t all = 0;
    bool isAll = true, isNone = true;
    for (const std::vector<bool>& each : ticks) {
        const int state = stateOf(each);
        const auto ticked = std::size_t(std::count(each.begin(), each.end(), true));
        states += std::to_string(state);
        lists += state == 1 ? '+' : '-';
        for (const bool tick : each) lists += tick ? 'x' : '.';
        lists += ' ';
        if (each.empty()) continue;
        all += ticked;
        isAll = isAll && state == 1;
        isNone = isNone && state == 0;
        groups += fmt::format("{}/{} {}", ticked, each.size(), state);
        for (const bool tick : each) groups += tick ? '1' : '0';
        groups += ' ';
    }
    return fmt::format("{0} rows {0} left {0} lists {1}groups {2}{3} {4}", states, lists, groups,
                       all,
                       isNone  ? 0
                       : isAll ? 1
                               : 2);
}

class Clicker final {
public:
    /// With the pointer it goes where the box shows, and presses it there.
    explicit Clicker(CleanDesk& desk, bool hasPointer = false)
        : m_desk(desk), m_hasPointer(hasPointer) {
        for (std::size_t i = 0; i < 6; ++i)
            m_ticks.at(i).assign(desk.page->tableControllers().at(i)->scanFiles->size(), true);
    }

    // The rules in the words of the page, one action each.
    void act(unsigned dice) {
        const std::size_t category = dice / 7 % 6;
        std::vector<bool>& ticks = m_ticks.at(category);
        const std::size_t row = ticks.empty() ? 0 : dice / 42 % ticks.size();
        const int state = stateOf(ticks);
        const auto all = [&ticks](bool on) { ticks.assign(ticks.size(), on); };
        CleanTreeModel& model = outlineModel();
        switch (dice % 7) {
            case 0:  // the box of a summary row, and the one beside it on the left
            case 1: {
                const bool isSummary = dice % 7 == 0;
                if (m_hasPointer) pressBoxOf(isSummary, category);
                else if (isSummary) m_desk.page->checkBoxAction(category);
                else
                    Q_EMIT m_desk.control<CustomTableView>("customTableView")
                        .boxClicked(int(category) + 1);
                // Where nothing is a summary row has no box.
                if (!m_hasPointer || !isSummary || !ticks.empty()) all(state != 1);
                break;
            }
            case 2:  // a row of a list
                if (ticks.empty()) return;
                if (m_hasPointer) pressRow(category, int(row));
                else m_desk.page->tableControllers().at(category)->toggleRow(row);
                ticks[row] = !ticks[row];
                break;
            case 3:  // the box over a list
                if (m_hasPointer && ticks.empty()) return;
                if (m_hasPointer) chooseRow(int(category) + 1);
                press(m_desk.control<TickBox>(fmt::format("selectButton{}", category).c_str()));
                all(state != 1);
                break;
            case 4:  // a leaf
            case 5: {
                const TreeNode* const group = m_desk.page->tree().group(category);
                if (group == nullptr) return;
                const QModelIndex top = indexOf(model, *group);
                const bool isLeaf = dice % 7 == 4;
                const QModelIndex clicked = isLeaf ? model.index(int(row), 0, top) : top;
                if (m_hasPointer) {
                    showOutline(true);
                    m_desk.tick(m_desk.control<QTreeView>("outline"), clicked);
                } else {
                    model.setData(clicked, {}, TickModel::StateRole);
                }
                if (isLeaf) ticks[row] = !ticks[row];
                else all(state == 0);
                break;
            }
            default: {
                const bool on = !std::ranges::all_of(
                    m_ticks, [](const auto& each) { return each.empty() || stateOf(each) == 1; });
                if (m_hasPointer) showOutline(true);
                press(m_desk.control<TickBox>("button"));
                for (std::vector<bool>& each : m_ticks) each.assign(each.size(), on);
            }
        }
    }
    [[nodiscard]] const Ticks& ticks() const { return m_ticks; }

private:
    CleanTreeModel& outlineModel() {
        return static_cast<CleanTreeModel&>(*m_desk.control<QTreeView>("outline").model());
    }
    static QModelIndex indexOf(const CleanTreeModel& model, const TreeNode& group) {
        for (int row = 0; row < model.rowCount(); ++row)
            if (model.node(model.index(row, 0)) == &group) return model.index(row, 0);
        return {};
    }

    void press(QAbstractButton& button) const {
        if (!m_hasPointer) return button.click();
        EXPECT_TRUE(button.isVisible() && button.isEnabled()) << button.objectName().toStdString();
        QTest::mouseClick(&button, Qt::LeftButton);
    }
    void chooseRow(int row) const {
        auto& cell = m_desk.control(fmt::format("leftCell{}", row).c_str());
        QTest::mouseClick(&cell, Qt::LeftButton, {}, {cell.width() / 2, cell.height() / 2});
    }
    void showOutline(bool isOn) const {
        chooseRow(0);
        if (m_desk.isShown("outline") != isOn)
            press(m_desk.control<QAbstractButton>(isOn ? "outlineButton" : "scanButton"));
    }
    void pressBoxOf(bool isSummary, std::size_t category) const {
        if (isSummary) showOutline(false);
        const std::string name = isSummary ? fmt::format("summary{}", category)
                                           : fmt::format("leftCell{}", category + 1);
        auto* const box = m_desk.control(name.c_str()).findChild<TickBox*>();
        const bool hasBox = !isSummary || !m_ticks.at(category).empty();
        EXPECT_EQ(box->isVisible(), hasBox);
        if (hasBox) press(*box);
    }
    void pressRow(std::size_t category, int row) const {
        chooseRow(int(category) + 1);
        auto& list = m_desk.control<QTreeView>(fmt::format("list{}", category).c_str());
        m_desk.tick(list, list.model()->index(row, 0));
    }

    CleanDesk& m_desk;
    const bool m_hasPointer;
    Ticks m_ticks;
};

TEST(CleanTicks, EverythingAgreesAfterTenThousandClicks) {
    CleanDesk desk(sixCategories());
    desk.tickOnly({SystemCaches, UserCaches, SystemLogs, UserLogs, UserTrash, UserDownloads});
    ASSERT_TRUE(desk.scan());
    Clicker clicker(desk);
    std::mt19937 dice(20'261'122);
    for (int round = 0; round < 10'000; ++round) {
        const auto thrown = static_cast<unsigned>(dice());
        clicker.act(thrown);
        ASSERT_EQ(shown(desk), expected(clicker.ticks()))
            << "round " << round << ", " << thrown % 7;
    }
}

TEST(CleanTicks, EverythingAgreesAfterEachClickOfThePointer) {
    CleanDesk desk(sixCategories());
    desk.tickOnly({SystemCaches, UserCaches, SystemLogs, UserLogs, UserTrash, UserDownloads});
    ASSERT_TRUE(desk.scan());
    Clicker clicker(desk, true);
    std::mt19937 dice(20'261'123);
    for (int round = 0; round < 300; ++round) {
        const auto thrown = static_cast<unsigned>(dice());
        clicker.act(thrown);
        ASSERT_EQ(shown(desk), expected(clicker.ticks()))
            << "round " << round << ", " << thrown % 7;
        // Two at once on one place are a double click, which opens a row.
        QTest::qWait(1);
    }
}

// What was stored as "some" becomes "all" with the next scan.
TEST(CleanTicks, AScanBeginsWithWholeCategories) {
    CleanDesk desk(sixCategories());
    desk.tickOnly({UserCaches, UserTrash});
    desk.defaults.setInteger(2, ZvUserTrashKey);
    ASSERT_TRUE(desk.scan());
    EXPECT_EQ(desk.settings(), "010010");
    auto& outline = desk.control<QTreeView>("outline");
    desk.tick(outline, desk.rowOf(outline, "/b"));
    EXPECT_EQ(desk.settings(), "020010");
    ASSERT_TRUE(desk.scan());
    EXPECT_EQ(desk.settings(), "010010");
    // A row is hidden from the boxes of what a filter leaves out.
    EXPECT_TRUE(desk.isShown("filterField"));
    QTest::keyClicks(&desk.control("filterField"), QStringLiteral("D1"));
    EXPECT_EQ(outline.model()->rowCount(), 1);
    desk.tick(outline, desk.rowOf(outline, "Downloads"));
    EXPECT_EQ(desk.settings(), "010012");
}

// Who listens to a setting hears of no value that nobody chose.
TEST(CleanTicks, ARowOfOneCategoryChangesNoSettingOfAnother) {
    CleanDesk desk(sixCategories());
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    int told = 0;
    const auto observation = desk.defaults.addObserver(ZvSystemCachesKey, [&told] { ++told; });
    desk.page->shouldSelectRow(2);
    auto& list = desk.control<QTreeView>("list1");
    desk.tick(list, list.model()->index(0, 0));
    EXPECT_EQ(desk.settings(), "020000");
    EXPECT_EQ(told, 0);
}

// Operations that others may call keep what they always did.
TEST(CleanTicks, OldOperations) {
    CleanDesk desk(sixCategories());
    desk.tickOnly({UserCaches, UserDownloads});
    ASSERT_TRUE(desk.scan());
    auto& table = desk.control<CustomTableView>("customTableView");
    const auto before = [&] { return desk.list(UserDownloads).selDelFiles.size(); };
    const struct {
        const char* what;
        std::function<void()> act;
        const char* states;  ///< of the left table
    } cases[] = {
        {"a true flag clears",
         [&] {
             notice::changeCheckBox.post(desk.center, {2, true});
         },
         "000001"},
        {"a false one ticks",
         [&] {
             notice::changeCheckBox.post(desk.center, {1, false});
         },
         "100001"},
        {"the header has none",
         [&] {
             notice::changeCheckBox.post(desk.center, {7, false});
         },
         "100001"},
        {"a cell's own action always clears", [&] { table.cell(6).clickCheckBox(); }, "100000"},
        {"a number that names no list", [&] { notice::updateSelectNumber.post(desk.center, {6}); },
         "100000"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        const std::size_t ticked = before();
        each.act();
        std::string states;
        for (const std::string& state : table.selectArray()) states += state;
        EXPECT_EQ(states, each.states);
        EXPECT_EQ(before(), ticked) << "no list follows";
    }
    EXPECT_EQ(categoryOfGroup("System Caches"), 0U);
    EXPECT_EQ(categoryOfGroup("Sytem Caches"), 0U);
    EXPECT_EQ(categoryOfGroup("User Trash"), 4U);
    EXPECT_EQ(categoryOfGroup("Elsewhere"), 0U);
    // A list by its name, and the group that follows it.
    EXPECT_EQ(&desk.page->returnScanViewController("User Logs"), &desk.list(UserLogs));
}

}  // namespace
}  // namespace orrinvale::testing
