// What is asked before copies share their space, in the words of the window.
#pragma once

#include <string>

#include "engine/duplicates/share/ShareOutlook.h"

namespace orrinvale::cli {

/// How many can by which way, what each way means, what is left out and why, and whether they may;
/// several lines, the last of which is the question.
[[nodiscard]] std::string shareQuestion(const ShareOutlook& outlook);

}  // namespace orrinvale::cli
