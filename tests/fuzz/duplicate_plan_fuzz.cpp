// Any bytes as a plan: what is read is sound, and comes back from what is written of it.
#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/text/JsonText.h"
#include "fuzz/fuzz.h"

namespace {

using namespace orrinvale;

void checkPlan(std::string_view text) {
    const auto plan = parsePlan(text);
    if (!plan) {
        require(!plan.error().empty());
        return;
    }
    require(!faultOf(*plan));
    const std::string written = writePlan(*plan);
    const auto again = parsePlan(written);
    require(again.has_value() && writePlan(*again) == written);
}

}  // namespace

void checkAny(std::string_view any) {
    checkPlan(any);
    // Most bytes are no plan; as the contents of one, or as a path in one, they get further.
    checkPlan("{\n  \"orrinvalePlan\": 1,\n" + std::string(any) + "}");
    DuplicatePlan plan;
    plan.made = "2026-11-22T15:00:00+00:00";
    PlanMember goes;
    goes.path = "/" + std::string(any);
    goes.goes = true;
    goes.size = 1;
    goes.identity.type = FileType::Regular;
    PlanMember stays = goes;
    stays.path = "/stays/" + std::string(any);
    stays.goes = false;
    plan.groups = {{{goes, stays}}};
    const auto back = parsePlan(writePlan(plan));
    require(back.has_value() == !faultOf(plan).has_value());
    if (back) require(back->groups[0].members[0].path == goes.path);
}
