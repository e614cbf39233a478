#include "cli/askYes.h"

#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "cli/Output.h"

namespace orrinvale::cli {

bool askYes(std::string_view question) {
    ::tcflush(STDIN_FILENO, TCIFLUSH);
    Output(STDERR_FILENO).write(fmt::format("{} [y/N] ", question));
    std::string answer;
    char typed = 0;
    while (::read(STDIN_FILENO, &typed, 1) == 1 && typed != '\n') answer += typed;
    return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace orrinvale::cli
