// Reasons are counted by their words: errors that read alike are one reason to a person.
#include "ui/kit/dialogs/removalWords.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <map>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostReasons = 4;

QString countedEntries(std::size_t count) { return QLocale().toString(qulonglong(count)); }

}  // namespace

QString removedText(const RemovalOutcome& outcome) {
    if (outcome.removed == 0) return {};
    return QCoreApplication::translate("Removal", "%1 removed, %2")
        .arg(countedEntries(outcome.removed),
             shownSize(UtilityFunction::convertVolSpace(outcome.bytes)));
}

QString stayedText(const RemovalOutcome& outcome) {
    if (outcome.failed == 0) return {};
    const int count = static_cast<int>(outcome.failed);
    return QCoreApplication::translate("Removal", "%Ln could not be removed", nullptr, count);
}

Alert stayedAlert(const RemovalOutcome& outcome) {
    std::map<QString, std::size_t> counts;
    for (const StayedEntry& each : outcome.stayed) ++counts[inWords(each.reason)];
    std::vector<std::pair<std::size_t, QString>> reasons;
    reasons.reserve(counts.size());
    for (const auto& [reason, count] : counts) reasons.emplace_back(count, reason);
    std::stable_sort(reasons.begin(), reasons.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    QStringList lines;
    for (const auto& [count, reason] : reasons) {
        if (std::size_t(lines.size()) == mostReasons) {
            lines.push_back(QStringLiteral("\u2026"));
            break;
        }
        lines.push_back(QStringLiteral("%1: %2").arg(countedEntries(count), reason));
    }
    Alert alert;
    alert.title = stayedText(outcome);
    alert.text = lines.join(QLatin1Char('\n'));
    alert.severity = Alert::Severity::Warning;
    return alert;
}

}  // namespace orrinvale
