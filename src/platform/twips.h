// Twips, the unit of the forms' sizes and positions.
#pragma once

namespace platform {

inline constexpr int kTwipsPerInch = 1440;
/// Pixels per inch of the screen that the forms are designed for.
inline constexpr int kDesignDpi = 96;
inline constexpr int kTwipsPerPixel = kTwipsPerInch / kDesignDpi;

} // namespace platform
