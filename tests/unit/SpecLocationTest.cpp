// The path for each variant, and the built-in document for each path.

#include <gtest/gtest.h>

#include <filesystem>

#include "Device.h"
#include "hostplatform/HostPlatform.h"

namespace kc2::test {

namespace {

TEST(SpecLocationTest, EveryKindOfVariant) {
    Device device;
    const std::string name = "/video_system_specs.json";
    device.write("/odm/etc/media_file" + name, "");
    device.write("/vendor/etc/media_file" + name, "");
    device.write("/vendor/etc/media_vendor" + name, "");
    device.write("/odm/etc/media" + name, "");
    device.write("/odm/etc/media_directory" + name + "/x", "");
    std::filesystem::create_symlink("nowhere", device("/odm/etc/media_dangling" + name));
    std::filesystem::create_symlink("video_system_specs.json",
                                    device("/odm/etc/media_loop" + name));
    device.write("/odm/etc/media_notdir", "");

    const std::string longName(300, 'n');
    const struct {
        std::string variant;
        std::string path;
    } rows[] = {
            {"_file", "/odm/etc/media_file" + name},
            {"_vendor", "/vendor/etc/media_vendor" + name},
            {"_none", "/vendor/etc/media_none" + name},
            {"_directory", "/odm/etc/media_directory" + name},
            {"_dangling", "/vendor/etc/media_dangling" + name},
            {"_loop", "/vendor/etc/media_loop" + name},
            {"_notdir", "/vendor/etc/media_notdir" + name},
            {longName, "/vendor/etc/media" + longName + name},
            {"/x/..", "/vendor/etc/media/x/.." + name},
            {"", "/odm/etc/media" + name},
            {"Default", "/vendor/etc/mediaDefault" + name},
            {"default ", "/vendor/etc/mediadefault " + name},
    };
    for (const auto& row : rows) {
        setVariant(row.variant);
        EXPECT_EQ(row.path, TargetSpec::readTargetVariant()) << row.variant;
        EXPECT_EQ(Lines(), device.takeLog()) << row.variant;
    }
    setVariant("default");
    EXPECT_EQ(kDefaultSpec, TargetSpec::readTargetVariant());
    host::clearProperties();
    EXPECT_EQ(kDefaultSpec, TargetSpec::readTargetVariant());
    EXPECT_EQ(Lines(2, kNoVariantLine), device.takeLog());
}

TEST(SpecLocationTest, ThePathChoosesTheBuiltInDocument) {
    Device device;
    const std::pair<const char*, const char*> rows[] = {
            {"_brel", "document 1"},        {"_xmirty", "document 1"},
            {"_orvelle", "document 2"},     {"_orvelle_mirt", "document 1"},
            {"brel/orvelle", "document 1"}, {"_Brel", "document 3"},
            {"_ORVELLE", "document 3"},     {"default", "document 3"},
            {"_bre", "document 3"},         {"_orvell", "document 3"},
            {"_mir", "document 3"},
    };
    for (const auto& [variant, title] : rows) {
        setVariant(variant);
        const std::string text = TargetSpec::getPrivateConfig();
        EXPECT_NE(std::string::npos, text.find(std::string("Built-in ") + title)) << variant;
        EXPECT_EQ(TargetSpec::getPrivateConfig(), TargetSpec::getPrivateConfig());
    }
}

}  // namespace

}  // namespace kc2::test
