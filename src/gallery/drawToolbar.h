// drawToolbar: a picture of the toolbar window with its first page.
#pragma once

namespace orrinvale {

class PictureFolder;
class UserDefaults;

/// False when the picture could not be written; standard error says why. Main thread only.
bool drawToolbar(UserDefaults& defaults, const PictureFolder& pictures);

}  // namespace orrinvale
