// Twips, the unit of the windows' sizes and positions: a twip is 1/1440 inch.
#pragma once

namespace platform {

inline constexpr int kTwipsPerInch = 1440;
/// Pixels per inch of the screen for which the windows are designed.
inline constexpr int kDesignDpi = 96;
inline constexpr int kTwipsPerPixel = kTwipsPerInch / kDesignDpi;

} // namespace platform
