// What the uninstall page shows, ticks and orders, and when it asks for the right, without a
// window.
#include <algorithm>
#include <cctype>

#include "engine/uninstall/UninstallList.h"
#include "engine/uninstall/UninstallRights.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Sort = UninstallList::Sort;

std::shared_ptr<AppItems> item(const std::string& name, ApplicationType type = ApplicationType::Deb,
                               bool isSystem = false, const std::string& version = "1") {
    auto made = std::make_shared<AppItems>();
    ApplicationRecord record;
    record.type = type;
    record.id = "org.example." + name;
    record.path = "/usr/bin/" + name;
    record.isSystem = isSystem;
    record.isOurs = name == "ours";
    made->name = name;
    made->path = record.path;
    made->bundleVersion = version;
    made->isSystemApp = isSystem;
    made->record = std::make_shared<const ApplicationRecord>(std::move(record));
    return made;
}

std::string names(const AppItemsArray& items) {
    std::string out;
    for (const auto& each : items) out += each->name + (each->bIsSelected ? "* " : " ");
    return out;
}

std::string small(const std::string& name) {
    std::string out = name;
    std::ranges::transform(out, out.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return out;
}

AppItemsArray several() {
    return {item("Beta"), item("alpha", ApplicationType::Flatpak),
            item("dpkg", ApplicationType::Deb, true), item("ours"),
            item("Gamma", ApplicationType::App)};
}

TEST(UninstallList, ListedAnewFromItselfIsTheSame) {
    UninstallList list;
    list.setFound(several());
    list.setFound(list.searchAllAppArr());
    EXPECT_EQ(names(list.searchAllAppArr()), names(several()));
    for (const auto& each : list.searchAllAppArr()) EXPECT_NE(each->record, nullptr);
}

TEST(UninstallList, RowsAndFilterDecideWhatIsShownAndWhatCounts) {
    UninstallList list(small);
    EXPECT_TRUE(list.isEverythingSelected()) << "an empty table";
    EXPECT_EQ(list.getAllSelectApp(), std::nullopt);
    list.setFound(several());
    list.sortBy(Sort::Name, false);
    const struct {
        std::int32_t row;
        const char *filter, *shown;
    } cases[] = {
        {UninstallList::AllSoftware, "", "alpha* Beta dpkg* Gamma ours "},
        {UninstallList::SystemProgram, "", "dpkg* "},
        {UninstallList::Application, "", "alpha* Beta Gamma ours "},
        {UninstallList::FirstKind + int(ApplicationType::App), "", "Gamma "},
        {UninstallList::FirstKind + int(ApplicationType::Snap), "", ""},
        {UninstallList::AllSoftware, "A", "alpha* Beta dpkg* Gamma ours "},
        {UninstallList::AllSoftware, "BET", "Beta "},
        {UninstallList::Application, "example.gam", "Gamma "},
    };
    for (const char* ticked : {"alpha", "dpkg"})
        for (const auto& each : list.searchAllAppArr())
            if (each->name == ticked) UninstallList::flip(*each);
    for (const auto& [row, filter, shown] : cases) {
        list.select(row);
        list.setFilter(filter);
        EXPECT_EQ(names(list.allApplications()), shown) << row << filter;
        const auto ticks = std::ranges::count(std::string_view(shown), '*');
        EXPECT_EQ(list.getAllSelectApp().value_or(AppItemsArray()).size(), std::size_t(ticks));
        EXPECT_EQ(list.hasSelectedSystemApp(),
                  std::string_view(shown).find("dpkg*") != std::string_view::npos);
    }
    list.setFilter("");
    list.selectAllList(true);
    EXPECT_EQ(names(list.searchAllAppArr()), "alpha* Beta* dpkg* Gamma* ours ")
        << "the other row's tick stays, and we never tick ourselves";
    EXPECT_TRUE(list.isEverythingSelected());
    UninstallList::flip(*list.allApplications().front());
    EXPECT_FALSE(list.isEverythingSelected());
}

TEST(UninstallList, WhatIsNotKnownComesLastWhicheverTheDirection) {
    UninstallList list;
    list.setFound(several());
    const AppItemsArray all = list.searchAllAppArr();
    for (const auto& [number, bytes] : {std::pair(0, 50U), {2, 900U}, {4, 7U}}) {
        all[std::size_t(number)]->fileSizeNum = bytes;
        all[std::size_t(number)]->fileSize = "known";
    }
    list.sortBy(Sort::Size, true);
    EXPECT_EQ(names(list.allApplications()), "dpkg Beta Gamma alpha ours ");
    EXPECT_EQ(names(list.searchAllAppArr()), names(list.allApplications()));
    list.select(UninstallList::Application);
    list.sortBy(Sort::Size, false);
    EXPECT_EQ(names(list.allApplications()), "Gamma Beta alpha ours ");
    EXPECT_EQ(names(list.searchAllAppArr()), "dpkg Beta Gamma alpha ours ")
        << "only the first row orders all";
}

TEST(UninstallList, AnotherInventoryKeepsRecordsTicksAndSizes) {
    UninstallList list(small);
    list.setFound(several());
    const AppItemsArray before = list.searchAllAppArr();
    for (const auto& each : before) {
        UninstallList::flip(*each);
        each->fileSize = "known";
    }
    list.setFound({item("new"), item("alpha", ApplicationType::Flatpak),
                   item("Beta", ApplicationType::Deb, false, "2"),
                   item("Gamma", ApplicationType::AppImage)});
    EXPECT_EQ(names(list.searchAllAppArr()), "new alpha* Beta* Gamma ");
    EXPECT_EQ(list.searchAllAppArr()[1], before[1]);
    EXPECT_EQ(list.searchAllAppArr()[1]->fileSize, "known");
    EXPECT_EQ(list.searchAllAppArr()[2]->fileSize, "") << "another version has another size";
    list.takeOut({before[1]});
    EXPECT_EQ(names(list.allApplications()), "new Beta* Gamma ");
}

TEST(UninstallList, WhatNobodyCouldReadIsNotGone) {
    using enum ApplicationType;
    UninstallList list;
    list.setFound({item("Beta"), item("code", Snap), item("chat", Snap)});
    for (const auto& each : list.searchAllAppArr()) UninstallList::flip(*each);
    list.setFound({item("chat", Snap)}, {{Snap, "silent"}});
    EXPECT_EQ(names(list.searchAllAppArr()), "chat* code* ");
    list.setFound({item("chat", Snap)});
    EXPECT_EQ(names(list.searchAllAppArr()), "chat* ");
}

TEST(UninstallList, ATickIsForNoOtherApplicationThatComesToThePath) {
    using enum ApplicationType;
    for (const ApplicationType type : {App, AppImage, Folder}) {
        UninstallList list;
        list.setFound({item("One", type)});
        UninstallList::flip(*list.searchAllAppArr()[0]);
        list.setFound({item("One", type, false, "2")});
        EXPECT_EQ(names(list.searchAllAppArr()), "One* ") << "an update";
        const auto other = item("One", type);
        ApplicationRecord record = *other->record;
        record.id = "org.example.Other";
        other->record = std::make_shared<const ApplicationRecord>(record);
        list.setFound({other});
        EXPECT_EQ(names(list.searchAllAppArr()), "One ");
    }
}

TEST(UninstallRights, EveryAnswerLeadsWhereItShould) {
    using enum UninstallStep;
    // The answers of one removal in their order: y and n of the person, + and - of attempts.
    const struct {
        bool isSystemRow, hasDoorItems, mayAsk;
        const char* answers;
        std::vector<UninstallStep> steps;
    } cases[] = {
        {false, true, true, "+", {FirstAttempt, Succeeded}},
        {false, true, true, "-y+", {FirstAttempt, AskAfter, SecondAttempt, Succeeded}},
        {false, true, true, "-y-", {FirstAttempt, AskAfter, SecondAttempt, Failed}},
        {false, true, true, "-n+", {FirstAttempt, AskAfter, SecondAttempt, Succeeded}},
        {false, true, true, "-n-", {FirstAttempt, AskAfter, SecondAttempt, Failed}},
        {false, true, false, "-+", {FirstAttempt, SecondAttempt, Succeeded}},
        {false, true, false, "--", {FirstAttempt, SecondAttempt, Failed}},
        {true, true, true, "n", {AskBefore, Failed}},
        {true, true, true, "y+", {AskBefore, FirstAttempt, Succeeded}},
        {true, true, false, "+", {FirstAttempt, Succeeded}},
        {true, false, true, "+", {FirstAttempt, Succeeded}},
        {true, false, true, "-", {FirstAttempt, Failed}},
        {false, false, true, "-", {FirstAttempt, Failed}},
        {false, false, false, "-", {FirstAttempt, Failed}},
    };
    for (const auto& each : cases) {
        UninstallRights rights{each.isSystemRow, each.hasDoorItems, each.mayAsk};
        std::vector<UninstallStep> steps{firstUninstallStep(rights)};
        for (const char answer : std::string_view(each.answers)) {
            const bool isAsking = steps.back() == AskBefore || steps.back() == AskAfter;
            ASSERT_EQ(isAsking, answer == 'y' || answer == 'n') << each.answers;
            if (isAsking && answer == 'y') rights.mayAsk = false;
            steps.push_back(isAsking
                                ? uninstallStepAfterAsking(steps.back(), answer == 'y')
                                : uninstallStepAfterAttempt(steps.back(), answer == '+', rights));
        }
        EXPECT_EQ(steps, each.steps)
            << each.isSystemRow << each.hasDoorItems << each.mayAsk << ' ' << each.answers;
    }
}

}  // namespace
}  // namespace orrinvale::testing
