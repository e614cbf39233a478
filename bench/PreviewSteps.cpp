// PreviewSteps: see PreviewSteps.h.
#include "PreviewSteps.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <QAbstractButton>
#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <fstream>

#include "WindowSteps.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/preview/PreviewLook.h"
#include "ui/shell/DuplicateMainWindowController.h"

namespace orrinvale {
namespace {

constexpr QSize threeMegapixels{2000, 1500};

std::string onePicture() {
    QImage image(threeMegapixels, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, image.width(), image.height());
    sky.setColorAt(0, Qt::darkBlue);
    sky.setColorAt(1, Qt::yellow);
    painter.fillRect(image.rect(), sky);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpg");
    return bytes.toStdString();
}

void pressDown(QWidget& list) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
        QCoreApplication::postEvent(&list, new QKeyEvent(type, Qt::Key_Down, {}));
}

}  // namespace

bool makePictures(const std::string& root, std::size_t rows) {
    const std::string picture = onePicture();
    constexpr std::size_t rowsOfGroup = 3;
    for (const char* const folder : {"", "/one", "/other"}) {
        const std::string path = root + folder;
        if (::mkdir(path.c_str(), 0755) != 0) return false;
        for (std::size_t i = 0; *folder != 0 && i < rows / rowsOfGroup; ++i) {
            std::ofstream file(fmt::format("{}/{}.jpg", path, i), std::ios::binary);
            file << picture << "picture " << i;  // behind its end, where no decoder reads
            if (!file.flush()) return false;
        }
    }
    return true;
}

void runPreviewSteps(WindowSteps& steps, DuplicateMainWindowController& window,
                     const std::string& folder) {
    SameFileDeleteViewController& page = *window.sameFileDeleteVC();
    steps.step(
        "preview: search of pictures", [&] { page.viewDragAction(folder); },
        [&] { return page.bSearchFinished(); });
    auto& outline = *page.detailView()->findChild<ResultOutline*>(QStringLiteral("outline"));
    auto& button = *page.detailView()->findChild<QAbstractButton*>(QStringLiteral("previewBtn"));
    const auto looks = page.detailView()->findChildren<PreviewLook*>();
    const auto isThere = [&] {
        return std::ranges::all_of(looks, [](const PreviewLook* look) { return look->sight(); });
    };
    steps.step("preview: expand all", [&] { outline.expandAll(); });
    outline.setCurrentIndex(outline.model()->index(0, 0));
    steps.step(
        "preview: first picture", [&] { button.click(); }, isThere);
    Row slowest;
    for (int i = 0; i < 20; ++i) {
        steps.step(
            "preview: a step of the arrow, slowest of 20", [&] { pressDown(outline); }, isThere);
        if (steps.rows.back().total >= slowest.total) slowest = steps.rows.back();
        steps.rows.pop_back();
    }
    steps.rows.push_back(slowest);

    constexpr int presses = 300;
    int pressed = 0;
    QTimer repeat;
    repeat.setInterval(30);
    QObject::connect(&repeat, &QTimer::timeout, &outline, [&] {
        pressDown(outline);
        if (++pressed == presses) repeat.stop();
    });
    steps.step(
        "preview: arrow held for 300 rows", [&] { repeat.start(); },
        [&] { return pressed == presses && isThere(); });
    button.click();
}

}  // namespace orrinvale
