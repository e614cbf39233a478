// What AppDelegate tells of the computer and of the log.
#include <fmt/format.h>

#include <QDialog>
#include <QGuiApplication>
#include <QLocale>
#include <utility>

#include "engine/settings/settingNotices.h"
#include "services/foundation/runAside.h"
#include "ui/diagnostics/ComputerPanel.h"
#include "ui/diagnostics/logWords.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/preferences/chosenLook.h"
#include "ui/shell/AppDelegate.h"

namespace orrinvale {
namespace {

// What one is asked for first who reports a fault.
std::vector<std::string> linesAboutTheProgram() {
    const std::string desktop =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP", QStringLiteral("not told")).toStdString();
    return {
        fmt::format("Orrinvale {}, Qt {}", QCoreApplication::applicationVersion().toStdString(),
                    qVersion()),
        fmt::format("desktop: {} ({}), language: {}", desktop,
                    QGuiApplication::platformName().toStdString(), QLocale().name().toStdString()),
        " "};
}

}  // namespace

void AppDelegate::openComputerWindow() {
    if (m_parts.diagnostics.system == nullptr || m_isLeaving || !m_computerSheet.isNull()) return;
    auto* const panel = new ComputerPanel(*m_parts.diagnostics.system);
    m_computerSheet = new Sheet(*windowForWords(), panel);  // ends itself
    m_computerSheet->setOnlyTells(true);
    Sheet* const sheet = m_computerSheet;
    const auto close = [sheet] { sheet->close([] {}); };
    connect(sheet, &Sheet::cancelled, sheet, close);
    connect(panel->closeButton, &QAbstractButton::clicked, sheet, close);
    connect(panel->copyButton, &QAbstractButton::clicked, this,
            [this, sheet] { sheet->close([this] { copyReport(); }); });
    sheet->open(panel->closeButton);
}

// The folder of the log may be slow to answer.
void AppDelegate::lookAtLogFile(std::function<void(const LogState& state)> then) {
    if (!m_parts.diagnostics.logState) return;
    runAside(this, "lookAtLogFile", m_parts.diagnostics.logState,
             [this, then = std::move(then)](const LogState& state) {
                 takeLogState(state);
                 if (then && !m_isLeaving) then(state);
             });
}

void AppDelegate::takeLogState(const LogState& state) {
    m_logFault = logFaultWords(state.failure);
    notice::logFileLookedAt.post(*m_parts.pages.notifications);
}

void AppDelegate::showLog() {
    if (m_isLeaving) return;
    lookAtLogFile([this, number = ++m_logLook](const LogState& state) {
        if (number != m_logLook) return;  // clicked again meanwhile
        m_parts.pages.dialogs->alert(
            windowForWords(), logAlert(state), [this, file = state.file](int button) {
                if (!file || (button != OpenLogFile && button != ShowLogInFolder)) return;
                if (button == OpenLogFile && m_parts.openFolder(*file)) return;
                if (m_parts.pages.reveal) m_parts.pages.reveal(*file);
            });
    });
}

// A volume may take a while to answer.
void AppDelegate::copyReport() {
    const DiagnosticParts& parts = m_parts.diagnostics;
    if (parts.system == nullptr || parts.volumes == nullptr || m_isLeaving) return;
    if (!m_report.isNull()) {
        m_report->raise();
        m_report->activateWindow();
        return;
    }
    m_report = showLineList(windowForWords(), tr("A report to copy, without any names of yours"),
                            {tr("The computer and its volumes are being asked…")});
    runAside(
        m_report, "copyReport",
        [parts, further = linesAboutTheProgram()] {
            return computerReportWithoutNames(*parts.system, *parts.volumes, parts.names, further);
        },
        [report = m_report.data()](const std::vector<std::string>& lines) {
            QStringList shown;
            for (const std::string& each : lines) shown += onOneLine(QString::fromStdString(each));
            setLinesOf(*report, shown);
        });
}

void AppDelegate::followLogFile() {
    const DiagnosticParts& parts = m_parts.diagnostics;
    if (!parts.keepLogFile || !parts.logState || m_isKeepingLogFile) return;
    const bool isWanted = wantsLogFile();
    // One that could not be had is tried again when somebody switches it, and not at each change of
    // another setting.
    if (std::exchange(m_wantsLogFile, isWanted) == isWanted) return;
    m_isKeepingLogFile = true;
    const auto worker = runAside(
        this, "keepLogFile",
        [keep = parts.keepLogFile, look = parts.logState, isWanted] {
            keep(isWanted);
            return look();
        },
        [this, isWanted](const LogState& state) {
            m_isKeepingLogFile = false;
            takeLogState(state);
            if (wantsLogFile() != isWanted) followLogFile();  // changed meanwhile
        });
    if (!worker) m_isKeepingLogFile = false;
}

}  // namespace orrinvale
