// FolderEntrance: answers come later, so that each asks again whether the page lives and is free.
#include "ui/page/FolderEntrance.h"

#include <utility>
#include <vector>

#include "platform/files.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

bool isFolderThere(const PageServices& services, const std::string& path) {
    const auto attributes =
        services.files->attributes(FileSystem::noParent, path.c_str(), Links::Follow);
    return attributes && attributes->type == FileType::Folder;
}

FolderEntrance::FolderEntrance(const PageServices& services, QObject& page, Rules rules,
                               Question question)
    : m_services(services),
      m_page(&page),
      m_rules(std::move(rules)),
      m_question(std::move(question)) {}

void FolderEntrance::choose(QWidget* window, const std::string& directory) {
    PathChoice choice;
    choice.directory = directory;
    choice.withSeveral = true;
    m_services.dialogs->choosePaths(
        window, choice,
        [this, page = m_page, window = QPointer(window)](const std::vector<std::string>& paths) {
            if (page != nullptr && !paths.empty()) enter(window, paths.front(), paths.size() > 1);
        });
}

void FolderEntrance::drop(QWidget* window, const std::string& path, bool isOneOfSeveral) {
    if (isFolderThere(m_services, path)) enter(window, path, isOneOfSeveral);
}

void FolderEntrance::enter(QWidget* window, const std::string& path, bool isOneOfSeveral) {
    if (!m_rules.isFree()) return;
    if (!m_rules.wouldForget()) {
        m_rules.take(path, isOneOfSeveral);
        return;
    }
    Alert alert;
    alert.title = m_question.title;
    alert.text = m_question.text.arg(onOneLine(QString::fromStdString(path)));
    alert.buttons =
        QStringList{m_question.yes, QCoreApplication::translate("FolderEntrance", "Cancel")};
    alert.cancelButton = 1;
    m_services.dialogs->alert(window, alert,
                              [this, page = m_page, path, isOneOfSeveral](int button) {
                                  if (page != nullptr && button == 0 && m_rules.isFree())
                                      m_rules.take(path, isOneOfSeveral);
                              });
}

}  // namespace orrinvale
