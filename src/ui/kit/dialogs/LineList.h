// LineList: a plain window with lines to read and to copy: what could not be read, what could not
// be removed.
#pragma once

#include <QStringList>
#include <map>
#include <string>
#include <vector>

#include "platform/error.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/failureWords.h"

class QDialog;
class QWidget;

namespace orrinvale {

/// Opens a window of its own, not modal, that deletes itself when it is closed; Escape closes it.
/// Main thread only.
QDialog* showLineList(QWidget* parent, const QString& title, const QStringList& lines);

/// Shows these lines in it in the place of the others.
void setLinesOf(QDialog& lineList, const QStringList& lines);

/// A line for each: "reason: path".
[[nodiscard]] QStringList linesOf(const std::vector<Error>& errors);

/// What `textOf` says of each failure under their reasons, each reason with how many they are. A
/// failure has a `reason`.
template <class Failures, class TextOf>
[[nodiscard]] QStringList linesByReason(const Failures& failures, TextOf textOf) {
    std::map<std::string, QStringList> byReason;
    for (const auto& failure : failures)
        byReason[failure.reason].push_back(QStringLiteral("    ") + textOf(failure));
    QStringList lines;
    for (const auto& [reason, texts] : byReason) {
        lines.push_back(
            QStringLiteral("%1 (%2)").arg(inWords(reason), QString::number(texts.size())));
        lines.append(texts);
    }
    return lines;
}

/// The same with their paths, in exact bytes as `path`.
template <class Failures> [[nodiscard]] QStringList linesByReason(const Failures& failures) {
    return linesByReason(failures, [](const auto& failure) {
        return onOneLine(QString::fromStdString(failure.path));
    });
}

}  // namespace orrinvale
