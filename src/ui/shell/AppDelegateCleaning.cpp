// The Fast Clean of AppDelegate, which FastClean does. See AppDelegate.h.
#include "ui/fastclean/FastClean.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"

namespace orrinvale {

std::unique_ptr<FastClean> AppDelegate::makeFastClean() {
    if (m_parts.clean.utilities == nullptr) return nullptr;
    return std::make_unique<FastClean>(FastCleanParts{.pages = m_parts.pages,
                                                      .clean = m_parts.clean,
                                                      .makeDoor = fastCleanDoor,
                                                      .bubbles = bubbleGround()},
                                       [this] { refFastCleanItem(); });
}

void AppDelegate::cleaningFile() {
    if (m_fastClean && !m_isLeaving) m_fastClean->cleaningFile();
}

void AppDelegate::handleCloseCleanWindow() {
    if (!m_fastClean) return;
    m_fastClean->handleCloseCleanWindow();
    mayGoOnUnseen(nullptr);
}

void AppDelegate::runAsMain() {
    if (m_fastClean) m_fastClean->runAsMain();
}

void AppDelegate::refFastCleanItem() {
    m_menu->setCanFastClean(m_fastClean && m_fastClean->canStart());
}

}  // namespace orrinvale
