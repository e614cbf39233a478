// What lies in the folder is a table; painted pictures and noise fill its files.
#include "gallery/SampleFolder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "engine/files/ProtectedPlaces.h"
#include "engine/files/SafeRemoval.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale {
namespace {

constexpr const char* place = "/tmp/orrinvale-gallery";

struct Sample {
    const char* path;
    std::uint64_t size;
    int content;  // files of one size and one content are copies
    int day;      // of 2025, from the first of January on
};

constexpr std::array family{
    Sample{"Documents/Letter to Anna.txt", 2'640, 1, 40},
    Sample{"Documents/Old letters/Letter to Anna.txt", 2'640, 1, 41},
    Sample{"Documents/Tax return 2025.pdf", 812'204, 2, 90},
    Sample{"Documents/Archive of the old computer/Users/anna/Desktop/To be sorted one day/Tax "
           "return (signed).pdf",
           812'204, 2, 91},
    Sample{"Downloads/Tax return 2025 (1).pdf", 812'204, 2, 92},
    Sample{"Documents/Diary.odt", 48'204, 3, 12},
    Sample{"Backup/Diary.odt", 48'204, 3, 12},
    Sample{"Backup/holiday-photos.zip", 188'402'113, 4, 201},
    Sample{"Downloads/holiday-photos.zip", 188'402'113, 4, 214},
    Sample{"Downloads/Aria (1).mp3", 31'204'118, 5, 77},
    Sample{"Music/Aria.mp3", 31'204'118, 5, 75},
    Sample{"Phone/DCIM/IMG_2041.jpg", 4'812'331, 6, 180},
    Sample{"Pictures/Favourites/Lake at sunrise.jpg", 4'812'331, 6, 182},
    Sample{"Pictures/Norway/IMG_2041.jpg", 4'812'331, 6, 180},
    Sample{"Phone/DCIM/IMG_2107.jpg", 3'190'442, 7, 188},
    Sample{"Pictures/Norway/IMG_2107.jpg", 3'190'442, 7, 188},
    Sample{"Phone/DCIM/VID_0113.mp4", 1'480'220'416, 8, 190},
    Sample{"Videos/Graduation of Anna.mp4", 1'480'220'416, 8, 193},
    Sample{"Backup/Viewer.app/Contents/viewer", 6'402'118, 9, 20},
    Sample{"Tools/Viewer.app/Contents/viewer", 6'402'118, 9, 20},
    Sample{"Documents/Notes.txt", 1'204, 10, 230},
    Sample{"Mail of the old computer/inbox", 90'112, 11, 3},
};

// Two folders of it are equal, and two for the most part.
constexpr std::array attic{
    Sample{"Photos 2024/Norway/IMG_1001.jpg", 4'112'331, 30, 150},
    Sample{"Photos 2024/Norway/IMG_1002.jpg", 3'871'204, 31, 150},
    Sample{"Photos 2024/Norway/IMG_1003.jpg", 5'002'118, 32, 151},
    Sample{"Photos 2024/Birthday/IMG_1040.jpg", 2'990'442, 33, 170},
    Sample{"Photos 2024/Birthday/VID_1041.mp4", 380'220'416, 34, 170},
    Sample{"Photos 2024 (copy)/Norway/IMG_1001.jpg", 4'112'331, 30, 150},
    Sample{"Photos 2024 (copy)/Norway/IMG_1002.jpg", 3'871'204, 31, 150},
    Sample{"Photos 2024 (copy)/Norway/IMG_1003.jpg", 5'002'118, 32, 151},
    Sample{"Photos 2024 (copy)/Birthday/IMG_1040.jpg", 2'990'442, 33, 170},
    Sample{"Photos 2024 (copy)/Birthday/VID_1041.mp4", 380'220'416, 34, 170},
    Sample{"Desktop/IMG_1003.jpg", 5'002'118, 32, 152},
    Sample{"Letters/Anna.odt", 48'204, 35, 12},
    Sample{"Letters/Bank.odt", 51'300, 36, 13},
    Sample{"Old laptop/Letters/Anna.odt", 48'204, 35, 12},
    Sample{"Old laptop/Letters/Bank.odt", 51'300, 36, 13},
    Sample{"Music/Aria.mp3", 31'204'118, 37, 75},
    Sample{"Music/Chorale.mp3", 22'402'118, 38, 76},
    Sample{"Music/Fugue.mp3", 18'904'118, 39, 77},
    Sample{"Old laptop/Songs/Aria.mp3", 31'204'118, 37, 75},
    Sample{"Old laptop/Songs/Chorale.mp3", 22'402'118, 38, 76},
    Sample{"Old laptop/Songs/Fugue.mp3", 18'904'118, 39, 77},
    Sample{"Old laptop/Songs/Waltz.mp3", 6'104'118, 40, 78},
};

constexpr std::array tidyHome{
    Sample{"Report.odt", 48'204, 20, 30},
    Sample{"Plan.odt", 51'300, 21, 31},
};

constexpr std::int64_t newYear = 1'735'689'600;  // 2025-01-01 00:00 UTC
constexpr std::int64_t day = 86'400;
constexpr std::int64_t halfPastNine = 34'200;

bool setDate(const std::string& path, int days) {
    const timespec moment{newYear + days * day + halfPastNine, 0};
    const std::array<timespec, 2> both{moment, moment};
    return ::utimensat(AT_FDCWD, path.c_str(), both.data(), AT_SYMLINK_NOFOLLOW) == 0;
}

// The beginning is written, the rest is a hole; false with errno set.
bool makeFile(const std::string& path, std::string_view begin, std::uint64_t size, int days) {
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), failure);
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (::write(file.get(), begin.data(), begin.size()) != static_cast<ssize_t>(begin.size()))
        return false;
    return ::ftruncate(file.get(), static_cast<off_t>(size)) == 0 && setDate(path, days);
}

bool makeFiles(const std::string& root, std::span<const Sample> samples) {
    return std::ranges::all_of(samples, [&](const Sample& sample) {
        return makeFile(fmt::format("{}/{}", root, sample.path),
                        fmt::format("content {}\n", sample.content), sample.size, sample.day);
    });
}

// A lake in the evening.
QByteArray paintedLake() {
    QImage image(960, 640, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QLinearGradient sky(0, 0, 0, 400);
    sky.setColorAt(0, QColor(0x2b, 0x4a, 0x6f));
    sky.setColorAt(1, QColor(0xf3, 0xc0, 0x8d));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(0xff, 0xe6, 0xb8));
    painter.drawEllipse(QPointF(640, 300), 46, 46);
    const auto ridge = [&](const QColor& color, int base, int height, int width) {
        QPainterPath path(QPointF(0, 400));
        for (int x = 0; x < 960 + width; x += width)
            path.quadTo(QPoint(x + width / 2, base - height), QPoint(x + width, base));
        path.lineTo(960, 400);
        painter.fillPath(path, color);
    };
    ridge(QColor(0x5b, 0x6f, 0x88), 330, 120, 320);
    ridge(QColor(0x35, 0x4d, 0x63), 372, 90, 240);
    QLinearGradient lake(0, 400, 0, 640);
    lake.setColorAt(0, QColor(0xd9, 0xa8, 0x82));
    lake.setColorAt(1, QColor(0x1d, 0x36, 0x4f));
    painter.fillRect(0, 400, 960, 240, lake);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// The folder, locked; none with errno set when there is none, or none of ours.
Descriptor lockedFolder() {
    Descriptor folder(::open(place, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder.isOpen() || ::fstat(folder.get(), &status) != 0) return {};
    if (status.st_uid != ::geteuid()) {
        errno = EPERM;
        return {};
    }
    return ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(folder) : Descriptor();
}

bool removeFolder() {
    const LinuxFileSystem files;
    const ProtectedPlaces places = ProtectedPlaces::ofThisMachine(files, {});
    return SafeRemoval(files, places).remove(place, std::nullopt).gone;
}

}  // namespace

SampleFolder::SampleFolder() {
    if (!take() || !fill())
        m_failure = fmt::format("{} can not be used: {}", place, std::strerror(errno));
}

SampleFolder::~SampleFolder() {
    if (m_failure.empty()) static_cast<void>(removeFolder());
}

// Everybody may write to /tmp: what stands there is removed only when it is a folder of ours, no
// link, and nobody else's at this moment.
bool SampleFolder::take() {
    m_place = lockedFolder();
    if (!m_place.isOpen() && errno != ENOENT) return false;
    if (m_place.isOpen() && !removeFolder()) return false;
    constexpr mode_t ours = 0700;
    if (::mkdir(place, ours) != 0) return false;
    m_place = lockedFolder();
    return m_place.isOpen();
}

bool SampleFolder::fill() const {
    if (!makeFiles(family(), orrinvale::family) || !makeFiles(tidy(), tidyHome) ||
        !makeFiles(attic(), orrinvale::attic))
        return false;
    const std::string lake = paintedLake().toStdString();
    constexpr int midsummer = 171;
    return makeFile(family() + "/Phone/DCIM/Lake in the evening.png", lake, lake.size(),
                    midsummer) &&
           makeFile(painting(), lake, lake.size(), midsummer);
}

std::string SampleFolder::family() const { return fmt::format("{}/Family", place); }
std::string SampleFolder::tidy() const { return fmt::format("{}/Tidy", place); }
std::string SampleFolder::attic() const { return fmt::format("{}/Attic", place); }
std::string SampleFolder::painting() const {
    return family() + "/Pictures/Norway/Lake in the evening.png";
}
std::string SampleFolder::settings() const { return fmt::format("{}/settings.ini", place); }

}  // namespace orrinvale
