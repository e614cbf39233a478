// The toolkit's own way for messages depends on how it was built; ours does not.
#include "app/ProgramLog.h"

#include <fmt/format.h>

#include <QString>

#include "engine/base/Log.h"
#include "engine/diagnostics/MacLog.h"

namespace orrinvale {
namespace {

constexpr const char* logFileName = "Orrinvale.log";

void logMessage(QtMsgType /*type*/, const QMessageLogContext& context, const QString& message) {
    const bool hasCategory =
        context.category != nullptr && context.category != std::string("default");
    Log::line(fmt::format("{}{}{}", hasCategory ? context.category : "", hasCategory ? ": " : "",
                          message.toStdString()));
}

}  // namespace

void beginProgramLog(const SystemValues& system, Volumes& volumes) {
    MacLog::setParts({.system = &system, .volumes = &volumes});
    qInstallMessageHandler(logMessage);
}

void keepLogFile(bool isWanted) {
    if (!isWanted) return MacLog::closeLogFile();
    if (MacLog::openLogFile()) return MacLog::lookAfterFile();
    if (const auto opened = MacLog::setLogFile(logFileName); !opened)
        Log::line(fmt::format("There is no log file: {}: {}", opened.error().path,
                              opened.error().reason()));
}

}  // namespace orrinvale
