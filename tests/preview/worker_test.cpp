// The program that looks into files, and the reader that starts it: what is shown, what is told of
// what can not be, and the bounds that hold whatever a file says.
#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <cstring>
#include <stop_token>

#include "engine/preview/PreviewReader.h"
#include "platform/askProgram.h"
#include "support/isSanitized.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Kind = PreviewAnswer::Kind;
using Failure = PreviewFailure;

const LinuxFileSystem diskFiles;

PreviewReader reader() { return {diskFiles, companionProgram(PreviewReader::programName)}; }

std::string picture(int width, int height, const char* format, QRgb colour = qRgb(200, 30, 60),
                    QImage::Format pixels = QImage::Format_RGB32) {
    QImage image(width, height, pixels);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes.toStdString();
}

// A PNG that claims its size and has nothing behind it, or what is given.
std::string claimedPng(std::uint32_t width, std::uint32_t height, std::string_view behind = {},
                       QImage::Format pixels = QImage::Format_RGB32) {
    std::string bytes = picture(4, 4, "png", qRgb(200, 30, 60), pixels);
    for (int i = 0; i < 4; ++i) {
        bytes[std::size_t(16 + i)] = static_cast<char>(width >> (24 - 8 * i));
        bytes[std::size_t(20 + i)] = static_cast<char>(height >> (24 - 8 * i));
    }
    std::uint32_t sum = ~0U;  // of PNG: 12.1 of its standard, over the type and the 13 bytes
    for (std::size_t at = 12; at < 29; ++at) {
        sum ^= static_cast<unsigned char>(bytes[at]);
        for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    for (int i = 0; i < 4; ++i)
        bytes[std::size_t(29 + i)] = static_cast<char>(~sum >> (24 - 8 * i));
    return bytes.substr(0, 33) + std::string(behind);
}

// A JPEG that claims its size and ends long before it is full; in passes, or from top to bottom.
std::string claimedJpeg(std::uint16_t side, bool isInPasses) {
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(qRgb(200, 30, 60));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpg");
    writer.setProgressiveScanWrite(isInPasses);
    EXPECT_TRUE(writer.write(image));
    std::string made = bytes.toStdString();
    const std::size_t frame = made.find(isInPasses ? "\xFF\xC2" : "\xFF\xC0");
    for (const std::size_t at : {frame + 5, frame + 7}) {
        made.at(at) = static_cast<char>(side >> 8U);
        made.at(at + 1) = static_cast<char>(side & 0xFFU);
    }
    return made;
}

TEST(PreviewWorker, ShowsWhatItCanAndSaysWhyItCanNot) {
    TestTree tree;
    const std::string jpeg = picture(4000, 1000, "jpg");
    ASSERT_TRUE(
        tree.write("wide.jpg", jpeg) &&
        tree.write("12 megapixels.jpg", picture(4000, 3000, "jpg")) &&
        tree.write("named.txt", picture(30, 40, "png")) &&
        tree.write("bitmap.bmp", picture(50, 20, "bmp")) &&
        tree.write("cut.jpg", jpeg.substr(0, 12)) && tree.write("cut.png", claimedPng(40, 40)) &&
        tree.write("400 megapixels.png",
                   claimedPng(20000, 20000, picture(4, 4, "png").substr(33))) &&
        tree.write("36 deep megapixels.png", claimedPng(6000, 6000, picture(4, 4, "png").substr(33),
                                                        QImage::Format_RGBX64)) &&
        tree.write("400 megapixels.jpg", claimedJpeg(20000, false)) &&
        tree.write("400 megapixels in passes.jpg", claimedJpeg(20000, true)) &&
        tree.write("none.png", claimedPng(0, 5)) && tree.write("text.md", "# Words\n") &&
        tree.write("drawing.svg", "<svg><image href='file:///etc/passwd'/></svg>") &&
        tree.write("program", std::string("\x7F"
                                          "ELF\2\1\1\0\0\0\0\0\0\0",
                                          14)) &&
        tree.write("BM text", "BM is no sign of a bitmap, and this is a long line of words") &&
        tree.write("empty", "") && tree.sparse("zeros.raw", std::uint64_t{2} << 30U) &&
        tree.sparse("large.png", std::uint64_t{2} << 30U) &&
        tree.patch("large.png", 0, claimedPng(100, 100)));
    const struct {
        const char* name;
        Kind kind;
        Failure failure;
        std::uint32_t storedWidth, storedHeight, width, height;
    } cases[] = {
        {"wide.jpg", Kind::Picture, Failure::None, 4000, 1000, 320, 80},
        {"12 megapixels.jpg", Kind::Picture, Failure::None, 4000, 3000, 320, 240},  // by threads
        {"named.txt", Kind::Picture, Failure::None, 30, 40, 30, 40},
        {"bitmap.bmp", Kind::Picture, Failure::None, 50, 20, 50, 20},
        {"cut.jpg", Kind::Failed, Failure::Damaged, 0, 0, 0, 0},
        {"cut.png", Kind::Failed, Failure::Damaged, 0, 0, 0, 0},
        {"400 megapixels.png", Kind::Failed, Failure::TooLarge, 0, 0, 0, 0},
        {"36 deep megapixels.png", Kind::Failed, Failure::TooMuchMemory, 0, 0, 0, 0},
        {"400 megapixels.jpg", Kind::Picture, Failure::None, 20000, 20000, 320, 320},
        {"400 megapixels in passes.jpg", Kind::Failed, Failure::TooMuchMemory, 0, 0, 0, 0},
        {"none.png", Kind::Failed, Failure::Damaged, 0, 0, 0, 0},
        {"text.md", Kind::Text, Failure::None, 0, 0, 0, 0},
        {"drawing.svg", Kind::Text, Failure::None, 0, 0, 0, 0},
        {"program", Kind::Other, Failure::None, 0, 0, 0, 0},
        {"BM text", Kind::Text, Failure::None, 0, 0, 0, 0},
        {"empty", Kind::Other, Failure::None, 0, 0, 0, 0},
        {"zeros.raw", Kind::Other, Failure::None, 0, 0, 0, 0},
        {"large.png", Kind::Failed, Failure::TooLarge, 0, 0, 0, 0},
    };
    for (const auto& each : cases) {
        // There the process has no limit of its own, which the toolkit's is not tight enough for.
        if (testing::isSanitized() && std::strstr(each.name, "in passes") != nullptr) continue;
        const Preview seen = reader().read(tree.at(each.name), 320, {});
        const PreviewAnswer& answer = seen.answer;
        EXPECT_EQ(seen.error, 0) << each.name;
        EXPECT_EQ(answer.kind, each.kind) << each.name;
        EXPECT_EQ(answer.failure, each.failure) << each.name;
        EXPECT_EQ(answer.storedWidth, each.storedWidth) << each.name;
        EXPECT_EQ(answer.storedHeight, each.storedHeight) << each.name;
        EXPECT_EQ(answer.width, each.width) << each.name;
        EXPECT_EQ(answer.height, each.height) << each.name;
        if (each.kind != Kind::Picture || each.storedWidth == 20000) continue;
        EXPECT_NEAR(static_cast<unsigned char>(answer.content[2]), 200, 3) << each.name;  // red
    }
    EXPECT_EQ(reader().read(tree.at("text.md"), 320, {}).answer.content, "# Words\n");
}

TEST(PreviewWorker, IsNeverStartedForWhatIsNoFile) {
    TestTree tree;
    ASSERT_TRUE(tree.fifo("pipe.png") && tree.socket("socket") && tree.folder("folder") &&
                tree.write("words", "words") && tree.symlink("words", "link"));
    const struct {
        std::string path;
        int error;
        FileType type;
    } cases[] = {
        {tree.at("pipe.png"), 0, FileType::Fifo},
        {tree.at("socket"), 0, FileType::Socket},
        {tree.at("folder"), 0, FileType::Folder},
        {tree.at("link"), 0, FileType::SymbolicLink},
        {"/dev/zero", 0, FileType::CharacterDevice},
        {tree.at("gone"), ENOENT, FileType::Unknown},
        {tree.at("words/x"), ENOTDIR, FileType::Unknown},
    };
    for (const auto& each : cases) {
        const Preview seen = reader().read(each.path, 320, {});
        EXPECT_EQ(seen.error, each.error) << each.path;
        EXPECT_EQ(seen.attributes.type, each.type) << each.path;
        EXPECT_EQ(seen.answer.kind, Kind::Other) << each.path;
    }
    const Preview without = PreviewReader(diskFiles, "").read(tree.at("words"), 320, {});
    EXPECT_EQ(without.answer.failure, Failure::NotLooked);
}

// What a failing disk does not give is not nothing: an empty text would be deleted.
TEST(PreviewWorker, TellsWhatItCanNotReadFromWhatIsEmpty) {
    const Descriptor file(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC));  // EIO at its beginning
    const std::string program = companionProgram(PreviewReader::programName);
    const PreviewAnswer answer = PreviewReader::look(program, file.get(), 9, {});
    EXPECT_EQ(answer.kind, Kind::Failed);
    EXPECT_EQ(answer.failure, Failure::Unreadable);
}

// What a program in the decoder's place may do at worst: each of these is such a program.
TEST(PreviewWorker, WhateverItDoesIsOverInTime) {
    TestTree tree;
    ASSERT_TRUE(tree.write("file", "bytes"));
    const std::string hello = "printf 'orrinvale-preview 1\\n";
    const struct {
        const char* name;
        std::string script;
        Failure failure;
    } cases[] = {
        {"crashes", "kill -SEGV $$", Failure::Crashed},
        {"is ended by the kernel", "kill -XCPU $$", Failure::TooSlow},
        {"hangs", "exec sleep 60", Failure::TooSlow},
        {"closes its output and hangs", "exec >&-; exec sleep 60", Failure::TooSlow},
        {"says nothing", "exit 0", Failure::NotLooked},
        {"says half", hello + "'", Failure::NotLooked},
        {"is killed from outside", "kill -KILL $$", Failure::TooSlow},
        {"answers and fails", hello + "kind 0\\n\\n'; exit 1", Failure::NotLooked},
        {"never stops talking", "exec cat /dev/zero", Failure::NotLooked},
    };
    const auto openDescriptors = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd"));
    };
    const auto descriptors = openDescriptors();
    for (const auto& each : cases) {
        ASSERT_TRUE(tree.write("looker", "#!/bin/sh\n" + each.script + "\n") &&
                    tree.setMode("looker", 0700));
        const auto before = Clock::now();
        const Preview seen =
            PreviewReader(diskFiles, tree.at("looker")).read(tree.at("file"), 9, {});
        EXPECT_EQ(seen.answer.kind, Kind::Failed) << each.name;
        EXPECT_EQ(seen.answer.failure, each.failure) << each.name;
        EXPECT_LT(Clock::now() - before, PreviewReader::patience + 2s) << each.name;
    }
    // Who looks all day has neither their descriptors nor their remains.
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD);
    // Nobody waits for it any more: it is over at once.
    ASSERT_TRUE(tree.write("looker", "#!/bin/sh\nexec sleep 60\n"));
    std::stop_source source;
    std::jthread later([&source] {
        std::this_thread::sleep_for(50ms);
        source.request_stop();
    });
    const auto before = Clock::now();
    (void)PreviewReader(diskFiles, tree.at("looker")).read(tree.at("file"), 9, source.get_token());
    EXPECT_LT(Clock::now() - before, 1500ms);
}

// A process that another thread made meanwhile holds the pipe as well.
TEST(PreviewWorker, IsOverWhenItHasEndedWhoeverHoldsItsOutput) {
    TestTree tree;
    ASSERT_TRUE(tree.write("looker", "#!/bin/sh\nsleep 4 &\nprintf answer\n") &&
                tree.setMode("looker", 0700));
    const Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const ProgramAnswer told =
        askProgram({tree.at("looker"), {}, file.get(), std::chrono::seconds(2), 4096}, {});
    EXPECT_EQ(told.ending, ProgramAnswer::Ending::Ended);
    EXPECT_EQ(told.output, "answer");
}

// What is started sees people's files: nobody else may have put it there.
TEST(PreviewWorker, IsThatOfThePackage) {
    TestTree tree;
    const auto put = [&](const std::string& name) {
        return tree.write(name, "#!/bin/sh\n") && tree.setMode(name, 0755);
    };
    ASSERT_TRUE(put("bin/program") && put("bin/looker") && put("apart/program") &&
                put("apart/looker"));
    const auto found = [&](const char* program) {
        return companionProgram(tree.at(program), "looker");
    };
    EXPECT_EQ(found("bin/program"), tree.at("bin/looker")) << "as in the folder of a build";
    ASSERT_TRUE(put("libexec/orrinvale/looker"));
    EXPECT_EQ(found("bin/program"), tree.at("libexec/orrinvale/looker"));
    EXPECT_EQ(found("apart/program"), tree.at("apart/looker"));
    EXPECT_EQ(found("gone/program"), "");
    for (const mode_t mode : {0775U, 0757U, 0644U}) {
        ASSERT_TRUE(tree.setMode("apart/looker", mode));
        EXPECT_EQ(found("apart/program"), "") << mode;
    }
    ASSERT_TRUE(tree.setMode("apart/looker", 0775) && tree.setMode("apart/program", 0775));
    EXPECT_EQ(found("apart/program"), tree.at("apart/looker")) << "no more open than the program";
    if (::geteuid() != 0) return;
    ASSERT_EQ(::chown(tree.at("apart/looker").c_str(), 65534, 0), 0);
    EXPECT_EQ(found("apart/program"), "") << "another user's";
}

// It is told what it has: the file, where to answer, nowhere to complain, and nothing else.
TEST(PreviewWorker, InheritsTheFileAlone) {
    TestTree tree;
    ASSERT_TRUE(tree.write("file", "bytes") &&
                tree.write("looker",
                           "#!/bin/sh\nfor f in /proc/$$/fd/*; do echo ${f##*/}; done\n"
                           "pwd; env | sort | grep -v -e ^PWD -e ^OLDPWD -e ^_\n") &&
                tree.setMode("looker", 0700));
    const Descriptor held(::open("/dev/null", O_RDONLY));  // without close-on-exec
    ::setenv("ORRINVALE_TEST_SECRET", "secret", 1);
    const int file = ::open(tree.at("file").c_str(), O_RDONLY | O_CLOEXEC);
    const ProgramAnswer told =
        askProgram({tree.at("looker"), {}, file, std::chrono::seconds(10), 4096}, {});
    ::close(file);
    ::unsetenv("ORRINVALE_TEST_SECRET");
    EXPECT_EQ(told.ending, ProgramAnswer::Ending::Ended);
    // 10 is the shell's hold of its own script, 3 the folder that is listed here.
    EXPECT_THAT(told.output, MatchesRegex("0\n1\n(10\n)?2\n(3\n)?/\nLC_ALL=C.UTF-8\n"));
}

// The bounds as the kernel tells them of the real program, held while it writes its answer.
TEST(PreviewWorker, BoundsItselfBeforeItDecodes) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's program needs calls and memory of its own";
#endif
    TestTree tree;
    ASSERT_TRUE(tree.write("wide.png", picture(1500, 1500, "png")));
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const int file = ::open(tree.at("wide.png").c_str(), O_RDONLY | O_CLOEXEC);
    const std::string program = companionProgram(PreviewReader::programName);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(file, 0);
        ::dup2(ends[1], 1);
        ::execl(program.c_str(), program.c_str(), "1500", nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    std::array<char, 20> first{};
    ASSERT_EQ(::read(ends[0], first.data(), first.size()), 20);  // it stands with a full pipe now
    const std::string own = "/proc/" + std::to_string(child);
    const std::string status = contentOf(own + "/status"), limits = contentOf(own + "/limits");
    EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1"));
    EXPECT_THAT(status, HasSubstr("Seccomp:\t2"));
    for (const char* const line :
         {"Max cpu time              3                    3", "Max address space         805306368",
          "Max open files            64", "Max core file size        0                    0",
          "Max file size             0                    0"})
        EXPECT_THAT(limits, HasSubstr(line));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(ends[0]);
    ::close(file);
}

}  // namespace
}  // namespace orrinvale
