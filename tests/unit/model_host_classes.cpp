// SPDX-License-Identifier: MIT
#include "model_title.h"

#include <host/VelImprinterPlugin.h>
#include <model/HostClasses.h>

#include <gtest/gtest.h>

namespace {

using platform::NSClassFromString;

TEST(HostClasses, AnswerTheOneModelThroughThePluginClass) {
    const auto model = std::make_shared<model::ImprinterModel>();
    const model::HostClasses classes(model);
    const auto* cls = NSClassFromString(u"VelImprinterPlugin");
    ASSERT_TRUE(cls);
    EXPECT_FALSE(cls->make);
    const auto plugin = std::dynamic_pointer_cast<host::VelImprinterPlugin>(cls->classObject);
    ASSERT_TRUE(plugin);
    EXPECT_EQ(plugin->classTable(), cls);
    EXPECT_EQ(plugin->imprinter(), model);
    EXPECT_EQ(plugin->imprinter(), model);
}

TEST(HostClasses, AnswerANullModelAsNull) {
    const model::HostClasses classes(nullptr);
    const auto plugin =
        std::dynamic_pointer_cast<host::VelImprinterPlugin>(NSClassFromString(u"VelImprinterPlugin")->classObject);
    ASSERT_TRUE(plugin);
    EXPECT_FALSE(plugin->imprinter());
}

TEST(HostClasses, MakeFontRunsKnownByTheirClass) {
    const auto configuration = model::Configuration::make(false);
    EXPECT_FALSE(configuration->createFontToken()->isKindOfClass(NSClassFromString(u"VelIFontType")));
    const model::HostClasses classes(std::make_shared<model::ImprinterModel>());
    const auto* cls = NSClassFromString(u"VelIFontType");
    ASSERT_TRUE(cls);
    EXPECT_FALSE(cls->make) << "font runs are made by configurations only";
    EXPECT_TRUE(configuration->createFontToken()->isKindOfClass(cls));
    EXPECT_FALSE(configuration->isKindOfClass(cls));
}

TEST(HostClasses, GoWithTheObjectThatRegisteredThem) {
    { const model::HostClasses classes(std::make_shared<model::ImprinterModel>()); }
    EXPECT_FALSE(NSClassFromString(u"VelImprinterPlugin"));
    EXPECT_FALSE(NSClassFromString(u"VelIFontType"));
}

} // namespace
