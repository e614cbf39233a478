// Which window a sheet goes over, and the chooser of paths, which is the toolkit's with rules of
// ours.
#include "ui/kit/dialogs/WindowDialogs.h"

#include <QAccessible>
#include <QApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "engine/base/Log.h"
#include "ui/kit/dialogs/AlertPanel.h"
#include "ui/kit/dialogs/Sheet.h"

namespace orrinvale {
namespace {

constexpr QSize chooserSize(720, 460);

QWidget* windowFor(QWidget* wanted) {
    if (wanted != nullptr) return wanted->window();
    if (QWidget* active = QApplication::activeWindow()) return active;
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* each : windows)
        if (each->isVisible() && each->windowType() == Qt::Window) return each;
    return nullptr;
}

// A link to a folder stands for the folder, as it does when it is opened in a file manager.
std::string withoutLink(std::string path) {
    std::error_code failure;
    if (!std::filesystem::is_symlink(path, failure)) return path;
    const auto target = std::filesystem::canonical(path, failure);
    return failure ? path : target.native();
}

std::vector<std::string> pathsOf(const QStringList& names) {
    std::vector<std::string> paths;
    paths.reserve(static_cast<std::size_t>(names.size()));
    for (const QString& name : names)
        paths.push_back(withoutLink(QFile::encodeName(name).toStdString()));
    return paths;
}

// Qt's own dialog: it looks like the rest of the window on every desktop, and it is the one that is
// tested. Its accept() enters a folder where files may be chosen too, and waits in a message box
// where a name is wrong.
class PathChooser final : public QFileDialog {
public:
    PathChooser(QWidget& window, const PathChoice& choice)
        : QFileDialog(&window, choice.title), m_choice(choice) {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowModality(Qt::WindowModal);
        setOption(QFileDialog::DontUseNativeDialog);
        setOption(QFileDialog::ShowDirsOnly, !choice.withFiles);
        setFileMode(choice.withFiles ? QFileDialog::ExistingFiles : QFileDialog::Directory);
        setLabelText(QFileDialog::Accept, choice.prompt);
        setDirectory(choice.directory.empty()
                         ? QDir::homePath()
                         : QFile::decodeName(QByteArray::fromStdString(choice.directory)));
        tidy();
    }

    void accept() override {
        m_paths = pathsOf(selectedFiles());
        if (!m_choice.withSeveral && m_paths.size() > 1) m_paths.resize(1);
        const bool areThere = std::ranges::all_of(m_paths, [this](const std::string& path) {
            std::error_code failure;
            return m_choice.withFiles ? std::filesystem::exists(path, failure)
                                      : std::filesystem::is_directory(path, failure);
        });
        // The chooser's own way looks the selection over by rules of its own.
        // NOLINTNEXTLINE(bugprone-parent-virtual-call)
        if (areThere && !m_paths.empty()) QDialog::done(QDialog::Accepted);
    }

    [[nodiscard]] const std::vector<std::string>& paths() const { return m_paths; }

private:
    // Folders have neither sizes nor types, and the name is what one looks for.
    void tidy() {
        resize(chooserSize);
        for (const char* name : {"fileTypeLabel", "fileTypeCombo"})
            if (auto* widget = findChild<QWidget*>(QLatin1String(name))) widget->hide();
        auto* list = findChild<QTreeView*>(QStringLiteral("treeView"));
        if (list == nullptr) return;
        list->setColumnHidden(1, !m_choice.withFiles);
        list->setColumnHidden(2, true);
        list->header()->setStretchLastSection(false);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        list->header()->setSectionResizeMode(3, QHeaderView::ResizeToContents);
    }

    const PathChoice m_choice;
    std::vector<std::string> m_paths;
};

}  // namespace

void WindowDialogs::alert(QWidget* window, const Alert& alert, Answer answered) {
    QWidget* const parent = windowFor(window);
    const int escape = escapeButton(alert);
    if (parent == nullptr) {
        Log::line(fmt::format("no window for the alert: {} {}", alert.title.toStdString(),
                              alert.text.toStdString()));
        QTimer::singleShot(0, qApp, [answered = std::move(answered), escape] { answered(escape); });
        return;
    }
    auto* panel = new AlertPanel(alert);
    auto* sheet = new Sheet(*parent, panel);  // ends itself
    sheet->setOnlyTells(alert.onlyTells);
    const auto finish = [sheet, answered = std::move(answered)](int button) {
        sheet->close([answered, button] { answered(button); });
    };
    const QDeadlineTimer deaf(alert.deafTime);
    QObject::connect(panel, &AlertPanel::pressed, sheet, [finish, deaf, escape](int button) {
        if (button == escape || deaf.hasExpired()) finish(button);
    });
    QObject::connect(sheet, &Sheet::cancelled, sheet, [finish, escape] {
        if (escape >= 0) finish(escape);
    });
    sheet->open(panel->keyboardButton());
    QAccessibleEvent event(panel, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void WindowDialogs::choosePaths(QWidget* window, const PathChoice& choice, Paths chosen) {
    QWidget* const parent = windowFor(window);
    if (parent == nullptr) {
        QTimer::singleShot(0, qApp, [chosen = std::move(chosen)] { chosen({}); });
        return;
    }
    auto* chooser = new PathChooser(*parent, choice);  // ends itself
    QObject::connect(
        chooser, &QDialog::finished, chooser, [chooser, chosen = std::move(chosen)](int result) {
            chosen(result == QDialog::Accepted ? chooser->paths() : std::vector<std::string>());
        });
    chooser->open();
}

}  // namespace orrinvale
