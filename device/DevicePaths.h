// Every path and property of the device that the store depends on.
#pragma once

namespace kc2 {

// Which target this device is; kDefaultVariant if it is not set.
inline constexpr char kVariantProperty[] = "vendor.media.target_variant";
inline constexpr char kDefaultVariant[] = "default";

// The system spec document is <directory><variant><name>; the first directory is tried first.
inline constexpr char kOdmSpecDirectory[] = "/odm/etc/media";
inline constexpr char kVendorSpecDirectory[] = "/vendor/etc/media";
inline constexpr char kSystemSpecName[] = "/video_system_specs.json";

// Read if the path above cannot be opened.
inline constexpr char kFallbackSystemSpec[] = "/vendor/etc/video_system_specs.json";

// The private configuration file, and the tool whose presence lets the library seed it.
inline constexpr char kPrivateConfig[] = "/data/vendor/media/video_private_configs.json";
inline constexpr char kCodecTestTool[] = "/vendor/bin/kcodec2_test";

}  // namespace kc2
