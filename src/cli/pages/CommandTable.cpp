// ManualPage.cpp and Completions.cpp write what stands here into their formats.
#include "cli/pages/CommandTable.h"

#include <algorithm>
#include <utility>

namespace orrinvale::cli {
namespace {

std::vector<std::string_view> namesOf(std::string_view names) {
    std::vector<std::string_view> out;
    while (!names.empty()) {
        const std::size_t end = std::min(names.find(','), names.size());
        out.push_back(names.substr(0, end));
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return out;
}

OptionForms optionForms(const OptionSpec& option) {
    return {namesOf(option.names), option.argument, option.help};
}

}  // namespace

CommandForms formsOf(const Command& command) {
    CommandForms forms{command.name(), command.summary(), command.description(), {}, {}};
    for (const OptionSpec& each : command.options()) {
        if (each.names.starts_with('-')) forms.options.push_back(optionForms(each));
        else forms.arguments.push_back(each);
    }
    return forms;
}

std::vector<OptionForms> commonForms() {
    std::vector<OptionForms> forms{{{"-h", "--help"}, "", "Tell the options and end"}};
    for (const OptionSpec& each : commonOptions()) forms.push_back(optionForms(each));
    return forms;
}

std::vector<OptionForms> allOptions(const CommandForms& command) {
    std::vector<OptionForms> all = command.options;
    for (OptionForms& common : commonForms()) all.push_back(std::move(common));
    return all;
}

WordKind kindOf(std::string_view argument) {
    if (argument.starts_with("FOLDER")) return WordKind::Folder;
    if (argument.starts_with("VOLUME")) return WordKind::Volume;
    if (argument.starts_with("PATH")) return WordKind::Path;
    return WordKind::Free;
}

}  // namespace orrinvale::cli
