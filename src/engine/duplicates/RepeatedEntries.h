// One directory entry is not its own copy: finding entries that were listed by two paths.
#pragma once

#include "engine/duplicates/fileAttrbItem.h"

namespace orrinvale {

/// Takes the later one of two items that are one directory entry out of the list: the same file, and where it has several
/// hard links the same name in the same folder too. Files listed with different sizes never meet and all stay. Two names of one file stay, they are two entries.
void dropRepeatedEntries(const FileSystem& files, FileArray& array);

}  // namespace orrinvale
