// The two kinds of rows, and the six orders in which a list can be sorted.
#include "engine/duplicates/tree/SimpleNodeData.h"

namespace orrinvale {
namespace {

template <class Compare>
std::weak_ordering compareWith(const TreeNodeData& other, Compare compare) {
    const auto* const simple = dynamic_cast<const SimpleNodeData*>(&other);
    return simple ? compare(*simple) : std::weak_ordering::equivalent;
}

std::weak_ordering names(const SimpleNodeData& left, const SimpleNodeData& right) {
    return left.name() <=> right.name();
}

// As a number that is ordered as the bytes are; a shorter name comes before the longer ones that it
// begins. It spares most comparisons a look at the text.
std::uint64_t firstBytes(const std::string& name) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number = number << 8U | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
    return number;
}

std::weak_ordering sizes(const SimpleNodeData& left, const SimpleNodeData& right) {
    return left.fileSize() <=> right.fileSize();
}

std::weak_ordering dates(const SimpleNodeData& left, const SimpleNodeData& right) {
    if (!left.ModificationDate() || !right.ModificationDate())
        return std::weak_ordering::equivalent;
    return *left.ModificationDate() <=> *right.ModificationDate();
}

}  // namespace

std::shared_ptr<SimpleNodeData> SimpleNodeData::leafDataWithName(std::string name) {
    return std::make_shared<SimpleNodeData>(std::move(name), true);
}

std::shared_ptr<SimpleNodeData> SimpleNodeData::groupDataWithName(std::string name) {
    return std::make_shared<SimpleNodeData>(std::move(name), false);
}

SimpleNodeData::SimpleNodeData(std::string name, bool isLeaf)
    : m_name(std::move(name)), m_isLeaf(isLeaf), m_isExpandable(!isLeaf) {}

std::weak_ordering SimpleNodeData::compareName(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return names(*this, simple); });
}
std::weak_ordering SimpleNodeData::compareSize(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return sizes(*this, simple); });
}
std::weak_ordering SimpleNodeData::compareDate(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return dates(*this, simple); });
}
std::weak_ordering SimpleNodeData::compareNameR(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return names(simple, *this); });
}
std::weak_ordering SimpleNodeData::compareSizeR(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return sizes(simple, *this); });
}
std::weak_ordering SimpleNodeData::compareDateR(const TreeNodeData& other) const {
    return compareWith(other,
                       [this](const SimpleNodeData& simple) { return dates(simple, *this); });
}

std::optional<SortValue> SimpleNodeData::sortValue(SortKey key) const {
    switch (key) {
        case SortKey::Name: return SortValue{firstBytes(m_name), m_name};
        case SortKey::Size: return SortValue{m_fileSize, {}};
        case SortKey::Date: break;
    }
    if (!m_modificationDate) return std::nullopt;
    // Negative moments come before the others as unsigned numbers too.
    constexpr std::uint64_t sign = std::uint64_t{1} << 63U;
    return SortValue{static_cast<std::uint64_t>(m_modificationDate->nanoseconds) ^ sign, {}};
}

}  // namespace orrinvale
