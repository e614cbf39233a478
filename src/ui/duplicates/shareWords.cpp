// cli/ShareCommand.cpp and cli/ShareReport.cpp say the same in the terminal.
#include "ui/duplicates/shareWords.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>
#include <cstdlib>

#include "engine/text/UtilityFunction.h"
#include "ui/duplicates/PageRemoval.h"
#include "ui/kit/controls/numberText.h"

namespace orrinvale {
namespace {

struct ShareWords {
    Q_DECLARE_TR_FUNCTIONS(ShareWords)
};

constexpr int yesButton = 0, linkToo = 2;

QString sizeOfBytes(std::uint64_t bytes) {
    return shownSize(UtilityFunction::convertVolSpace(bytes));
}

QString byExtents(const ShareOutlook::Way& way) {
    const auto count = static_cast<int>(way.files);
    return (count == 1 ? ShareWords::tr("1 file, up to %1: it stays a file of its own.")
                       : ShareWords::tr("%Ln files, up to %1: each stays a file of its own.",
                                        nullptr, count))
        .arg(sizeOfBytes(way.bytes));
}

QString byLinks(const ShareOutlook::Way& way) {
    const auto count = static_cast<int>(way.files);
    return (count == 1
                ? ShareWords::tr("1 file, up to %1, by a hard link alone: it becomes another name "
                                 "of the copy that stays. They are one file then, and a change to "
                                 "one is a change to both.")
                : ShareWords::tr("%Ln files, up to %1, by hard links alone: they become other "
                                 "names of the copies that stay. That is one file then, and a "
                                 "change to one is a change to all.",
                                 nullptr, count))
        .arg(sizeOfBytes(way.bytes));
}

// What is left as it is, and why.
QStringList leftAsItIs(const ShareOutlook& outlook) {
    QStringList lines;
    if (outlook.already == 1) lines << ShareWords::tr("1 has nothing to give.");
    else if (outlook.already > 1)
        lines << ShareWords::tr("%Ln have nothing to give.", nullptr,
                                static_cast<int>(outlook.already));
    if (outlook.noFiles == 1)
        lines << ShareWords::tr(
            "1 folder or link is left out: only files can have their space in common.");
    else if (outlook.noFiles > 1)
        lines << ShareWords::tr(
            "%Ln folders or links are left out: only files can have their space in common.",
            nullptr, static_cast<int>(outlook.noFiles));
    if (outlook.wholeGroups == 1)
        lines << ShareWords::tr("1 group is left out: all its copies are ticked, and one stays.");
    else if (outlook.wholeGroups > 1)
        lines << ShareWords::tr(
            "%Ln groups are left out: all their copies are ticked, and one stays.", nullptr,
            static_cast<int>(outlook.wholeGroups));
    if (outlook.kept.size() == 1) lines << ShareWords::tr("1 keeps its own space.");
    else if (outlook.kept.size() > 1)
        lines << ShareWords::tr("%Ln keep their own space.", nullptr,
                                static_cast<int>(outlook.kept.size()));
    return lines;
}

}  // namespace

Alert shareQuestion(const ShareOutlook& outlook) {
    Alert question;
    QStringList parts;
    if (outlook.extents.files > 0) parts << byExtents(outlook.extents);
    if (outlook.links.files > 0) parts << byLinks(outlook.links);
    if (const QStringList left = leftAsItIs(outlook); !left.isEmpty())
        parts << left.join(QLatin1Char('\n'));
    question.text = parts.join(QStringLiteral("\n\n"));
    if (!outlook.kept.empty()) question.linkText = ShareWords::tr("Show Why");
    if (outlook.extents.files + outlook.links.files == 0) {
        question.title = ShareWords::tr("Nothing here can share its space");
        return question;
    }
    question.title = ShareWords::tr("Share the space of the copies that stay?");
    question.cancelButton = 1;
    question.buttons = QStringList{
        outlook.extents.files > 0 ? ShareWords::tr("Share") : ShareWords::tr("Make Hard Links"),
        ShareWords::tr("Cancel")};
    if (outlook.extents.files > 0 && outlook.links.files > 0)
        question.buttons << ShareWords::tr("With Hard Links Too");
    if (outlook.extents.files == 0) {
        question.severity = Alert::Severity::Warning;
        question.keyboardButton = question.cancelButton;
    }
    return question;
}

std::optional<ShareYes> shareYesOf(const ShareOutlook& outlook, int button) {
    if (outlook.extents.files + outlook.links.files == 0) return std::nullopt;
    if (button == linkToo) return ShareYes::Links;
    if (button != yesButton) return std::nullopt;
    return outlook.extents.files > 0 ? ShareYes::Extents : ShareYes::Links;
}

SharedSums sharedOf(const PageRemoval& sharing) {
    SharedSums sums;
    for (const ShareList::Settled& each : sharing.sharing->account())
        if (each.as == ShareList::Settled::As::Shared)
            ++(each.shared.by == RemovalResult::Shared::By::Already ? sums.already : sums.files);
    sums.promised = sharing.sharing->promised();
    sums.gained = sharing.gained;
    return sums;
}

QString sharedText(const SharedSums& shared) {
    const auto counted = [](std::size_t count) { return QLocale().toString(qulonglong(count)); };
    if (shared.files == 0 && shared.already > 0)
        return ShareWords::tr("%1 shared before").arg(counted(shared.already));
    if (shared.files == 0) return ShareWords::tr("Nothing was shared");
    if (!shared.gained)
        return ShareWords::tr("%1 shared, up to %2")
            .arg(counted(shared.files), sizeOfBytes(shared.promised));
    if (*shared.gained <= 0) return ShareWords::tr("%1 shared").arg(counted(shared.files));
    return ShareWords::tr("%1 shared, %2")
        .arg(counted(shared.files), sizeOfBytes(static_cast<std::uint64_t>(*shared.gained)));
}

QString gainTip(const SharedSums& shared) {
    if (shared.files == 0 || !shared.gained) return {};
    const QString most = sizeOfBytes(shared.promised);
    const QString by = sizeOfBytes(static_cast<std::uint64_t>(std::abs(*shared.gained)));
    QString grown =
        (*shared.gained < 0 ? ShareWords::tr("Free space shrank by %1, of %2 at the most.")
                            : ShareWords::tr("Free space grew by %1, of %2 at the most."))
            .arg(by, most);
    constexpr double nearly = 0.9;
    if (static_cast<double>(*shared.gained) >= nearly * static_cast<double>(shared.promised))
        return grown;
    return grown + u'\n' +
           ShareWords::tr(
               "Snapshots, further copies and programs that write meanwhile make it less.");
}

QString unsharedText(const RemovalOutcome& outcome) {
    const std::size_t count = outcome.failed + outcome.kept;
    if (count == 0) return {};
    return ShareWords::tr("%1 not shared").arg(QLocale().toString(qulonglong(count)));
}

QString lookingText() {
    return ShareWords::tr("Looking how these copies can share their space\u2026");
}

QString stopLookText() { return ShareWords::tr("Stop"); }

}  // namespace orrinvale
