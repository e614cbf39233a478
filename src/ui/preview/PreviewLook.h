// PreviewLook: the look at one file: a picture, a text or words, and the facts under it.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>

#include "ui/preview/previewWords.h"

class QLabel;
class QPlainTextEdit;
class QStackedWidget;

namespace orrinvale {

class ElidedLabel;
class PreviewPicture;
class PreviewReader;
class PreviewZoom;

/// What is read is read aside, a moment after it was asked for, and dropped where another is wanted
/// by then; meanwhile the place is empty, so that no file is ever seen under another's name. Main
/// thread only.
class PreviewLook final : public QWidget {
    Q_OBJECT
public:
    /// The zoom outlives it.
    explicit PreviewLook(PreviewZoom& zoom, QWidget* parent = nullptr);
    ~PreviewLook() override;

    void setReader(std::shared_ptr<const PreviewReader> reader) { m_reader = std::move(reader); }

    /// Exact bytes; an empty path is nothing at all. The same path is not read again.
    void setPath(const std::string& path);
    /// The same path is read again, for it may have changed; what is seen stays until then.
    void lookAgain();

    [[nodiscard]] const std::string& path() const { return m_path; }
    /// Null while there is nothing to see yet.
    [[nodiscard]] const PreviewSight* sight() const { return m_sight.get(); }
    [[nodiscard]] QPlainTextEdit& text() const { return *m_text; }
    [[nodiscard]] bool showsText() const;
    /// Marks the line with this character of the text, and shows it where it was not marked before;
    /// nothing where it is negative.
    void markLineOf(qsizetype character);

Q_SIGNALS:
    void sightChanged();

private:
    void stop();
    void ask();
    void take(std::shared_ptr<PreviewSight> sight);
    void setWords(const QString& lines);
    void setText(const std::string& text);
    void unmark();

    std::shared_ptr<const PreviewReader> m_reader;
    std::string m_path;
    std::shared_ptr<PreviewSight> m_sight;
    std::stop_source m_stop;       // of the question on its way
    std::uint64_t m_question = 0;  // answers to others are void
    qsizetype m_marked = -1;       // a character of the line, or none
    QElapsedTimer m_sinceStep;
    QTimer m_rest;  // who holds an arrow key down passes by many files
    QTimer m_wait;  // until somebody asks what takes so long
    QStackedWidget* m_pages;
    QWidget* m_nothing;
    PreviewPicture* m_picture;
    QPlainTextEdit* m_text;
    QLabel* m_words;
    ElidedLabel* m_name;
    QLabel* m_facts;
};

}  // namespace orrinvale
