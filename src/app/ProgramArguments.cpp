// A reader that goes through the words once, and the order in which options, actions and a folder
// are tried.
#include "app/ProgramArguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"
#include "platform/error.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr const char* help =
    "usage: orrinvale [--action NAME | --disk-usage FOLDER] [FOLDER]\n"
    "\n"
    "Opens the window, and searches FOLDER for duplicates if one is given. A program that runs "
    "already\n"
    "comes to the front instead and takes over what is asked for.\n"
    "\n"
    "  --action NAME  duplicates, large-files, disk-usage, clean, uninstall, free-space, memory,\n"
    "                 login-items, preferences: show that page;\n"
    "                 fast-clean: show the window of Fast Clean, which waits for a click;\n"
    "                 eject-all: ask whether to eject all volumes; quit: end the running program\n"
    "  --disk-usage FOLDER\n"
    "                 show what fills FOLDER\n"
    "  --at-login     said by the entry that starts the program at login; with \"Start hidden\" in "
    "the\n"
    "                 preferences it then shows no window\n"
    "  --help         this text\n"
    "  --version      the version\n"
    "\n"
    "For scripts and servers there is orrinvale-cli.\n";

std::string activationToken() {
    for (const char* const name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        if (const char* const value = std::getenv(name); value != nullptr && *value != '\0')
            return value;
    return {};
}

// Reads the arguments one by one.
class Reader {
public:
    Reader(int argc, char** argv, const FileSystem& files)
        : m_end(argv + argc), m_next(argv + 1), m_files(files) {
        if (argc == 0) m_next = m_end;
    }

    ProgramArguments read() {
        bool pathsOnly = false;
        while (m_next < m_end && m_out.fault.empty() && m_out.toPrint.empty()) {
            const std::string_view argument = *m_next++;
            if (pathsOnly || !argument.starts_with('-')) takeFolder(argument);
            else if (argument == "--") pathsOnly = true;
            else takeOption(argument);
        }
        m_out.request.activationToken = activationToken();
        return m_out;
    }

private:
    void takeOption(std::string_view option) {
        if (option == "--help" || option == "-h") m_out.toPrint = help;
        else if (option == "--version") m_out.toPrint = "orrinvale " ORRINVALE_VERSION "\n";
        else if (option == "--action") takeAction(m_next < m_end ? *m_next++ : "");
        else if (option.starts_with("--action=")) takeAction(option.substr(option.find('=') + 1));
        else if (option == "--at-login") takeAtLogin();
        else if (option == "--disk-usage") takeUsage(m_next < m_end ? *m_next++ : "");
        else if (option.starts_with("--disk-usage="))
            takeUsage(option.substr(option.find('=') + 1));
        else if (option == "-session" && m_next < m_end)
            ++m_next;  // of the session manager, for the toolkit
        else
            m_out.fault = fmt::format("there is no option \"{}\"; see orrinvale --help",
                                      escapeControls(option));
    }

    void takeAction(std::string_view name) {
        if (std::ranges::find(startAction::all, name) == startAction::all.end())
            m_out.fault = fmt::format("there is no action \"{}\"; see orrinvale --help",
                                      escapeControls(name));
        else if (m_out.request.kind != StartRequest::Kind::Activate)
            m_out.fault = "more than one thing is asked for";
        else m_out.request = {StartRequest::Kind::Action, std::string(name), {}};
    }

    // A folder beside it is what counts.
    void takeAtLogin() {
        if (m_out.request.kind == StartRequest::Kind::Activate)
            m_out.request = {StartRequest::Kind::Action, std::string(startAction::atLogin), {}};
    }

    // "fr" wants a size behind it. Alone it asks for nothing, unless it names a folder.
    [[nodiscard]] bool isLoneMemoryRun(std::string_view given) const {
        return given == "fr" && m_next == m_end && !m_files.resolved(std::string(given));
    }

    void takeFolder(std::string_view given) {
        if (isLoneMemoryRun(given)) return;
        takeFolderFor({}, given);
    }

    void takeUsage(std::string_view given) { takeFolderFor(startAction::diskUsage, given); }

    // Without an action the folder is to be searched.
    void takeFolderFor(std::string_view action, std::string_view given) {
        const std::string path = pathOfFileUrl(given).value_or(std::string(given));
        if (m_out.request.kind != StartRequest::Kind::Activate) {
            m_out.fault = "more than one thing is asked for";
            return;
        }
        // By its full path: the running program stands in another folder, and what is relative is
        // never removed.
        const auto folder = m_files.resolved(path);
        const auto opened =
            folder ? m_files.openFolder(FileSystem::noParent, folder->c_str(), Links::Follow)
                   : SysResult<Descriptor>(tl::unexpected(folder.error()));
        if (opened && action.empty()) m_out.request = {StartRequest::Kind::Open, *folder, {}};
        else if (opened)
            m_out.request = {
                StartRequest::Kind::Action, startAction::withFolder(action, *folder), {}};
        else
            m_out.fault =
                escapeControls(path) + ": " + systemError("open", path, opened.error()).reason();
    }

    char** const m_end;
    char** m_next;
    const FileSystem& m_files;
    ProgramArguments m_out;
};

}  // namespace

ProgramArguments programArguments(int argc, char** argv, const FileSystem& files) {
    return Reader(argc, argv, files).read();
}

}  // namespace orrinvale
