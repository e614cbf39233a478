// QnCheckUpdateWindowController: the window that looks for a newer version and tells what is new in
// it. UpdateViews.h has its controls, engine/updates the asking and the comparison.
#pragma once

#include <QObject>
#include <QString>
#include <QVariantAnimation>
#include <functional>
#include <memory>

#include "engine/updates/UpdateCheck.h"
#include "ui/updates/UpdateViews.h"

namespace orrinvale {

class TCImageWindow;
class ThreadWorker;

/// One check: who wants another one makes another controller. While its window is open no other
/// window of the program takes anything. Main thread only.
class QnCheckUpdateWindowController final : public QObject {
    Q_OBJECT
public:
    struct Parts {
        UpdateParts updates;
        std::function<void(const QString& address)> openAddress;  ///< in the browser
        std::function<void()> terminate;  ///< ends the program, when the window is gone
    };
    enum class State : std::uint8_t { Checking, NoNetwork, NoUpdate, HaveUpdate };
    enum class TerminateReply : std::uint8_t { Cancel, Now };

    explicit QnCheckUpdateWindowController(Parts parts, QObject* parent = nullptr);
    ~QnCheckUpdateWindowController() override;

    /// Opens the window in the middle of the screen, or brings it to the front.
    void showWindow();

    void awakeFromNib();
    void windowDidLoad();
    /// Asks aside, and shows what came of it.
    void getVersionChange();
    /// Null is a description that could not be had, which reads as up to date. "VersionCheck" and
    /// "Version" are taken out of one that is newer.
    void whatIsNewVersionDiff(PropertyList* description);
    void updateClickHereAction();
    /// What the close button does: the window goes at once, and a check under way with it.
    void closeWindow();
    void closeWindowAction() { closeWindow(); }
    /// The window fades, and closes at the end of that. Always false.
    bool windowShouldClose();
    void animationDidStop();
    /// The first call of a window that is open fades it; the program ends when that is over.
    [[nodiscard]] TerminateReply applicationShouldTerminate();

    [[nodiscard]] TCImageWindow* window() const { return aWindow.get(); }
    [[nodiscard]] const UpdateViews& views() const { return m_views; }
    [[nodiscard]] State state() const { return m_state; }

Q_SIGNALS:
    void closed();

private:
    void enter(State state);
    void take(FetchedUpdate update);
    void showNoUpdate(UpdateRoad road);
    void fadeTo(double alpha);
    void setAlpha(double alpha);

    const Parts m_parts;
    std::unique_ptr<TCImageWindow> aWindow;
    UpdateViews m_views;
    State m_state = State::Checking;
    bool shuttingDown = false;
    bool m_isClosed = false;
    double m_alpha = 1;
    QVariantAnimation m_fade;
    std::shared_ptr<ThreadWorker> m_worker;
};

}  // namespace orrinvale
