#pragma once

/**
 * The keys of the export settings, as the settings store files them. Every
 * file of the plug-in names a setting through these; the options page's
 * check boxes and combo box carry the same texts as their object names.
 */
namespace SettingKeys {

constexpr char outputFileFormat[] = "outputFileFormat";
constexpr char outputFileExtension[] = "outputFileExtension";

constexpr char exportPacketCounter[] = "exportPacketCounter";
constexpr char exportSampleTimeFine[] = "exportSampleTimeFine";
constexpr char exportDateTime[] = "exportDateTime";
constexpr char exportUtc[] = "exportUtc";
constexpr char exportStatusFlags[] = "exportStatusFlags";
constexpr char exportClipFlags[] = "exportClipFlags";
constexpr char exportRssi[] = "exportRssi";
constexpr char exportCalibratedAcceleration[] = "exportCalibratedAcceleration";
constexpr char exportFreeAcceleration[] = "exportFreeAcceleration";
constexpr char exportCalibratedAngularVelocity[] = "exportCalibratedAngularVelocity";
constexpr char exportMagneticField[] = "exportMagneticField";
constexpr char exportVelocityIncrement[] = "exportVelocityIncrement";
constexpr char exportOrientationIncrement[] = "exportOrientationIncrement";
constexpr char exportPressure[] = "exportPressure";
constexpr char exportOrientation[] = "exportOrientation";
constexpr char exportPosition[] = "exportPosition";
constexpr char exportVelocity[] = "exportVelocity";
constexpr char exportHeading[] = "exportHeading";
constexpr char exportTemperature[] = "exportTemperature";
constexpr char exportGyroTemperature[] = "exportGyroTemperature";
constexpr char exportScrAcceleration[] = "exportScrAcceleration";
constexpr char exportScrGyroscopeData[] = "exportScrGyroscopeData";
constexpr char exportScrMagneticField[] = "exportScrMagneticField";
constexpr char exportScrTemperature[] = "exportScrTemperature";
constexpr char exportScrGyroTemperature[] = "exportScrGyroTemperature";
constexpr char exportRawGps[] = "exportRawGps";
constexpr char exportRawGnss[] = "exportRawGnss";
constexpr char exportTriggerIn1[] = "exportTriggerIn1";
constexpr char exportTriggerIn2[] = "exportTriggerIn2";

// The description of the SCR acceleration setting is filed under this
// spelling (no "A"): stored hosts know it so, and nothing reads it.
constexpr char exportScrAccelerationDescription[] = "exportScrcceleration";

constexpr char useCommaDelimiter[] = "useCommaDelimiter";
constexpr char useOtherDelimiter[] = "useOtherDelimiter";
constexpr char useSemiColonDelimiter[] = "useSemiColonDelimiter";
constexpr char useSpaceDelimiter[] = "useSpaceDelimiter";
constexpr char useTabDelimiter[] = "useTabDelimiter";
constexpr char otherDelimiter[] = "otherDelimiter";

constexpr char insertNothing[] = "insertNothing";
constexpr char insertNan[] = "insertNan";
constexpr char insertZero[] = "insertZero";
constexpr char insertOtherPlaceholder[] = "insertOtherPlaceholder";
constexpr char otherPlaceholder[] = "otherPlaceholder";

// Read by the number formatting, but not declared: until the host's store
// holds a value for it, it reads as false.
constexpr char highPrecision[] = "highPrecision";

} // namespace SettingKeys
