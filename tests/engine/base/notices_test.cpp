// The kinds of notices: what travels, under which name, and what a handler is told of a notice that
// somebody else posted.
#include "engine/base/notices.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orrinvale {
namespace {

TEST(Notices, CarryTheirPayloadInTheFixedForm) {
    NotificationCenter center;
    std::vector<std::int32_t> rows;
    const auto chosen = notice::refViewBgColor.observe(
        center, [&](ChosenRow payload) { rows.push_back(payload.row); });
    std::string trace;
    const auto raw = center.addObserver("refViewBgColor", [&](const Notification& notice) {
        const auto* const table = std::any_cast<UserInfo>(&notice.object);
        trace += table != nullptr && table->contains("rowNum") ? "table;" : "no table;";
    });
    notice::refViewBgColor.post(center, {4});
    center.post("refViewBgColor", UserInfo{{"rowNum", std::int32_t{2}}});
    EXPECT_EQ(trace, "table;table;");
    // What carries no row, or one of another kind, is not heard.
    center.post("refViewBgColor");
    center.post("refViewBgColor", UserInfo{{"rowNum", std::string("2")}});
    EXPECT_EQ(rows, (std::vector<std::int32_t>{4, 2}));

    std::string heard;
    const auto came = notice::ZvVolumeMount.observe(center, [&](const ChangedVolume& volume) {
        heard += volume.name + "@" + volume.path + ";";
    });
    const auto each = notice::ZvVolumeMount.observe(center, [&] { heard += "one;"; });
    notice::ZvVolumeMount.post(center, {"Stick", "/media/stick"});
    center.post("ZvVolumeMount", {}, {{NSDevicePath, std::string("/m")}});
    EXPECT_EQ(heard, "Stick@/media/stick;one;@/m;one;");
}

TEST(Notices, GiveTheNoticeAsItCameToWhoAsksForIt) {
    NotificationCenter center;
    std::string heard;
    const auto opened =
        notice::openFinderWhenClickItems.observe(center, [&](const Notification& notice) {
            heard += Notice<std::string>::read(notice).value_or("nothing") + ";";
        });
    notice::openFinderWhenClickItems.post(center, "/media");
    center.post("openFinderWhenClickItems", 5);
    EXPECT_EQ(heard, "/media;nothing;");
}

}  // namespace
}  // namespace orrinvale
