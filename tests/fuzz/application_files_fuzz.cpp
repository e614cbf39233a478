// Any bytes as what tells of applications: a desktop entry and its command line, relations of a
// package, an answer of the snap service, an AppImage.
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/fuzz.h"
#include "platform/descriptor.h"
#include "platform/linux/AppImageFile.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/DpkgDatabase.h"
#include "platform/linux/SnapService.h"

namespace {

using namespace orrinvale;

void checkEntry(std::string_view text) {
    const std::string home = "/home/x";
    for (const std::string& start :
         {std::string(text), "[Desktop Entry]\nExec=" + std::string(text)})
        if (const auto entry = DesktopEntry::parse(start, {"de"})) {
            const auto started = StartedProgram::of(execWords(entry->exec, home), home);
            require(started.program.size() <= entry->exec.size() + 8 * home.size() * start.size());
            require(entry->name.find('\0') == std::string::npos);
        }
}

// With the head of an image before it, so that the bytes are taken for its file system.
void checkImage(std::string_view text) {
    std::string image(64, '\0');
    image.replace(0, 6,
                  "\x7F"
                  "ELF\x02\x01");
    image.replace(8, 3, "AI\x02");
    image[0x28] = 64;
    image += "hsqs";
    image += text;
    const Descriptor file(::memfd_create("image", MFD_CLOEXEC));
    require(::write(file.get(), image.data(), image.size()) == static_cast<ssize_t>(image.size()));
    require(AppImageFile::read(file.get(), image.size(), {}).isAppImage);
}

}  // namespace

void checkAny(std::string_view text) {
    checkEntry(text);
    checkImage(text);
    for (const auto& clause : relationsIn(text))
        for (const std::string_view name : clause)
            require(!name.empty() && name.find(',') == std::string_view::npos);
    if (const auto answer = httpAnswer(text)) require(answer->body.size() <= text.size());
    if (const auto snaps = snapsIn(text))
        for (const SnapFacts& each : *snaps) require(!each.name.empty());
}
