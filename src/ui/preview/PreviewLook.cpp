// A question on its way is told to stop before the next is asked, which ends the program that
// looks.
#include "ui/preview/PreviewLook.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTextBlock>
#include <QVBoxLayout>
#include <chrono>

#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/preview/PreviewPicture.h"
#include "ui/preview/PreviewZoom.h"
#include "ui/preview/previewCount.h"

namespace orrinvale {
namespace {

// A single step is asked about at once. Of steps that come faster than a person looks the last one
// is, when a held key would have made the next.
constexpr std::chrono::milliseconds previewRest{35};
constexpr std::int64_t fastStep = 150;  // milliseconds
// A place that stays empty for longer needs a word.
constexpr std::chrono::milliseconds emptyTime{1000};

// Where all places are taken, by disks that hang perhaps.
constexpr std::chrono::milliseconds placeTime{250};

// The machine had no time or room for another look at what has been seen meanwhile as it is.
bool isSeenAlready(const PreviewSight& seen, const PreviewSight& now) {
    const PreviewAnswer& before = seen.preview.answer;
    const PreviewFailure failure = now.preview.answer.failure;
    return (before.kind == PreviewAnswer::Kind::Picture ||
            before.kind == PreviewAnswer::Kind::Text) &&
           (failure == PreviewFailure::TooSlow || failure == PreviewFailure::TooMuchMemory ||
            failure == PreviewFailure::NotLooked) &&
           seen.preview.attributes.size == now.preview.attributes.size &&
           seen.preview.attributes.modified == now.preview.attributes.modified;
}

QLabel* wrappedLabel(const char* name, Theme::Text text) {
    QLabel* const label = makeLabel(name, text, QPalette::PlaceholderText);
    label->setWordWrap(true);
    label->setMinimumWidth(1);
    return label;
}

}  // namespace

PreviewLook::PreviewLook(PreviewZoom& zoom, QWidget* parent)
    : QWidget(parent),
      m_pages(new QStackedWidget),
      m_nothing(new QWidget),
      m_picture(named(new PreviewPicture(zoom), "previewPicture")),
      m_text(named(new QPlainTextEdit, "previewText")),
      m_words(wrappedLabel("previewWords", Theme::Text::Body)),
      m_name(named(new ElidedLabel(Qt::ElideMiddle), "previewName")),
      m_facts(wrappedLabel("previewFacts", Theme::Text::Caption)) {
    m_text->setReadOnly(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setFont(Theme::shared().font(Theme::Text::Caption));
    m_text->setTabChangesFocus(true);
    m_name->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    m_name->setAlignment(Qt::AlignCenter);
    for (QWidget* const page : {m_nothing, static_cast<QWidget*>(m_picture),
                                static_cast<QWidget*>(m_text), static_cast<QWidget*>(m_words)}) {
        page->setMinimumSize(1, 1);
        m_pages->addWidget(page);
    }
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapTiny);
    column->addWidget(m_pages, 1);
    column->addWidget(m_name);
    column->addWidget(m_facts);
    for (QWidget* const each : {static_cast<QWidget*>(m_picture), static_cast<QWidget*>(m_text)})
        each->setAccessibleName(tr("Preview"));
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &PreviewLook::ask);
    m_wait.setSingleShot(true);
    m_wait.setInterval(emptyTime);
    connect(&m_wait, &QTimer::timeout, this, [this] {
        if (m_sight == nullptr) setWords(tr("Still reading"));
    });
    connect(m_picture, &PreviewPicture::sharperWanted, this, [this] { m_rest.start(previewRest); });
}

PreviewLook::~PreviewLook() { m_stop.request_stop(); }

void PreviewLook::stop() {
    m_rest.stop();
    m_wait.stop();
    m_stop.request_stop();
    ++m_question;
}

void PreviewLook::setPath(const std::string& path) {
    if (path == m_path) return;
    stop();
    m_path = path;
    m_sight.reset();
    const QString name = onOneLine(QString::fromStdString(std::string(lastPathComponent(path))));
    m_name->setText(name);
    for (QWidget* const each : {static_cast<QWidget*>(m_picture), static_cast<QWidget*>(m_text)})
        each->setAccessibleName(name.isEmpty() ? tr("Preview") : name);
    m_facts->setText({});
    m_pages->setCurrentWidget(m_nothing);
    m_picture->setPicture({}, {});
    m_text->clear();
    unmark();
    const bool isFast = m_sinceStep.isValid() && m_sinceStep.elapsed() < fastStep;
    m_sinceStep.start();
    if (path.empty()) return;
    m_rest.start(isFast ? previewRest : std::chrono::milliseconds(0));
    m_wait.start();
}

void PreviewLook::lookAgain() {
    if (m_path.empty()) return;
    stop();
    m_rest.start(previewRest);
    m_wait.start();
}

void PreviewLook::ask() {
    if (m_path.empty() || !m_reader) return;
    auto place = PreviewCount::takePlace();
    if (!place) return m_rest.start(placeTime);
    m_picture->resize(m_pages->size());  // a page that is not on top has not been laid out
    m_stop.request_stop();
    m_stop = {};
    const std::uint64_t question = ++m_question;
    const auto errand = runAside(
        this, "readPreview",
        [reader = m_reader, path = m_path, side = m_picture->wantedSide(),
         token = m_stop.get_token(), place = std::move(place)] {
            return std::make_shared<PreviewSight>(readSight(*reader, path, side, token));
        },
        [this, question](std::shared_ptr<PreviewSight> sight) {
            if (question == m_question) take(std::move(sight));
        });
    if (errand == nullptr) m_rest.start(emptyTime);  // there is no thread to be had now
}

void PreviewLook::setWords(const QString& lines) {
    m_words->setText(lines);
    m_pages->setCurrentWidget(m_words);
}

void PreviewLook::setText(const std::string& text) {
    m_text->setPlainText(QString::fromStdString(text));
    unmark();
    m_pages->setCurrentWidget(m_text);
}

void PreviewLook::take(std::shared_ptr<PreviewSight> sight) {
    m_wait.stop();
    if (m_sight != nullptr && isSeenAlready(*m_sight, *sight)) return;
    const PreviewAnswer& answer = sight->preview.answer;
    const bool isShownText =
        showsText() && m_sight != nullptr && m_sight->preview.answer.content == answer.content;
    m_sight = std::move(sight);
    m_facts->setText(factsOf(*m_sight));
    if (answer.kind == PreviewAnswer::Kind::Picture) {
        m_picture->setPicture(m_sight->image, QSize(static_cast<int>(answer.storedWidth),
                                                    static_cast<int>(answer.storedHeight)));
        m_pages->setCurrentWidget(m_picture);
    } else if (answer.kind == PreviewAnswer::Kind::Text) {
        if (!isShownText) setText(answer.content);  // who has scrolled in it stays there
    } else {
        setWords(wordsFor(*m_sight).join(QLatin1Char('\n')));
    }
    // NOLINTNEXTLINE(readability-misleading-indentation): the macro is nothing, and has no column
    Q_EMIT sightChanged();
}

bool PreviewLook::showsText() const { return m_pages->currentWidget() == m_text; }

void PreviewLook::unmark() {
    m_marked = -1;
    m_text->setExtraSelections({});
}

void PreviewLook::markLineOf(qsizetype character) {
    if (character == m_marked) return;
    m_marked = character;
    QList<QTextEdit::ExtraSelection> marks;
    if (character >= 0) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(m_text->document());
        mark.cursor.setPosition(static_cast<int>(
            std::min<qsizetype>(character, m_text->document()->characterCount() - 1)));
        mark.format.setBackground(Theme::shared().color(Theme::Color::Selection));
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks.push_back(mark);
        m_text->setTextCursor(mark.cursor);
        m_text->ensureCursorVisible();
    }
    m_text->setExtraSelections(marks);
}

}  // namespace orrinvale
