// PreviewSteps: the preview beside the list of duplicates over thousands of pictures, with steps of
// the arrow and an arrow that is held down.
#pragma once

#include <cstddef>
#include <string>

namespace orrinvale {

class DuplicateMainWindowController;
class WindowSteps;

/// Pairs of equal pictures of three megapixels, no two pairs alike, so that a list in which all are
/// opened has about `rows` rows. False when they can not be written.
[[nodiscard]] bool makePictures(const std::string& root, std::size_t rows);

/// Searches the folder and follows the arrows.
void runPreviewSteps(WindowSteps& steps, DuplicateMainWindowController& window,
                     const std::string& folder);

}  // namespace orrinvale
