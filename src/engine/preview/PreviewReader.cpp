// The type of the entry is looked at before it is opened, and again on what was opened.
#include "engine/preview/PreviewReader.h"

#include <csignal>

#include "platform/askProgram.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

PreviewAnswer failed(PreviewFailure failure) {
    PreviewAnswer answer;
    answer.kind = PreviewAnswer::Kind::Failed;
    answer.failure = failure;
    return answer;
}

PreviewFailure failureOf(const ProgramAnswer& told) {
    using Ending = ProgramAnswer::Ending;
    switch (told.ending) {
        case Ending::TimedOut: return PreviewFailure::TooSlow;
        case Ending::Killed:
            return told.status == SIGXCPU || told.status == SIGKILL ? PreviewFailure::TooSlow
                                                                    : PreviewFailure::Crashed;
        default: return PreviewFailure::NotLooked;
    }
}

}  // namespace

PreviewAnswer PreviewReader::look(const std::string& program, int file, std::uint32_t side,
                                  const std::stop_token& stop) {
    if (program.empty() || stop.stop_requested()) return failed(PreviewFailure::NotLooked);
    const ProgramAnswer told = askProgram({.program = program,
                                           .arguments = {std::to_string(side)},
                                           .input = file,
                                           .most = patience,
                                           .mostOutput = mostAnswerBytes},
                                          stop);
    if (told.ending != ProgramAnswer::Ending::Ended) return failed(failureOf(told));
    if (auto answer = readAnswer(told.output); answer && told.status == 0)
        return *std::move(answer);
    return failed(PreviewFailure::NotLooked);
}

Preview PreviewReader::read(const std::string& path, std::uint32_t side,
                            const std::stop_token& stop) const {
    Preview preview;
    const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!seen) {
        preview.error = seen.error();
        return preview;
    }
    preview.attributes = *seen;
    if (seen->type != FileType::Regular) return preview;
    ReadState state;
    const auto file = m_files.openFile(FileSystem::noParent, path.c_str(), Links::Keep, state);
    if (!file) {
        preview.error = file.error();
        return preview;
    }
    const auto opened = m_files.attributes(file->get());
    if (opened) preview.attributes = *opened;
    if (!opened || opened->type != FileType::Regular || opened->size == 0) return preview;
    preview.answer = look(m_program, file->get(), side, stop);
    return preview;
}

}  // namespace orrinvale
