// What the window tells of the computer and of the log.
#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QTest>

#include "engine/settings/SettingsKeys.h"
#include "support/ScopedVariable.h"
#include "support/test.h"
#include "ui/diagnostics/ComputerPanel.h"
#include "ui/diagnostics/CustomComInfoView.h"
#include "ui/diagnostics/logWords.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/support/Launched.h"

namespace orrinvale::testing {
namespace {

TEST(ComputerInfo, HasSevenRowsOfForty) {
    MadeUpSystem system;
    system.values.erase("machdep.cpu.vendor");
    system.values["hw.model"] = "A Model of Twenty Let";  // one more than its field holds
    CustomComInfoView view(system);
    view.resize(470, view.height());
    const struct {
        const char *image, *title, *value;
    } rows[] = {{"model_identifier.png", "Model Identifier:", "A Model of Twenty Let"},
                {"cpu_vendor.png", "CPU Vendor:", "–"},
                {"cpu_brand.png", "CPU Brand:", "MadeUp Core 9"},
                {"memory.png", "Memory:", "8.00 GB"},
                {"os_type.png", "OS Type:", "Linux"},
                {"os_rdease.png", "OS Release:", "6.1.0-18-amd64"},
                {"hostname.png", "Hostname:", "annas-desk.example"}};
    ASSERT_EQ(view.model()->rowCount(), 7);
    EXPECT_EQ(view.height(), 280);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(view.visualRect(view.model()->index(i, 0)), QRect(0, 40 * i, 470, 40));
        EXPECT_EQ(view.cell(i).iconImage(), QLatin1String(rows[i].image));
        EXPECT_EQ(view.cell(i).titleText(), QLatin1String(rows[i].title));
        EXPECT_EQ(view.cell(i).valueText(), QString::fromUtf8(rows[i].value)) << rows[i].title;
    }
    EXPECT_EQ(fieldText(view.systemInfo().OSVersion), "6.1.0-18-a") << "the field as it is";
    view.setCurrentIndex(view.model()->index(5, 0));
    view.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("OS Release: 6.1.0-18-amd64"));
}

TEST(ComputerInfo, IsASheetThatComesOnce) {
    Started on;
    QWidget& window = *on.delegate->duplicateMWC()->window();
    on.closeWindow();
    on.entry("aboutComputer")->trigger();
    EXPECT_TRUE(on.isVisible());
    on.entry("aboutComputer")->trigger();
    EXPECT_EQ(window.findChildren<Sheet*>().size(), 1);
    EXPECT_FALSE(on.delegate->duplicateMWC()->isAsking()) << "a folder from outside does not wait";
    auto* const panel = window.findChild<ComputerPanel*>();
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->infoView->systemInfo().TotalMem, 8ULL << 30U);
    panel->copyButton->click();
    QPlainTextEdit* text = nullptr;
    ASSERT_SOON((text = window.findChild<QPlainTextEdit*>()) != nullptr);
    on.entry("copyReport")->trigger();
    EXPECT_EQ(window.findChildren<QPlainTextEdit*>().size(), 1) << "it is brought to the front";
    EXPECT_SOON(text->toPlainText().contains(QStringLiteral("hardware info")));
    const QString report = text->toPlainText();
    EXPECT_TRUE(report.contains(QStringLiteral("host name: HOST"))) << report.toStdString();
    EXPECT_FALSE(report.contains(QStringLiteral("Stick"))) << report.toStdString();
    EXPECT_SOON(window.findChild<Sheet*>() == nullptr);
    const QString before = QGuiApplication::clipboard()->text();
    EXPECT_FALSE(before.contains(QStringLiteral("hardware info"))) << "it is shown first";
    text->window()->findChild<QAbstractButton*>()->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), report);
    delete text->window();
}

TEST(LogWords, SayWhereTheLinesGo) {
    const struct {
        LogState state;
        const char *title, *text;
        int buttons;
    } cases[] = {
        {{.file = "/s/Orrinvale.log"}, "The log is a file.", "/s/Orrinvale.log", 3},
        {{.file = "/s/a\nb"}, "The log is a file.", "/s/a\u2424b", 3},
        {{.failure = systemError("open", "/s/x", ELOOP)},
         "The log file can not be written.",
         "/s/x: Too many levels of symbolic links\n\nThe lines go wherever",
         1},
        {{.file = "/s/x",
          .failure = systemError("write", "/s/x", ENOSPC),
          .stream = ErrorStream::Journal},
         "The log file can not be written.",
         "/s/x: No space left on device\n\nThe log is in your system's journal. In a terminal",
         3},
        {{.stream = ErrorStream::Terminal}, "The log is in the terminal.", "lines appear there", 1},
        {{.stream = ErrorStream::Journal}, "The log is in your system's journal.", "journalctl", 1},
        {{}, "There is no log file.", "preferences", 1}};
    for (const auto& each : cases) {
        const Alert alert = logAlert(each.state);
        EXPECT_EQ(alert.title.toStdString(), each.title);
        EXPECT_NE(alert.text.toStdString().find(each.text), std::string::npos)
            << alert.text.toStdString();
        EXPECT_EQ(alert.buttons.size(), each.buttons) << each.title;
    }
}

TEST(ShowLog, LeadsToTheFile) {
    Started on;
    on.setLog({.file = "/s/Orrinvale.log"});
    const struct {
        int button;
        bool canOpen;
        Strings opened, revealed;
    } cases[] = {{OpenLogFile, true, {"/s/Orrinvale.log"}, {}},
                 {OpenLogFile, false, {"/s/Orrinvale.log"}, {"/s/Orrinvale.log"}},
                 {ShowLogInFolder, true, {}, {"/s/Orrinvale.log"}},
                 {CloseLogWords, true, {}, {}}};
    for (const auto& each : cases) {
        on.canOpen = each.canOpen;
        on.opened.clear();
        on.revealed.clear();
        on.dialogs.willAnswer(each.button);
        const std::size_t asked = on.dialogs.alerts().size();
        on.entry("showLog")->trigger();
        EXPECT_SOON(on.dialogs.alerts().size() > asked);
        QTest::qWait(5);
        EXPECT_EQ(on.opened, each.opened) << each.button;
        EXPECT_EQ(on.revealed, each.revealed) << each.button;
        EXPECT_TRUE(on.dialogs.alerts().back().onlyTells);
    }
    // A folder of that name is opened by nobody where there is no file.
    on.setLog({});
    on.opened.clear();
    on.dialogs.willAnswer(0);
    const std::size_t asked = on.dialogs.alerts().size();
    on.entry("showLog")->trigger();
    EXPECT_SOON(on.dialogs.alerts().size() > asked);
    QTest::qWait(5);
    EXPECT_TRUE(on.opened.empty() && on.revealed.empty());
}

TEST(ShowLog, TheSettingIsFollowedAtOnce) {
    for (const char* const name : {"ORRINVALE_LOG", "ORRINVALE_STALLS"}) ::unsetenv(name);
    Started on;
    on.setLog({.file = "/s/Orrinvale.log"});
    on.defaults.setValue(std::string("never"), logFileKey);
    EXPECT_SOON(on.keptLog->load() == 0);
    on.setLog({});
    const bool isTerminal = standardErrorGoesTo() == ErrorStream::Terminal;
    on.defaults.setValue(std::string("always"), logFileKey);
    if (isTerminal) {
        QTest::qWait(20);
        EXPECT_EQ(on.keptLog->load(), 0) << "a terminal shows the lines";
        return;
    }
    EXPECT_SOON(on.keptLog->load() == 1);
    on.setLog({.file = "/s/Orrinvale.log"});
    const ScopedVariable asked("ORRINVALE_LOG", "1");
    on.defaults.setValue(std::string("auto"), logFileKey);
    EXPECT_SOON(on.keptLog->load() == 0) << "who asks for lines gets them where he is";
    on.setLog({.failure = systemError("open", "/s/x", EACCES)});
    ::unsetenv("ORRINVALE_LOG");
    on.defaults.setValue(std::string("always"), logFileKey);
    EXPECT_SOON(on.delegate->logFault() ==
                QStringLiteral("The file can not be written: Permission denied"));
}

}  // namespace
}  // namespace orrinvale::testing
