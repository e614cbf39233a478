// Page: what a window, and the end of the program, ask of a page, whichever it is.
// docs/your-first-page.md adds one.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>

class QWidget;

namespace orrinvale {

/// A view belongs to the page until a window takes it over. An operation that a page has no use for
/// stays as it is here. Main thread only.
class Page {
public:
    virtual ~Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    /// What a window shows of it first.
    [[nodiscard]] virtual QWidget* view() const = 0;
    /// The window that its questions stand over. Told before the view is shown; not owned.
    virtual void setMainWindow(QWidget* window) = 0;

    /// Something runs that has to end before a folder is taken.
    [[nodiscard]] virtual bool isBusy() const { return false; }
    /// An entry may go at any moment.
    [[nodiscard]] virtual bool isRemoving() const { return false; }
    /// The program is about to end: a removal ends before its next entry, and does not begin where
    /// it has not begun. Does nothing while there is none.
    virtual void giveUp() {}

    /// Lets the person choose a folder.
    virtual void chooseFolder() {}
    /// Takes a folder that was named outside of the page, as if it had been dropped here.
    virtual void takeFolder(const std::string& path) { static_cast<void>(path); }
    /// Goes on to the next row that can be previewed, or with -1 to the one before, and gives its
    /// path in exact bytes; empty where there is none.
    [[nodiscard]] virtual std::string previewBeside(int step) {
        static_cast<void>(step);
        return {};
    }

protected:
    Page() = default;
};

/// What every page asks of the window that it stands in.
class PageDelegate {
public:
    virtual ~PageDelegate() = default;
    /// Exact bytes; of a group those of its first copy.
    virtual void pereviewFileWithFileNodePath(const std::string& path) { static_cast<void>(path); }

protected:
    PageDelegate() = default;
    PageDelegate(const PageDelegate&) = default;
    PageDelegate& operator=(const PageDelegate&) = default;
};

/// A page as its subsystem describes it to a window.
struct PageDescriptor {
    QString identifier;
    QString label;
    QString picture;                              ///< a name for picture()
    std::function<std::unique_ptr<Page>()> make;  ///< called when it is first shown
};

}  // namespace orrinvale
