// See fastCleanWords.h.
#include "ui/fastclean/fastCleanWords.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <chrono>

#include "engine/text/Localized.h"
#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/dialogs/removalWords.h"

namespace orrinvale {
namespace {

struct FastCleanTexts {
    Q_DECLARE_TR_FUNCTIONS(FastClean)
};

// The share of what was promised below which a person wants to know why.
constexpr double enoughFreed = 0.9;

// Folders that a question names.
constexpr std::size_t mostFolders = 3;
// A sheet's way in, and half a second to see what it asks.
constexpr std::chrono::milliseconds freeingDeafTime{700};

QString freedSizeText(std::uint64_t bytes) {
    return shownSize(UtilityFunction::convertVolSpace(bytes));
}

QString textOf(const char* key) { return QString::fromStdString(getLocalizedString(key)); }

// Where something may go beside it, the category itself was not left alone.
QString closedLine(const FastCleanResult& result) {
    const CategoryListing::Closed& first = result.closed.front();
    return FastCleanTexts::tr("%1 was left alone: %2")
        .arg(result.isEmpty ? categoryTitle(result.category)
                            : onOneLine(QString::fromStdString(first.path)),
             onOneLine(inWords(first.reason)));
}

QString unreadLine(const FastCleanResult& result) {
    return FastCleanTexts::tr("%1 can not be read: %2")
        .arg(categoryTitle(result.category), onOneLine(inWords(result.skipped.front().reason())));
}

}  // namespace

QString noCategoryLine() { return textOf("NO_FOLDER_CONTENT"); }

QString emptyCategoryLine(CleanCategory category) {
    return FastCleanTexts::tr("Nothing to clean in %1. Choose others on the Clean page.")
        .arg(categoryTitle(category));
}

QString silentCategoryLine(CleanCategory category) {
    return FastCleanTexts::tr("%1: the disk does not answer. Try again in a moment.")
        .arg(categoryTitle(category));
}

Alert goodbyeQuestion(CleanCategory category, const std::vector<std::string>& folders,
                      std::uint64_t count, std::uint64_t bytes) {
    const QString size = freedSizeText(bytes);
    Alert question;
    question.title = category == CleanCategory::UserTrash
                         ? FastCleanTexts::tr("Empty the Trash for good?")
                         : FastCleanTexts::tr("Remove what is in Downloads for good?");
    question.text = count == 1
                        ? FastCleanTexts::tr("1 item, %1. It cannot be brought back.").arg(size)
                        : FastCleanTexts::tr("%Ln items, %1. They cannot be brought back.", nullptr,
                                             static_cast<int>(count))
                              .arg(size);
    for (std::size_t index = 0; index < std::min(folders.size(), mostFolders); ++index)
        question.text += QLatin1Char('\n') + onOneLine(QString::fromStdString(folders[index]));
    if (folders.size() > mostFolders) question.text += QStringLiteral("\n\u2026");
    question.buttons =
        QStringList{FastCleanTexts::tr("Remove %1").arg(size), FastCleanTexts::tr("Cancel")};
    question.cancelButton = 1;
    question.severity = Alert::Severity::Warning;
    question.isDestructive = true;
    // It comes by itself, over the buttons that the window had.
    question.keyboardButton = question.cancelButton;
    question.deafTime = freeingDeafTime;
    return question;
}

QStringList countAndSizeLines(std::uint64_t count, std::uint64_t bytes) {
    const auto line = [](const char* key, const QString& figure) {
        return QStringLiteral("%1 %2").arg(textOf(key), figure);
    };
    return {line("CLEAN_FILES_COUNT", QString::number(count)),
            line("CLEAN_FILES_SIZE", freedSizeText(bytes))};
}

QStringList furtherLines(const FastCleanResult& result) {
    QStringList lines;
    if (result.gained)
        lines.push_back(*result.gained > 0
                            ? FastCleanTexts::tr("Free space grew by %1")
                                  .arg(freedSizeText(static_cast<std::uint64_t>(*result.gained)))
                            : FastCleanTexts::tr("Free space did not grow"));
    if (result.outcome != nullptr && result.outcome->lacksRights)
        lines.push_back(result.gained ? FastCleanTexts::tr("Open the padlock for the rest")
                                      : FastCleanTexts::tr("Not all went: open the padlock"));
    else if (result.outcome != nullptr && result.outcome->failed > 0)
        lines.push_back(stayedText(*result.outcome));
    else if (result.outcome != nullptr && result.outcome->removed == 0 && result.outcome->kept > 0)
        lines.push_front(FastCleanTexts::tr("Nothing was removed: %Ln changed or in use by now",
                                            nullptr, static_cast<int>(result.outcome->kept)));
    if (result.isEmpty && result.isSilent) lines.push_back(silentCategoryLine(result.category));
    else if (!result.closed.empty()) lines.push_back(closedLine(result));
    else if (result.isEmpty && !result.skipped.empty()) lines.push_back(unreadLine(result));
    else if (result.isEmpty) lines.push_back(emptyCategoryLine(result.category));
    return lines;
}

QString furtherReasons(const FastCleanResult& result) {
    if (result.outcome != nullptr && result.outcome->failed > 0)
        return stayedAlert(*result.outcome).text;
    if (!result.gained ||
        static_cast<double>(*result.gained) >= enoughFreed * static_cast<double>(result.promised))
        return {};
    return FastCleanTexts::tr(
        "Less than promised: files were compressed or are still open, or snapshots and shared "
        "copies hold what "
        "went, or others have written meanwhile.");
}

}  // namespace orrinvale
