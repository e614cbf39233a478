// SampleFolder: a family's folder with copies in it, made anew for each run with the same names,
// sizes and dates.
#pragma once

#include <string>

#include "platform/descriptor.h"

namespace orrinvale {

/// Stands at one fixed place below /tmp, since paths are to be seen in the pictures; one process at
/// a time has it. Files are sparse: large sizes take no space. Gone with the object.
class SampleFolder final {
public:
    SampleFolder();
    ~SampleFolder();
    SampleFolder(const SampleFolder&) = delete;
    SampleFolder& operator=(const SampleFolder&) = delete;

    /// Why there is none; empty when there is one.
    [[nodiscard]] const std::string& failure() const { return m_failure; }

    [[nodiscard]] std::string family() const;    ///< with copies of every kind
    [[nodiscard]] std::string tidy() const;      ///< without any
    [[nodiscard]] std::string attic() const;     ///< with folders that are equal as wholes
    [[nodiscard]] std::string painting() const;  ///< a picture to look at
    [[nodiscard]] std::string settings() const;  ///< where a settings file may go

    static constexpr const char* unreadableFolder = "Mail of the old computer";
    static constexpr const char* unreadableFile = "Diary.odt";
    static constexpr const char* largeVideo = "VID_0113.mp4";

private:
    [[nodiscard]] bool take();
    [[nodiscard]] bool fill() const;

    std::string m_failure;
    Descriptor m_place;  // locked while the object lives
};

}  // namespace orrinvale
