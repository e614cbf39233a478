// engine/volumes/VolumesManager.h does the ejecting.
#include "cli/EjectCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "cli/NotedVolumes.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/volumes/VolumesInfo.h"
#include "engine/volumes/VolumesManager.h"

namespace orrinvale::cli {
namespace {

using EjectionRecords = VolumesInfo::VolumeArray;

template <class Condition>
EjectionRecords recordsWhere(const EjectionRecords& all, Condition condition) {
    EjectionRecords found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found), condition);
    return found;
}

EjectionRecords recordsNamed(const EjectionRecords& all, const std::string& given) {
    EjectionRecords found;
    if (given.find('/') != std::string::npos) {
        const std::string path = absolutePath(given);
        found = recordsWhere(all, [&](const auto& volume) { return volume->volRootDir == path; });
    }
    if (!found.empty()) return found;
    // main.cpp puts "./" before what its parser would misread, and that may as well be a name.
    const bool isPrefixed = given.starts_with("./") && given.find('/', 2) == std::string::npos;
    const std::string name = isPrefixed ? given.substr(2) : given;
    return recordsWhere(all, [&](const auto& volume) { return volume->volumeName == name; });
}

struct Ejected {
    std::optional<EjectFailure> failure;
    Ending ending{};
};

Ejected eject(Volumes& platform, const ZvVolumeInfo& volume, Telling telling) {
    // An ejection that has begun can not be taken back, so a first signal is only told; the next
    // one ends the program.
    const SearchWatch watch(
        [] {}, [text = "Ejecting " + printable(volume.volumeName)] { return text; }, telling);
    VolumesManager manager(platform, {});
    Ejected out;
    if (!manager.ejectSingleVolume(volume.volRefNumber)) {
        out.failure = manager.failures().front();
        out.failure->volumeName =
            volume.volumeName;  // nobody else knows it once the volume is gone
        out.failure->volRootDir = volume.volRootDir;
    }
    out.ending = watch.ending();
    return out;
}

std::string holdersOf(const EjectDissent& dissent) {
    std::string text;
    for (const VolumeHolder& holder : dissent.holders) {
        text += fmt::format("{}{{\"pid\": {}, ", text.empty() ? "" : ", ", holder.pid);
        appendJsonPath(text, holder.name, "name", "nameHex");
        text += ", ";
        appendJsonPath(text, holder.path);
        text += '}';
    }
    return text;
}

void printJson(Output& out, const ZvVolumeInfo& volume, const Ejected& ejected) {
    std::string text = fmt::format("{{\"ejected\": {}, ", !ejected.failure);
    appendJsonPath(text, volume.volumeName, "name", "nameHex");
    text += ", ";
    appendJsonPath(text, volume.volRootDir);
    text += ",\n \"reason\": ";
    if (ejected.failure) appendJsonText(text, ejected.failure->dissent.reason);
    else text += "null";
    text += fmt::format(", \"holders\": [{}], \"stopped\": {}}}\n",
                        ejected.failure ? holdersOf(ejected.failure->dissent) : "",
                        ejected.ending != Ending::Whole);
    out.write(text);
}

Status print(const Arguments& arguments, const ZvVolumeInfo& volume, const Ejected& ejected) {
    if (ejected.failure) complain(ejectFailureText(*ejected.failure));
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, volume, ejected);
    else if (!ejected.failure && arguments.has("print0")) out.write(volume.volRootDir + '\0');
    else if (!ejected.failure)
        out.write(fmt::format("Ejected {} from {}\n", printable(volume.volumeName),
                              printable(volume.volRootDir)));
    const Status status = finish(out, {}, ejected.ending);
    return status == Status::Done && ejected.failure ? Status::SomeSkipped : status;
}

// A volume that does not answer is not listed, and yet it is there.
Status unlisted(const std::string& given, const std::vector<Error>& silent) {
    const std::string path = absolutePath(given);
    for (const Error& each : silent) {
        if (each.path != path) continue;
        complainOfEach({each});
        return Status::SomeSkipped;
    }
    return noSuchFolder(given, "no such volume");
}

}  // namespace

std::vector<OptionSpec> EjectCommand::options() const {
    return {{"VOLUME", "", "The volume's name, or the path that it is mounted on"}};
}

Status EjectCommand::run(const Arguments& arguments) {
    const std::string given = arguments.text("VOLUME");
    if (given.empty()) return badUsage("the name of the volume is empty");
    NotedVolumes platform(m_platform);
    VolumesInfo info(platform);
    const EjectionRecords found = recordsNamed(info.volsArray(), given);
    if (found.empty()) return unlisted(given, platform.failures());
    if (found.size() > 1) {
        for (const auto& volume : found)
            complain(
                fmt::format("\"{}\" is mounted on {}", volume->volumeName, volume->volRootDir));
        return badUsage("several volumes bear this name, give a path");
    }
    const ZvVolumeInfo& volume = *found.front();
    if (volume.bCanEject)
        return print(arguments, volume, eject(m_platform, volume, tellingFor(arguments)));
    const EjectFailure refusal{volume.volRefNumber,
                               volume.volumeName,
                               volume.volRootDir,
                               ioErr,
                               {"It is fixed in this machine", {}}};
    return print(arguments, volume, {refusal, Ending::Whole});
}

}  // namespace orrinvale::cli
