// The manual page of orrinvale-cli: what the tables of the commands say, and around it what holds
// for all of them.
#include <fmt/format.h>

#include <algorithm>

#include "cli/pages/CommandTable.h"

namespace orrinvale::cli {
namespace {

// Text for the formatter: its own characters are escaped, and a dash stays one that can be copied
// into a terminal.
std::string plain(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\\': out += "\\e"; break;
            case '-': out += "\\-"; break;
            case '\'': out += "\\(aq"; break;
            case '`': out += "\\(ga"; break;
            case '~': out += "\\(ti"; break;
            case '^': out += "\\(ha"; break;
            default: out += c;
        }
    }
    if (out.starts_with('.')) out.insert(0, "\\&");
    return out;
}

std::string bold(std::string_view text) { return "\\fB" + plain(text) + "\\fP"; }
std::string slanted(std::string_view text) { return "\\fI" + plain(text) + "\\fP"; }

// Each sentence begins a line, so that the formatter sets the space between them; long ones take
// several lines.
std::string sentences(std::string_view text) {
    constexpr std::size_t widest = 78;
    std::string out;
    std::string line;
    const auto endLine = [&] {
        out += line + '\n';
        line.clear();
    };
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty() && line.size() + 1 + plain(word).size() > widest) endLine();
        line += (line.empty() ? "" : " ") + plain(word);
        if (word.ends_with('.')) endLine();
    }
    if (!line.empty()) endLine();
    return out;
}

std::string closed(std::string_view text) {
    return std::string(text) + (text.ends_with('.') || text.empty() ? "" : ".");
}

// All names of an option in a row, and what it takes behind a blank.
std::string namesOf(const OptionForms& option, const char* between, const char* blank) {
    std::string names;
    for (const std::string_view name : option.names)
        names += (names.empty() ? "" : between) + bold(name);
    return option.argument.empty() ? names : names + blank + slanted(option.argument);
}

std::string optionEntry(const OptionForms& option) {
    return fmt::format(".TP\n{}\n{}", namesOf(option, ", ", " "), sentences(closed(option.help)));
}

std::string synopsis(const CommandForms& command) {
    std::string out = fmt::format(".SY orrinvale\\-cli\n.B {}\n", plain(command.name));
    for (const OptionForms& option : allOptions(command))
        out += '[' + namesOf(option, "\\ |\\ ", "\\ ") + "]\n";
    for (const OptionSpec& argument : command.arguments) out += slanted(argument.names) + '\n';
    return out + ".YS\n";
}

std::string commandSection(const CommandForms& command) {
    std::string out =
        fmt::format(".SS {}\n{}", plain(command.name), sentences(closed(command.summary)));
    out += sentences(command.description);
    for (const OptionForms& option : command.options) out += optionEntry(option);
    for (const OptionSpec& argument : command.arguments)
        out += fmt::format(".TP\n{}\n{}", slanted(unbracketed(argument.names)),
                           sentences(closed(argument.help)));
    return out;
}

constexpr std::string_view beforeCommands = R"(.SH DESCRIPTION
.B orrinvale\-cli
looks after disks without a window: in terminals, in scripts and on servers.
Results go to standard output, everything else to standard error.
Colours and the line of progress appear on a terminal only.
Ctrl\-C stops a search; what it found until then is printed.
The same holds when memory runs out; the exit status is 1 then.
A file system that does not answer for five seconds is named
on standard error with the path.
In listings and messages characters that would command the terminal,
turn the direction of writing or have no width are shown as \exHH;
JSON and \-0 have the exact name.
.PP
Sizes are given as 10MB, 1.5 GB, 4KiB or as a number of bytes:
KB, MB, GB are powers of 1000, KiB, MiB, GiB of 1024.
)";

constexpr std::string_view afterCommands = R"(.SH OUTPUT
Sizes in the JSON document are whole bytes.
Times are ISO 8601 with their offset.
A path whose bytes are not UTF\-8 has a second field
.B pathHex
with the exact bytes in hexadecimal.
.PP
With
.B \-0
paths are printed byte by byte, which is what
.B xargs \-0
takes.
)";

constexpr std::string_view closing = R"(.SH ENVIRONMENT
.TP
.B NO_COLOR
No colours, whatever it is set to, unless it is empty.
.SH EXAMPLES
.TP
.B orrinvale\-cli duplicates \(ti/Pictures
What is there twice.
.TP
.B orrinvale\-cli large \-\-top 10 \(ti
The ten biggest entries of the home folder.
.TP
.B orrinvale\-cli large \-\-flat \-\-kind videos \-\-unopened 1y \(ti
The films that nobody has opened for a year, the biggest first.
.TP
.B orrinvale\-cli volumes \-\-json
The mounted volumes, for a script.
.SH SEE ALSO
.BR orrinvale (1)
)";

}  // namespace

std::string manualPage(const std::vector<CommandForms>& commands, std::string_view version,
                       std::string_view date) {
    std::string out =
        fmt::format(".TH ORRINVALE\\-CLI 1 {} \"Orrinvale {}\" \"User Commands\"\n", date, version);
    out += ".SH NAME\norrinvale\\-cli \\- disk maintenance in the terminal\n.SH SYNOPSIS\n";
    for (const CommandForms& command : commands) out += synopsis(command);
    out += ".SY orrinvale\\-cli\n.B \\-\\-version\n.YS\n";
    out += beforeCommands;
    out += ".SH COMMANDS\n";
    for (const CommandForms& command : commands) out += commandSection(command);
    out += ".SH OPTIONS\nEvery command takes these.\n";
    for (const OptionForms& option : commonForms()) out += optionEntry(option);
    out += afterCommands;
    out += ".SH EXIT STATUS\n";
    for (const StatusMeaning& each : statusMeanings())
        out +=
            fmt::format(".TP\n.B {}\n{}", static_cast<int>(each.status), sentences(each.meaning));
    return out + std::string(closing);
}

}  // namespace orrinvale::cli
