// UtilityFunctionOfData: builds the snapshot of the settings, and two small services on texts.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/settings/SettingItems.h"

namespace orrinvale {

/// A text with one font over its whole length; the size is in points.
struct AttributedText {
    std::string text;
    std::string fontName;
    double fontSize = 0.0;
    friend bool operator==(const AttributedText&, const AttributedText&) = default;
};

/// Keeps no state; any thread.
class UtilityFunctionOfData final {
public:
    /// Made at the first call, never freed.
    [[nodiscard]] static UtilityFunctionOfData& getMyData();

    /// A fresh snapshot of the standard defaults.
    [[nodiscard]] std::unique_ptr<SettingItems> readerTxtForSettingValue() const;

    /// The pairs of a text such as "a=1&b=2", undecoded. A piece with no "=" or with two of them is
    /// left out; of two pairs with one name the later holds. Nothing for no text.
    [[nodiscard]] std::optional<std::map<std::string, std::string>> parseFormBodyWith(
        std::optional<std::string_view> text) const;

    /// In "Lucida Grande" at 11 points. Where that font is missing, the screen takes the nearest.
    [[nodiscard]] static AttributedText setAttributeString(std::string_view text);

    UtilityFunctionOfData(const UtilityFunctionOfData&) = delete;
    UtilityFunctionOfData& operator=(const UtilityFunctionOfData&) = delete;

private:
    UtilityFunctionOfData() = default;
    ~UtilityFunctionOfData() = default;
};

}  // namespace orrinvale
