// Keys of names are made once a sort, since a key costs more than all its comparisons.
#include "engine/uninstall/UninstallList.h"

#include <algorithm>
#include <compare>
#include <iterator>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orrinvale {
namespace {

// What stays the same where an application is changed to another version. Of one identifier two
// AppImages, folders or bundles may lie side by side; and another one may come to a path, which
// nobody has ticked.
std::string identityOf(const AppItems& item) {
    const ApplicationRecord& record = *item.record;
    const bool isAtPath = record.type == ApplicationType::App ||
                          record.type == ApplicationType::AppImage ||
                          record.type == ApplicationType::Folder;
    const std::string& identifier = record.package.empty() ? record.id : record.package;
    std::string out(wordOf(record.type));
    for (const std::string& part :
         {identifier, isAtPath ? item.name : std::string(), isAtPath ? record.path : std::string(),
          record.installation, record.ref}) {
        out += '\0';
        out += part;
    }
    return out;
}

void takeOver(AppItems& item, const AppItems& found) {
    if (&item == &found) return;  // the list itself, where no thread could look anew
    const AppItems before = std::exchange(item, found);
    item.bIsSelected = before.bIsSelected && UninstallList::mayTick(item);
    if (before.bundleVersion != item.bundleVersion || before.date != item.date) return;
    item.fileSize = before.fileSize;
    item.fileSizeNum = before.fileSizeNum;
    item.isUpTo = before.isUpTo;
    item.lastUse = before.lastUse;
}

// One row while it is sorted.
struct Sorted {
    std::shared_ptr<AppItems> item;
    std::string name;
};

// Of two that are known.
std::weak_ordering compare(const Sorted& a, const Sorted& b, UninstallList::Sort key) {
    using enum UninstallList::Sort;
    switch (key) {
        case Name: return a.name <=> b.name;
        case Kind: return a.item->record->type <=> b.item->record->type;
        case Size: return a.item->fileSizeNum <=> b.item->fileSizeNum;
        case Date: return a.item->date->nanoseconds <=> b.item->date->nanoseconds;
        case LastUse: return a.item->lastUse->nanoseconds <=> b.item->lastUse->nanoseconds;
        case Found: break;
    }
    return std::weak_ordering::equivalent;
}

bool isKnown(const AppItems& item, UninstallList::Sort key) {
    switch (key) {
        case UninstallList::Sort::Size: return !item.fileSize.empty();
        case UninstallList::Sort::Date: return item.date.has_value();
        case UninstallList::Sort::LastUse: return item.lastUse.has_value();
        default: return true;
    }
}

}  // namespace

UninstallList::UninstallList(NameKey nameKey) : m_nameKey(std::move(nameKey)) {}

std::string UninstallList::keyOf(const std::string& name) const {
    return m_nameKey ? m_nameKey(name) : name;
}

void UninstallList::setFound(const AppItemsArray& found,
                             const std::map<ApplicationType, std::string>& unread) {
    std::unordered_map<std::string, std::shared_ptr<AppItems>> before;
    for (const auto& each : m_searchAllAppArr) before.emplace(identityOf(*each), each);
    AppItemsArray all;
    all.reserve(found.size());
    for (const auto& each : found) {
        const auto known = before.extract(identityOf(*each));
        if (known.empty()) {
            all.push_back(each);
            continue;
        }
        takeOver(*known.mapped(), *each);
        all.push_back(known.mapped());
    }
    const AppItemsArray old = std::exchange(m_searchAllAppArr, std::move(all));
    for (const auto& each : old)
        if (unread.contains(each->record->type) && before.contains(identityOf(*each)))
            m_searchAllAppArr.push_back(each);
    show();
}

void UninstallList::takeOut(const AppItemsArray& removed) {
    const auto isRemoved = [&](const std::shared_ptr<AppItems>& each) {
        return std::ranges::find(removed, each) != removed.end();
    };
    std::erase_if(m_allApplications, isRemoved);
    std::erase_if(m_searchAllAppArr, isRemoved);
    ++m_revision;
}

void UninstallList::select(std::int32_t row) {
    m_nowSelectRow = row;
    show();
}

void UninstallList::setFilter(const std::string& text) {
    m_filter = keyOf(text);
    show();
}

bool UninstallList::isInRow(const AppItems& item, std::int32_t row) const {
    switch (row) {
        case AllSoftware: return true;
        case SystemProgram: return item.isSystemApp;
        case Application: return !item.isSystemApp;
        default: return std::int32_t(item.record->type) == row - FirstKind;
    }
}

bool UninstallList::isWanted(const AppItems& item) const {
    return m_filter.empty() ||
           std::ranges::any_of(std::array{item.name, item.record->id, item.record->package},
                               [&](const std::string& each) {
                                   return keyOf(each).find(m_filter) != std::string::npos;
                               });
}

std::size_t UninstallList::countOf(std::int32_t row) const {
    return std::size_t(std::ranges::count_if(
        m_searchAllAppArr, [&](const auto& each) { return isInRow(*each, row); }));
}

void UninstallList::show() {
    m_allApplications.clear();
    std::ranges::copy_if(
        m_searchAllAppArr, std::back_inserter(m_allApplications),
        [this](const auto& each) { return isInRow(*each, m_nowSelectRow) && isWanted(*each); });
    sortAgain();
}

void UninstallList::sortBy(Sort key, bool isDescending) {
    m_sort = key;
    m_isDescending = isDescending;
    ++m_revision;
    if (key == Sort::Found) return;
    std::vector<Sorted> rows;
    rows.reserve(m_allApplications.size());
    for (auto& each : m_allApplications)
        rows.push_back({each, key == Sort::Name ? keyOf(each->name) : std::string()});
    std::ranges::stable_sort(rows, [&](const Sorted& a, const Sorted& b) {
        const bool isAKnown = isKnown(*a.item, key), isBKnown = isKnown(*b.item, key);
        if (!isAKnown || !isBKnown) return isAKnown && !isBKnown;
        return isDescending ? compare(b, a, key) < 0 : compare(a, b, key) < 0;
    });
    std::ranges::transform(rows, m_allApplications.begin(), &Sorted::item);
    if (m_nowSelectRow == AllSoftware && !isFiltered()) m_searchAllAppArr = m_allApplications;
}

void UninstallList::flip(AppItems& item) {
    if (mayTick(item)) item.bIsSelected = !item.bIsSelected;
}

void UninstallList::selectAllList(bool isSelected) {
    for (const auto& each : m_allApplications) each->bIsSelected = isSelected && mayTick(*each);
}

std::optional<AppItemsArray> UninstallList::getAllSelectApp() const {
    AppItemsArray selected;
    std::ranges::copy_if(m_allApplications, std::back_inserter(selected),
                         [](const auto& each) { return each->bIsSelected; });
    return selected.empty() ? std::nullopt : std::optional(std::move(selected));
}

bool UninstallList::isEverythingSelected() const {
    return std::ranges::all_of(
        m_allApplications, [](const auto& each) { return each->bIsSelected || !mayTick(*each); });
}

bool UninstallList::hasSelectedSystemApp() const {
    return std::ranges::any_of(
        m_allApplications, [](const auto& each) { return each->bIsSelected && each->isSystemApp; });
}

}  // namespace orrinvale
