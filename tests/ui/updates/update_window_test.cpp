// The window that looks for a newer version: its four views, its list, and its ends.
#include <QAbstractButton>
#include <QLabel>
#include <QScrollArea>
#include <QTest>

#include "support/ReleaseKey.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/Spinner.h"
#include "ui/support/Launched.h"
#include "ui/support/StillStyle.h"
#include "ui/updates/QnCheckUpdateWindowController.h"

namespace orrinvale::testing {
namespace {

using Controller = QnCheckUpdateWindowController;
using UpdateState = Controller::State;

/// Answers nothing until whoever asks gives up.
struct SilentTransport final : UpdateTransport {
    [[nodiscard]] Result<std::string> fetch(const std::string& address,
                                            const std::function<bool()>& isStopped) const override {
        ++asked;
        while (!isStopped()) std::this_thread::sleep_for(1ms);
        ++stopped;
        return tl::unexpected(systemError("fetch", address, ECANCELED));
    }
    mutable std::atomic<int> asked{0}, stopped{0};
};

struct UpdateWindow : ::testing::Test {
    UpdateParts updates() const {
        return {.transport = &transport,
                .address = "ini",
                .keys = {hasKeys ? std::string(64, '0') : std::string()},
                .isOwnedByPackage = [owned = isOwned] { return owned; },
                .isCanBeUseNetWork = [network = hasNetwork](const auto&) { return network; },
                .localNumber = [] { return 100; },
                .lastTime = {},
                .writeTime = {}};
    }
    Controller& open() {
        controller = std::make_unique<Controller>(Controller::Parts{
            .updates = updates(),
            .openAddress = [this](const QString& address) { opened.push_back(address); },
            .terminate = [this] { ++terminations; }});
        QObject::connect(controller.get(), &Controller::closed, controller.get(),
                         [this] { ++closings; });
        controller->showWindow();
        return *controller;
    }
    static void showDescription(Controller& in, const std::string& further) {
        auto list = PropertyList::parse(description("200", further));
        in.whatIsNewVersionDiff(list ? &*list : nullptr);
    }
    static std::vector<QWidget*> shownViews(const Controller& in) {
        const UpdateViews& all = in.views();
        std::vector<QWidget*> shown;
        for (QWidget* const each :
             {all.checkProgressView, all.noNetworkView, all.noUpdateView, all.haveUpdateView})
            if (each->isVisible()) shown.push_back(each);
        return shown;
    }

    static inline SilentTransport transport;  // a thread that was let go may still ask it
    bool hasKeys = true, isOwned = false, hasNetwork = true;
    std::vector<QString> opened;
    int terminations = 0, closings = 0;
    StillStyle moving{false};
    std::unique_ptr<Controller> controller;
};

TEST_F(UpdateWindow, EachEndHasItsOneView) {
    const struct {
        bool hasKeys, isOwned, hasNetwork;
        UpdateState state;
        const char* title;
    } cases[] = {
        {true, true, true, UpdateState::NoUpdate, "Newer versions come with your system."},
        {false, true, true, UpdateState::NoUpdate, "Newer versions come with your system."},
        {false, false, true, UpdateState::NoUpdate, "This copy does not look for newer versions."},
        {true, false, false, UpdateState::NoNetwork, ""}};
    const int askedBefore = transport.asked;
    for (const auto& each : cases) {
        hasKeys = each.hasKeys;
        isOwned = each.isOwned;
        hasNetwork = each.hasNetwork;
        Controller& in = open();
        EXPECT_EQ(shownViews(in), std::vector<QWidget*>{in.views().checkProgressView});
        EXPECT_TRUE(in.views().progressBar->isTurning());
        EXPECT_EQ(in.window()->windowModality(), Qt::ApplicationModal);
        ASSERT_SOON(in.state() == each.state);
        const bool isNetwork = each.state == UpdateState::NoNetwork;
        EXPECT_EQ(shownViews(in), std::vector<QWidget*>{isNetwork ? in.views().noNetworkView
                                                                  : in.views().noUpdateView});
        EXPECT_EQ(in.views().noUpdateTitle->text().toStdString(), each.title);
    }
    EXPECT_EQ(transport.asked, askedBefore) << "not a single request";
    Controller& in = *controller;
    in.whatIsNewVersionDiff(nullptr);
    EXPECT_EQ(in.views().noUpdateTitle->text(), QStringLiteral("No newer version was found."));
    showDescription(in, "");
    EXPECT_EQ(shownViews(in), std::vector<QWidget*>{in.views().haveUpdateView});
    EXPECT_EQ(in.views().titleLable->text(), QStringLiteral("Orrinvale 2.0 has been released."));
    EXPECT_EQ(in.views().versionLabel->text(), QStringLiteral("New features of Version 2.0:"));
    EXPECT_EQ(in.views().showVersionScrollView->size(), QSize(430, 99)) << "an empty list";
    QTest::mouseClick(in.views().updateClickHere, Qt::LeftButton);
    EXPECT_EQ(opened, std::vector<QString>{QStringLiteral(
                          "https://www.kelpford.com/download/update-orrinvale.html")});
}

TEST_F(UpdateWindow, RowsStandBelowEachOtherAndNoneIsCut) {
    hasNetwork = false;
    Controller& in = open();
    ASSERT_SOON(in.state() == UpdateState::NoNetwork);
    std::string further = "<key>1</key><string>&lt;b&gt;R&amp;D&lt;/b&gt;</string>";
    for (int i = 2; i <= 30; ++i) {
        std::string text;
        for (int word = 0; word < i * 2; ++word)
            text += i % 3 == 0 ? "longwordswithoutanyspace" : "words ";
        further += fmt::format("<key>{}</key><string>{}</string>", i, text);
    }
    showDescription(in, further);
    QWidget& list = *in.views().showVersionScrollView;
    const auto rows = list.findChildren<QLabel*>();
    ASSERT_EQ(rows.size(), 30);
    EXPECT_EQ(rows[0]->geometry(), QRect(0, 0, 380, 25));
    EXPECT_EQ(rows[0]->text(), QStringLiteral("1:<b>R&D</b>"));
    EXPECT_EQ(rows[0]->textFormat(), Qt::PlainText);
    EXPECT_EQ(rows[0]->toolTip(), QStringLiteral("<qt>&lt;b&gt;R&amp;D&lt;/b&gt;</qt>"));
    for (qsizetype i = 1; i < rows.size(); ++i) {
        EXPECT_NEAR(rows[i]->y(), rows[i - 1]->geometry().bottom() + 1, 1) << i;
        EXPECT_LE(rows[i]->heightForWidth(380), rows[i]->height()) << i;
    }
    EXPECT_EQ(list.width(), 430);
    EXPECT_GE(list.height(), rows.last()->geometry().bottom());
    EXPECT_EQ(in.views().changeValueScrollView->widget()->y(), 0) << "the first row is in sight";
}

TEST_F(UpdateWindow, ClosingItEndsTheCheck) {
    Controller& in = open();
    const int before = transport.stopped;
    ASSERT_SOON(transport.asked > before);
    EXPECT_EQ(in.state(), UpdateState::Checking);
    in.window()->performClose();
    EXPECT_FALSE(in.window()->isVisible()) << "without a fade";
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(terminations, 0);
    EXPECT_SOON(transport.stopped > before);
    controller.reset();
    open();
    controller.reset();
    EXPECT_SOON(transport.stopped == transport.asked) << "it ends with its window";
}

TEST_F(UpdateWindow, TheProgramEndsBehindTheFade) {
    hasNetwork = false;
    using Reply = Controller::TerminateReply;
    Controller& in = open();
    ASSERT_SOON(in.state() == UpdateState::NoNetwork);
    in.window()->setStyle(&moving);
    EXPECT_FALSE(in.windowShouldClose());
    EXPECT_TRUE(in.window()->isVisible()) << "it fades first";
    EXPECT_EQ(in.applicationShouldTerminate(), Reply::Cancel);
    EXPECT_EQ(in.applicationShouldTerminate(), Reply::Now) << "who asks twice means it";
    EXPECT_EQ(terminations, 0);
    EXPECT_SOON(terminations == 1);
    EXPECT_FALSE(in.window()->isVisible());
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(in.applicationShouldTerminate(), Reply::Now);
}

TEST_F(UpdateWindow, TheMenuOpensItAndQuittingGoesThroughIt) {
    isOwned = true;
    const UpdateParts parts = updates();
    Launched on(systemAndStick(), std::nullopt, &parts);
    on.delegate->applicationDidFinishLaunching();
    EXPECT_SOON(on.delegate->updateRoad() == UpdateRoad::Package);
    on.entry("checkUpdate")->trigger();
    Controller* const first = on.delegate->checkUpdateWC();
    ASSERT_NE(first, nullptr);
    on.entry("checkUpdate")->trigger();
    EXPECT_EQ(on.delegate->checkUpdateWC(), first) << "one at a time";
    EXPECT_SOON(first->state() == UpdateState::NoUpdate);
    QTest::mouseClick(first->window()->findChild<QAbstractButton*>(QStringLiteral("closeNoUpdate")),
                      Qt::LeftButton);
    EXPECT_EQ(on.delegate->checkUpdateWC(), nullptr);
    on.entry("checkUpdate")->trigger();
    on.delegate->checkUpdateWC()->window()->setStyle(&moving);
    on.delegate->quit();
    EXPECT_TRUE(on.ends.empty());
    EXPECT_SOON(on.ends == std::vector<int>{1});
}

}  // namespace
}  // namespace orrinvale::testing
