// orrinvale-docs: writes the manual page and the completions of orrinvale-cli. It runs while
// building and is not installed.
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandSet.h"
#include "cli/pages/CommandTable.h"

namespace orrinvale::cli {
namespace {

std::string page(std::string_view kind, const std::vector<CommandForms>& commands) {
    if (kind == "man") return manualPage(commands, ORRINVALE_VERSION, ORRINVALE_RELEASE_DATE);
    if (kind == "bash") return bashCompletion(commands);
    if (kind == "zsh") return zshCompletion(commands);
    if (kind == "fish") return fishCompletion(commands);
    return {};
}

bool writeFile(const char* path, const std::string& text) {
    std::FILE* const file = std::fopen(path, "we");
    if (file == nullptr) return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written;
}

int writePages(int argc, char** argv) {
    const CommandSet set;
    std::vector<CommandForms> commands;
    for (const auto& command : set.commands()) commands.push_back(formsOf(*command));
    if (argc < 3 || argc % 2 != 1) {
        std::fputs("usage: orrinvale-docs man|bash|zsh|fish FILE [KIND FILE...]\n", stderr);
        return 2;
    }
    for (int i = 1; i < argc; i += 2) {
        const std::string text = page(argv[i], commands);
        if (!text.empty() && writeFile(argv[i + 1], text)) continue;
        std::fprintf(stderr, "orrinvale-docs: could not write %s as %s\n", argv[i + 1], argv[i]);
        return 1;
    }
    return 0;
}

}  // namespace
}  // namespace orrinvale::cli

int main(int argc, char** argv) { return orrinvale::cli::writePages(argc, argv); }
