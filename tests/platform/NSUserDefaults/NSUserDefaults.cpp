// SPDX-License-Identifier: MIT
#include <Foundation/NSUserDefaults.h>

#include <QCoreApplication>
#include <QFile>
#include <QSettings>

#include <gtest/gtest.h>

using namespace platform;

namespace {

QString settingsFile() {
    return qEnvironmentVariable("XDG_CONFIG_HOME") + "/imprinter/imprinter.ini";
}

TEST(UserDefaults, AnAbsentKeyAnswersNothing) {
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey(u"Absent"), std::nullopt);
    EXPECT_FALSE(NSUserDefaults::standardUserDefaults().boolForKey(u"Absent"));
}

TEST(UserDefaults, ATextComesBackFromTheUsersFile) {
    auto& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(u"id-1, \"zwei\"; größer\n@", u"ImprinterPrefLastSelected");
    QCoreApplication::processEvents(); // the file is written behind the scenes
    const QSettings file(settingsFile(), QSettings::IniFormat);
    EXPECT_EQ(file.value("ImprinterPrefLastSelected").toString().toStdU16String(), u"id-1, \"zwei\"; größer\n@");
    EXPECT_EQ(defaults.stringForKey(u"ImprinterPrefLastSelected"), u"id-1, \"zwei\"; größer\n@");
    EXPECT_TRUE(QFile::exists(settingsFile()));
}

TEST(UserDefaults, TheFileIsReadByNobodyElse) {
    auto& defaults = NSUserDefaults::standardUserDefaults();
    for (const auto* value : {u"1", u"2"}) {
        defaults.setObjectForKey(value, u"Private");
        QCoreApplication::processEvents();
        ASSERT_TRUE(QFile::exists(settingsFile()));
        const auto permissions = QFile::permissions(settingsFile());
        EXPECT_TRUE(permissions & QFileDevice::ReadOwner);
        EXPECT_FALSE(permissions & (QFileDevice::ReadGroup | QFileDevice::ReadOther)) << "at the next writing, too";
    }
}

TEST(UserDefaults, ARemovedKeyIsAbsent) {
    auto& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setBoolForKey(true, u"Flag");
    EXPECT_TRUE(defaults.boolForKey(u"Flag"));
    defaults.removeObjectForKey(u"Flag");
    EXPECT_EQ(defaults.stringForKey(u"Flag"), std::nullopt);
}

TEST(UserDefaults, AnotherStoreStandsInUntilItIsTakenBack) {
    struct Store final : NSUserDefaults {
        std::optional<std::u16string> stringForKey(const std::u16string&) const override { return u"YES"; }
        void setObjectForKey(const std::u16string&, const std::u16string&) override {}
        void removeObjectForKey(const std::u16string&) override {}
    };
    NSUserDefaults::setStandardUserDefaults(std::make_shared<Store>());
    EXPECT_TRUE(NSUserDefaults::standardUserDefaults().boolForKey(u"Absent"));
    NSUserDefaults::setStandardUserDefaults(nullptr);
    EXPECT_FALSE(NSUserDefaults::standardUserDefaults().boolForKey(u"Absent"));
}

} // namespace
