#include "engine/diskusage/history/changeWords.h"

#include "engine/text/UtilityFunction.h"

namespace orrinvale {
namespace {

constexpr std::size_t textsOfComing = 4;  // those of what is gone stand behind them likewise
constexpr std::size_t firstDoubt = 2 * textsOfComing;

}  // namespace

std::optional<ChangeWord> comingWord(const ScanDifference& difference, const ScanChange& change) {
    using Kind = ScanChange::Kind;
    if (change.kind == Kind::Changed) return std::nullopt;
    const std::size_t first = change.kind == Kind::Came ? 0 : textsOfComing;
    // The other one of the two is of the other kind.
    if (change.isReplaced)
        return ChangeWord{changeTexts.at(first + (change.isFolder ? 2U : 3U)), 0};
    const std::uint64_t under = difference.hiddenUnder(change);
    return ChangeWord{changeTexts.at(first + (under != 0 ? 1U : 0U)), under};
}

std::optional<ChangeWord> doubtWord(const ScanChange& change) {
    const auto doubt = [](std::size_t number) {
        return ChangeWord{changeTexts.at(firstDoubt + number), 0};
    };
    if (change.isCovered) return doubt(change.isUnseen ? 0 : 1);
    if (change.isUnseen) return doubt(2);
    if (change.isPartial) return doubt(3);
    return std::nullopt;
}

std::string inEnglish(const ChangeWord& word) {
    std::string text = word.text;
    if (const auto place = text.find("%1"); place != std::string::npos)
        text.replace(place, 2, UtilityFunction::convertVolSpace(word.bytes));
    return text;
}

}  // namespace orrinvale
