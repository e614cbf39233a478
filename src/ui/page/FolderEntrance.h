// FolderEntrance: how a page comes to the folder that it works on: chosen in the panel, dropped, or
// named by another program.
#pragma once

#include <QPointer>
#include <QString>
#include <functional>
#include <string>

class QWidget;

namespace orrinvale {

struct PageServices;

/// Runs `then` if the path leads to a folder now, through a link too: at once, or later where the
/// disk does not answer at once, and never once the page is gone. Main thread.
void whenFolderIsThere(const PageServices& services, QObject& page, const std::string& path,
                       const std::function<void()>& then);

/// Where another folder would make the page forget ticks, the person is asked first. Main thread
/// only.
class FolderEntrance final {
public:
    struct Rules {
        std::function<bool()> isFree;       ///< no folder is taken while this is false
        std::function<bool()> wouldForget;  ///< ticks are on the screen
        /// Of several folders that were given the page takes the first.
        std::function<void(const std::string& path, bool isOneOfSeveral)> take;
    };
    struct Question {
        QString title;
        QString text;  ///< with %1 for the folder
        QString yes;
    };
    /// `page` is whose end makes the rules void. Nothing is owned.
    FolderEntrance(const PageServices& services, QObject& page, Rules rules, Question question);

    /// The panel starts in `directory`, exact bytes; in the home folder when it is empty.
    void choose(QWidget* window, const std::string& directory);
    /// Does nothing when the path is no folder.
    void drop(QWidget* window, const std::string& path, bool isOneOfSeveral);

private:
    void enter(QWidget* window, const std::string& path, bool isOneOfSeveral);

    const PageServices& m_services;
    QPointer<QObject> m_page;
    const Rules m_rules;
    const Question m_question;
};

}  // namespace orrinvale
