// Texts with a key come from the tables, all others are translated here. See cleanWords.h.
#include "ui/cleaning/cleanWords.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <array>
#include <chrono>
#include <map>

#include "engine/base/saturating.h"
#include "engine/cleaning/CleanPageRows.h"
#include "engine/text/Localized.h"
#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {
namespace {

// It may follow another question at the same place, whose click may have been a double one.
constexpr std::chrono::milliseconds deafTime{700};

struct Words {
    Q_DECLARE_TR_FUNCTIONS(Cleaning)
};

constexpr std::int64_t perSecond = 1'000'000'000;
// The share of what was promised below which a person wants to know why.
constexpr double enough = 0.9;

QString textOf(std::string_view key) {
    return key.empty() ? QString()
                       : QString::fromStdString(getLocalizedString(std::string(key).c_str()));
}

QString counted(std::size_t count) { return QLocale().toString(qulonglong(count)); }

QDateTime momentOf(Date date) {
    constexpr std::int64_t perMillisecond = 1'000'000;
    return QDateTime::fromMSecsSinceEpoch(date.nanoseconds / perMillisecond);
}

// English dates keep the form of the record; others that of their country. Both tell local time.
QString dateWords(Date date) {
    const QDateTime moment = momentOf(date);
    if (QLocale().language() != QLocale::English && QLocale().language() != QLocale::C)
        return QLocale().toString(moment, QLocale::ShortFormat);
    const Date local{date.nanoseconds + moment.offsetFromUtc() * perSecond};
    return QString::fromStdString(UtilityFunction::parseDateTime(dateDescription(local)));
}

Alert goodbye(const QString& title, const QString& text, QStringList buttons) {
    Alert question;
    question.title = title;
    question.text = text;
    question.buttons = std::move(buttons);
    question.cancelButton = int(question.buttons.size()) - 1;
    question.keyboardButton = question.cancelButton;
    question.severity = Alert::Severity::Warning;
    return question;
}

QString sureWords() { return Words::tr("Are you sure you want to continue?"); }
QString downloadsWords() {
    return Words::tr(
        "Downloads folder is selected to clean. We recommend you to view this folder for anything "
        "useful before emptying it.");
}

// Why the rules of the engine keep an entry. What they say of single programs and of logs inWords()
// knows.
constexpr std::array ruleReasons{
    QT_TRANSLATE_NOOP("Cleaning", "you asked to keep it"),
    QT_TRANSLATE_NOOP("Cleaning", "something is mounted in it"),
    QT_TRANSLATE_NOOP("Cleaning", "its program keeps here what it can not make again"),
    QT_TRANSLATE_NOOP("Cleaning", "a program has it open"),
    QT_TRANSLATE_NOOP("Cleaning", "its program runs, and does not show what it has open"),
    QT_TRANSLATE_NOOP("Cleaning", "changed in the last 10 minutes"),
    QT_TRANSLATE_NOOP("Cleaning", "a document is in it"),
    QT_TRANSLATE_NOOP("Cleaning", "a repository is in it"),
    QT_TRANSLATE_NOOP("Cleaning", "a password safe is in it"),
    QT_TRANSLATE_NOOP("Cleaning", "a database in use is in it"),
    QT_TRANSLATE_NOOP("Cleaning", "a program's socket is in it"),
    QT_TRANSLATE_NOOP("Cleaning", "a download that is not complete"),
    QT_TRANSLATE_NOOP("Cleaning", "a part of it can not be looked at"),
    QT_TRANSLATE_NOOP("Cleaning", "its folders lie too deep to be looked through"),
};

std::string ruleWords(std::string_view reason) {
    for (const char* const known : ruleReasons)
        if (reason == known) return QCoreApplication::translate("Cleaning", known).toStdString();
    return std::string(reason);
}

// One line of the list of what stays.
struct Kept {
    std::string path, reason;
};

}  // namespace

QString cleanRowTitle(int row) {
    if (row == utilitiesRow) return Words::tr("Utilities");
    return textOf(cleanPageRows.at(std::size_t(row)).titleKey);
}

QString cleanRowDescription(int row) {
    return textOf(cleanPageRows.at(std::size_t(row)).descriptionKey);
}

QString categoryTitle(CleanCategory category) {
    return cleanRowTitle(static_cast<int>(category) + 1);
}

QString sizeWords(std::uint64_t bytes) {
    return shownSize(UtilityFunction::convertVolSpace(bytes));
}

QString foundWords(const std::string& size) {
    return size == "0.00KB" ? sizeWords(0) : shownSize(size);
}

bool hasWords(std::string_view name, const QString& words) {
    if (words.isEmpty()) return true;
    // Almost all names are plain, and each letter typed has tens of thousands looked at.
    const auto isPlain = [](char16_t each) { return each < 0x80; };
    const auto unitOf = [](char each) { return char16_t(static_cast<unsigned char>(each)); };
    if (!std::ranges::all_of(words, isPlain, [](QChar each) { return each.unicode(); }) ||
        !std::ranges::all_of(name, isPlain, unitOf))
        return QString::fromUtf8(name.data(), qsizetype(name.size()))
            .contains(words, Qt::CaseInsensitive);
    const auto lower = [](char16_t each) {
        return each >= u'A' && each <= u'Z' ? char16_t(each - u'A' + u'a') : each;
    };
    const auto isSame = [&](char one, QChar other) {
        return lower(unitOf(one)) == lower(other.unicode());
    };
    return std::search(name.begin(), name.end(), words.begin(), words.end(), isSame) != name.end();
}

QString ageWords(std::int64_t nanoseconds) {
    constexpr std::int64_t minute = 60, hour = 3600, day = 86400, month = 30 * day,
                           year = 365 * day;
    const std::int64_t seconds = nanoseconds / perSecond;
    const auto in = [seconds](std::int64_t unit) { return static_cast<int>(seconds / unit); };
    const auto words = [](int count, const QString& one, const QString& many) {
        return count == 1 ? one : many;
    };
    if (const int n = in(year); n > 0)
        return words(n, Words::tr("1 year"), Words::tr("%Ln years", nullptr, n));
    if (const int n = in(month); n > 0)
        return words(n, Words::tr("1 month"), Words::tr("%Ln months", nullptr, n));
    if (const int n = in(day); n > 0)
        return words(n, Words::tr("1 day"), Words::tr("%Ln days", nullptr, n));
    if (const int n = in(hour); n > 0)
        return words(n, Words::tr("1 hour"), Words::tr("%Ln hours", nullptr, n));
    if (const int n = in(minute); n > 0)
        return words(n, Words::tr("1 minute"), Words::tr("%Ln minutes", nullptr, n));
    return Words::tr("just now");
}

FigureSentence historySentence(std::uint64_t size, const std::optional<Date>& date,
                               const QString& total, const QString& free) {
    if (date && !total.isEmpty())
        return {Words::tr("%1 space has been recovered since last clean %2. The capacity of "
                          "startup disk is %3, and %4 is available."),
                {sizeWords(size), dateWords(*date), total, free}};
    if (date)
        return {Words::tr("%1 space has been recovered since last clean %2."),
                {sizeWords(size), dateWords(*date)}};
    if (!total.isEmpty())
        return {Words::tr("The capacity of startup disk is %1, and %2 is available."),
                {total, free}};
    return {};
}

FigureSentence selectedSentence(const CleanSums& sums) {
    return {Words::tr("%1 of %2 selected, %3 will free up."),
            {counted(sums.ticked), counted(sums.rows), sizeWords(sums.bytes)}};
}

FigureSentence cleanedSentence(std::uint64_t bytes) {
    return {Words::tr("%1 is cleaned"), {sizeWords(bytes)}};
}

Alert cleanQuestion(const CleanSums& sums, std::size_t hidden) {
    const QString size = sizeWords(sums.bytes);
    Alert question =
        goodbye(Words::tr("Remove what is ticked for good?"),
                sums.ticked == 1 ? Words::tr("1 entry, %1. It cannot be brought back.").arg(size)
                                 : Words::tr("%Ln entries, %1. They cannot be brought back.",
                                             nullptr, static_cast<int>(sums.ticked))
                                       .arg(size),
                {Words::tr("Clean %1").arg(size), Words::tr("Cancel")});
    if (hidden > 0)
        question.text +=
            QLatin1Char(' ') + (hidden == 1 ? Words::tr("1 more is ticked that the filter "
                                                        "hides; it stays.")
                                            : Words::tr("%Ln more are ticked that the filter "
                                                        "hides; they stay.",
                                                        nullptr, static_cast<int>(hidden)));
    question.isDestructive = true;
    question.deafTime = deafTime;
    return question;
}

Alert downloadsAlongQuestion() {
    Alert question = goodbye(sureWords(), downloadsWords(),
                             {Words::tr("Yes"), Words::tr("No"), Words::tr("Cancel")});
    question.linkText = Words::tr("View Downloads");
    return question;
}

Alert downloadsQuestion() {
    Alert question = goodbye(downloadsWords(), sureWords(), {Words::tr("OK"), Words::tr("Cancel")});
    question.linkText = Words::tr("View Downloads");
    return question;
}

Alert changedAlert() {
    Alert alert;
    alert.title = Words::tr("Nothing was removed.");
    alert.text = Words::tr("What is ticked has changed since you were asked. Look at it again.");
    return alert;
}

Alert privilegesAlert() {
    Alert alert;
    alert.title = Words::tr(
        "You do not have privileges to clean these files. Please open the padlock at the bottom "
        "to have admin access.");
    alert.buttons = QStringList{Words::tr("OK")};
    alert.severity = Alert::Severity::Warning;
    return alert;
}

QString gainedWords(std::optional<std::int64_t> gained) {
    if (!gained) return {};
    return *gained > 0 ? Words::tr("Free space grew by %1").arg(sizeWords(std::uint64_t(*gained)))
                       : Words::tr("Free space did not grow");
}

QString lessThanPromised(std::optional<std::int64_t> gained, std::uint64_t promised) {
    if (!gained || static_cast<double>(*gained) >= enough * static_cast<double>(promised))
        return {};
    return Words::tr(
               "%1 were promised. The rest is still held: by what stayed, by programs that have "
               "removed files open, by snapshots and shared copies; or files were compressed, or "
               "others have written meanwhile.")
        .arg(sizeWords(promised));
}

KeptWords keptWords(const std::vector<ShownListing>& listings) {
    std::size_t count = 0;
    std::uint64_t bytes = 0;
    std::map<std::string_view, std::pair<std::uint64_t, std::size_t>> reasons;  // bytes, entries
    bool isMore = false;
    for (const auto& [title, each] : listings) {
        count += each->kept.size() + each->closed.size() + each->skipped.size();
        isMore = isMore || !each->closed.empty() || !each->skipped.empty();
        for (const CleanRow& row : each->kept) {
            addSaturating(bytes, row.keptBytes);
            auto& [size, entries] = reasons[row.keptWords];
            addSaturating(size, row.keptBytes);
            ++entries;
        }
    }
    if (count == 0) return {};
    KeptWords words{count == 1 ? Words::tr("kept: 1 entry")
                               : Words::tr("kept: %Ln entries", nullptr, static_cast<int>(count)),
                    {}};
    if (bytes > 0) words.count += QStringLiteral(", ") + sizeWords(bytes);
    if (reasons.empty()) return words;
    const auto most = std::ranges::max_element(reasons, {}, [](const auto& r) { return r.second; });
    const QString reason = inWords(ruleWords(most->first));
    words.because = isMore || reasons.size() > 1
                        ? Words::tr("because: %1; and for other reasons").arg(reason)
                        : Words::tr("because: %1").arg(reason);
    return words;
}

QStringList keptLines(const std::vector<ShownListing>& listings) {
    std::vector<Kept> kept;
    for (const auto& [title, each] : listings) {
        for (const CleanRow& row : each->kept) kept.push_back({row.path, ruleWords(row.keptWords)});
        for (const CategoryListing::Closed& closed : each->closed)
            kept.push_back(
                {closed.path.empty() ? title.toStdString() : closed.path, closed.reason});
        for (const Error& error : each->skipped) kept.push_back({error.path, error.reason()});
    }
    return linesByReason(kept);
}

QString trashWords(const CategoryListing& listing) {
    if (listing.rows.empty()) return {};
    const auto oldest = std::ranges::min_element(listing.rows, {}, &CleanRow::newest);
    const QString since =
        QLocale().toString(momentOf(Date{oldest->newest}).date(), QLocale::ShortFormat);
    return listing.rows.size() == 1 ? Words::tr("1 entry, in it since %1.").arg(since)
                                    : Words::tr("%Ln entries, the oldest in it since %1.", nullptr,
                                                static_cast<int>(listing.rows.size()))
                                          .arg(since);
}

}  // namespace orrinvale
