// Codecs and containers are names and stay as they are; all else is put into the window's language.
#include "ui/preview/previewWords.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <QMimeDatabase>
#include <cerrno>
#include <utility>

#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"
#include "ui/kit/controls/numberText.h"

namespace orrinvale {
namespace {

using AnswerKind = PreviewAnswer::Kind;

struct PreviewWords {
    Q_DECLARE_TR_FUNCTIONS(PreviewPane)
};

QString pixelText(std::uint32_t width, std::uint32_t height) {
    return QStringLiteral("%1 × %2").arg(QString::number(width), QString::number(height));
}

// A figure and its unit stay on one line.
QString unbroken(QString text) { return text.replace(QLatin1Char(' '), QChar(QChar::Nbsp)); }

QString failureText(PreviewFailure failure) {
    switch (failure) {
        case PreviewFailure::Damaged: return PreviewWords::tr("Can not be shown: it is damaged");
        case PreviewFailure::TooLarge: return PreviewWords::tr("Can not be shown: it is too large");
        case PreviewFailure::TooMuchMemory:
            return PreviewWords::tr("Can not be shown: it takes too much memory");
        case PreviewFailure::Unreadable: return PreviewWords::tr("It could not be read");
        case PreviewFailure::TooSlow:
            return PreviewWords::tr("Can not be shown: it takes too long");
        case PreviewFailure::Crashed:
            return PreviewWords::tr("Can not be shown: no program here understands it");
        default: return PreviewWords::tr("Can not be shown");
    }
}

QString errorText(int error) {
    if (error == ENOENT || error == ENOTDIR) return PreviewWords::tr("It is gone");
    if (error == EACCES || error == EPERM) return PreviewWords::tr("You may not read it");
    return PreviewWords::tr("It could not be read");
}

// Empty for a file.
QString entryText(FileType type) {
    switch (type) {
        case FileType::Folder: return PreviewWords::tr("A folder");
        case FileType::SymbolicLink: return PreviewWords::tr("A link, which is not followed");
        case FileType::Regular: return {};
        case FileType::Fifo:
        case FileType::Socket: return PreviewWords::tr("A connection between programs");
        default: return PreviewWords::tr("A device");
    }
}

}  // namespace

QStringList mediaLines(const MediaFacts& facts) {
    QStringList lines{QString::fromStdString(facts.container)};
    if (facts.milliseconds != 0) lines.push_back(durationText(facts.milliseconds));
    if (facts.width != 0 && facts.height != 0)
        lines.push_back(pixelText(facts.width, facts.height));
    QStringList codecs;
    for (const std::string& codec : {facts.video, facts.audio})
        if (!codec.empty()) codecs.push_back(QString::fromStdString(codec));
    if (!codecs.isEmpty()) lines.push_back(codecs.join(QStringLiteral(", ")));
    constexpr double perKilo = 1000;
    QStringList sound;
    if (facts.channels == 1) sound.push_back(PreviewWords::tr("Mono"));
    else if (facts.channels == 2) sound.push_back(PreviewWords::tr("Stereo"));
    else if (facts.channels != 0)
        sound.push_back(PreviewWords::tr("%1 channels").arg(QString::number(facts.channels)));
    if (facts.rate != 0)
        sound.push_back(QStringLiteral("%1 kHz").arg(QLocale().toString(facts.rate / perKilo)));
    if (!sound.isEmpty()) lines.push_back(sound.join(QStringLiteral(", ")));
    return lines;
}

// The bytes are copied: what they lie in goes.
QImage imageIn(const PreviewAnswer& answer) {
    const int width = static_cast<int>(answer.width), height = static_cast<int>(answer.height);
    return QImage(reinterpret_cast<const uchar*>(answer.content.data()), width, height,
                  static_cast<qsizetype>(answer.width) * qsizetype{bytesPerPixel},
                  QImage::Format_ARGB32_Premultiplied)
        .copy();
}

PreviewSight readSight(const PreviewReader& reader, const std::string& path, std::uint32_t side,
                       const std::stop_token& stop) {
    PreviewSight sight{reader.read(path, side, stop), {}, {}};
    const QMimeType type = QMimeDatabase().mimeTypeForFile(
        QString::fromStdString(std::string(lastPathComponent(path))),
        QMimeDatabase::MatchExtension);
    if (!type.isDefault()) sight.type = type.comment();
    if (sight.preview.answer.kind == AnswerKind::Picture) {
        sight.image = imageIn(sight.preview.answer);
        sight.preview.answer.content = {};
    }
    return sight;
}

QString durationText(std::uint64_t milliseconds) {
    constexpr std::uint64_t minute = 60, hour = 3600, perSecond = 1000;
    const std::uint64_t seconds = milliseconds / perSecond;
    const auto twoDigits = [](std::uint64_t number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    const QString rest = twoDigits(seconds % minute);
    if (seconds < hour) return QStringLiteral("%1:%2").arg(QString::number(seconds / minute), rest);
    return QStringLiteral("%1:%2:%3")
        .arg(QString::number(seconds / hour), twoDigits(seconds % hour / minute), rest);
}

QString factsOf(const PreviewSight& sight) {
    const Preview& preview = sight.preview;
    const PreviewAnswer& answer = preview.answer;
    if (preview.attributes.type == FileType::Unknown) return {};
    QStringList facts;
    if (!sight.type.isEmpty() && preview.attributes.type == FileType::Regular)
        facts.push_back(sight.type);
    if (answer.kind == AnswerKind::Picture)
        facts.push_back(unbroken(pixelText(answer.storedWidth, answer.storedHeight)));
    if (answer.kind == AnswerKind::Text) facts.push_back(QString::fromStdString(answer.encoding));
    if (preview.attributes.type == FileType::Regular)
        facts.push_back(
            unbroken(shownSize(UtilityFunction::convertVolSpace(preview.attributes.size))));
    constexpr std::int64_t perMillisecond = 1'000'000;
    facts.push_back(unbroken(QLocale().toString(
        QDateTime::fromMSecsSinceEpoch(preview.attributes.modified / perMillisecond),
        QLocale::ShortFormat)));
    if (answer.isCut) facts.push_back(PreviewWords::tr("beginning only"));
    return facts.join(QStringLiteral("  ·  "));
}

QStringList wordsFor(const PreviewSight& sight) {
    const Preview& preview = sight.preview;
    if (preview.error != 0) return {errorText(preview.error)};
    if (const QString entry = entryText(preview.attributes.type); !entry.isEmpty()) return {entry};
    if (preview.answer.kind == AnswerKind::Failed) return {failureText(preview.answer.failure)};
    if (preview.answer.kind == AnswerKind::Media) return mediaLines(preview.answer.media);
    if (preview.attributes.size == 0) return {PreviewWords::tr("An empty file")};
    return {PreviewWords::tr("Nothing to see of this kind of file")};
}

}  // namespace orrinvale
