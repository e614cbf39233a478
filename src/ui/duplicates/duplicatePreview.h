// duplicatePreview: what the preview beside the list is told of the chosen row.
#pragma once

namespace orrinvale {

class DuplicateResultModel;
class SameFileDeleteViews;
struct PageServices;

/// Once, when the views stand.
void startPreview(const SameFileDeleteViews& views, const PageServices& parts);

/// After each change of the chosen row, of what stands in it, and of ticks.
void showPreview(const SameFileDeleteViews& views, const DuplicateResultModel& model);

}  // namespace orrinvale
