// PreviewWindow: a look at one file or folder, without ever running or changing it.
// previewContent.h reads it.
#pragma once

#include <QTimer>
#include <QWidget>
#include <stop_token>
#include <string>

class QLabel;
class QPlainTextEdit;
class QStackedWidget;

namespace orrinvale {

class FileIcons;
struct PreviewContent;

/// Shows a picture, the beginning of a text, or the facts of anything else. What is read is read on
/// a worker, so that a slow disk does not hold the window up. Escape, space, the preview key and
/// the keys that close a window close it, and none of them reaches the window behind. Main thread
/// only.
class PreviewWindow final : public QWidget {
    Q_OBJECT
public:
    explicit PreviewWindow(FileIcons& icons, QWidget* parent = nullptr);
    ~PreviewWindow() override;

    /// Exact bytes. A path that names nothing shows that it is missing.
    void showPath(const std::string& path);
    [[nodiscard]] const std::string& path() const { return m_path; }

Q_SIGNALS:
    /// The file after this one is to be shown, with 1, or the one before it, with -1.
    void otherWanted(int step);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void ask();
    void stop();
    void showContent(const PreviewContent& content);

    FileIcons& m_icons;
    std::string m_path;
    std::stop_source m_stop;  // of the question on its way; its answer is void then
    QTimer m_rest;            // who holds an arrow key down passes by many files
    QLabel* m_name;
    QLabel* m_facts;
    QStackedWidget* m_pages;
    QLabel* m_picture;
    QPlainTextEdit* m_text;
    QLabel* m_icon;
};

}  // namespace orrinvale
