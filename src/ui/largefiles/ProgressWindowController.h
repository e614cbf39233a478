// ProgressWindowController: the window that stands over the program while files are removed.
#pragma once

#include <QDialog>
#include <cstdint>
#include <string>

namespace orrinvale {

class ElidedLabel;
class QnProgressView;
class TextImageButton;

class ProgressWindowControllerDelegate {
public:
    virtual ~ProgressWindowControllerDelegate() = default;
    virtual void stopRemove() {}

protected:
    ProgressWindowControllerDelegate() = default;
    ProgressWindowControllerDelegate(const ProgressWindowControllerDelegate&) = default;
    ProgressWindowControllerDelegate& operator=(const ProgressWindowControllerDelegate&) = default;
};

/// Keeps the rest of the program out of reach until the removal is over, and deletes itself then.
/// Closing it, like Escape, asks for a stop: the entry in hand is finished first, and the window
/// stays until then. Main thread only.
class ProgressWindowController final : public QDialog {
    Q_OBJECT
public:
    /// The delegate is not owned; it outlives the window.
    ProgressWindowController(QWidget* parent, ProgressWindowControllerDelegate& delegate);

    /// Percent and the path in hand, exact bytes. From 100 on the window closes.
    void changeProgressValue(std::int32_t percent, const std::string& path);

public Q_SLOTS:
    void stopButtonAction();
    void reject() override { stopButtonAction(); }

private:
    ProgressWindowControllerDelegate& m_delegate;
    QnProgressView* m_progressView;
    ElidedLabel* m_pathLabel;
    TextImageButton* m_stopButton;
};

}  // namespace orrinvale
