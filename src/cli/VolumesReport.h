// How volumes are printed: as JSON, as paths, as a listing, and one event a line.
#pragma once

#include <string_view>
#include <vector>

#include "engine/volumes/VolumeEvents.h"
#include "engine/volumes/VolumesInfo.h"
#include "platform/error.h"

namespace orrinvale::cli {

class Output;

void printVolumesJson(Output& out, const VolumesInfo::VolumeArray& volumes,
                      const std::vector<Error>& skipped, bool stopped);
void printVolumePaths(Output& out, const VolumesInfo::VolumeArray& volumes);
void printVolumeListing(Output& out, const VolumesInfo::VolumeArray& volumes, bool colour);

/// {"event", "volume"} on one line, the volume with the fields of the document.
void printVolumeEventJson(Output& out, const VolumeEvent& event);
void printVolumeEvent(Output& out, const VolumeEvent& event);

}  // namespace orrinvale::cli
