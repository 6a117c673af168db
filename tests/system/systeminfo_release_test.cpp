#include "common/objects.h"
#include "fakes/preferences.h"
#include "fakes/systemfacts.h"

#include <KxQts/system/systeminfo.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/utsname.h>

using KxTest::ScriptedPreferences;
using KxTest::ScriptedSystemFacts;

namespace {

/// A kernel of some release.
ScriptedSystemFacts& kernel(ScriptedSystemFacts& facts, const char* release) {
    facts.release = release;
    return facts;
}

/// What the release tests say: one letter for each that is true.
std::string testsOf(const char* release) {
    ScriptedSystemFacts facts;
    if (release)
        kernel(facts, release);
    std::string names;
    names += isNewerThenLeopard() ? "9" : "";
    names += isNewerThenSnowLeopard() ? "S" : "";
    names += isSnowLeopard() ? "s" : "";
    names += isLion() ? "l" : "";
    names += Korvex::isMacOsxLion() ? "L" : "";
    names += Korvex::isMacOsxMountainLion() ? "M" : "";
    return names;
}

/// An installation that states what product it is.
class Stated : public testing::Test {
protected:
    void state(const QString& key, const KxTest::Object& value) {
        const Korvex::PreferenceDomain domain{
            QStringLiteral("/System/Library/CoreServices/SystemVersion"),
            Korvex::PreferenceDomain::Scope::AnyUser};
        ASSERT_TRUE(preferences.setValue(domain, key, value.get()));
    }
    void stateBoth(const char* toVersion, const char* toBuild) {
        state("ProductVersion", KxTest::text(toVersion));
        state("ProductBuildVersion", KxTest::text(toBuild));
    }

    ScriptedPreferences preferences;
    ScriptedSystemFacts facts;
    QString version = QStringLiteral("old");
    QString build = QStringLiteral("old");
    unsigned minor = 77;
    unsigned patch = 77;
};

} // namespace

TEST(KernelRelease, IsThatOfTheRunningKernel) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    QString release;
    EXPECT_TRUE(getOSKernelReleaseString(release));
    EXPECT_EQ(release, names.release);
    QString same;
    EXPECT_TRUE(Korvex::getOSKernelRelease(same));
    EXPECT_EQ(same, release);
}

TEST(KernelRelease, IsSplitIntoNumbers) {
    ScriptedSystemFacts facts;
    unsigned major = 0;
    unsigned minor = 0;
    unsigned patch = 77;
    kernel(facts, "10.8.1");
    EXPECT_TRUE(getOSKernelVersion(major, minor, &patch));
    EXPECT_EQ(major, 10u);
    EXPECT_EQ(minor, 8u);
    EXPECT_EQ(patch, 1u);
    kernel(facts, "6.1.0-18-amd64");
    EXPECT_TRUE(getOSKernelVersion(major, minor, nullptr));
    EXPECT_EQ(major, 6u);
    EXPECT_EQ(minor, 1u);
}

TEST(KernelRelease, OfTwoNumbersIsNotEnough) {
    ScriptedSystemFacts facts;
    unsigned major = 0;
    unsigned minor = 0;
    unsigned patch = 77;
    kernel(facts, "7.4");
    EXPECT_FALSE(getOSKernelVersion(major, minor, &patch));
    EXPECT_EQ(major, 7u) << "written all the same";
    EXPECT_EQ(minor, 4u);
    EXPECT_EQ(patch, 77u);
}

TEST(KernelRelease, ThatCannotBeReadFailsEverything) {
    const ScriptedSystemFacts facts;
    QString release = QStringLiteral("old");
    unsigned major = 77;
    unsigned minor = 77;
    EXPECT_FALSE(getOSKernelReleaseString(release));
    EXPECT_FALSE(Korvex::getOSKernelRelease(release));
    EXPECT_EQ(release, "old");
    EXPECT_FALSE(getOSKernelVersion(major, minor, nullptr));
    EXPECT_EQ(testsOf(nullptr), "");
}

TEST(KernelRelease, TestsLookAtTwoCharacters) {
    EXPECT_EQ(testsOf("10.8.0"), "9s");
    EXPECT_EQ(testsOf("11.4.2"), "9SlL");
    EXPECT_EQ(testsOf("12.0.0"), "9SM");
    EXPECT_EQ(testsOf("13.0.0"), "9S");
    EXPECT_EQ(testsOf("119.0.0"), "9SlL") << "only two";
    EXPECT_EQ(testsOf("10"), "9s");
}

TEST(KernelRelease, OfOneDigitFailsEveryTest) {
    EXPECT_EQ(testsOf("9.8.0"), "");
    EXPECT_EQ(testsOf("6.1.0-18-amd64"), "");
    EXPECT_EQ(testsOf("x1.0"), "");
}

TEST_F(Stated, VersionAndBuildCountBeforeTheSystems) {
    facts.version = "12";
    facts.build = "b";
    stateBoth("10.6.8", "10K549");
    EXPECT_TRUE(getProductVersion(version, &build));
    EXPECT_EQ(version, "10.6.8");
    EXPECT_EQ(build, "10K549");
    EXPECT_TRUE(getProductVersion(version, nullptr));
}

TEST_F(Stated, VersionWithoutABuildIsEnoughForThoseWhoAskForNone) {
    facts.build = "b";
    state("ProductVersion", KxTest::text("10.6.8"));
    EXPECT_TRUE(getProductVersion(version, nullptr));
    EXPECT_FALSE(getProductVersion(version, &build));
    EXPECT_EQ(version, "10.6.8");
    EXPECT_EQ(build, "old") << "the system is not asked where an installation states anything";
}

TEST_F(Stated, ValuesMustBeText) {
    facts.version = "12";
    state("ProductVersion", KxTest::number(10));
    EXPECT_FALSE(getProductVersion(version, nullptr));
    state("ProductVersion", KxTest::text("10.6.8"));
    state("ProductBuildVersion", KxTest::boolean(true));
    EXPECT_TRUE(getProductVersion(version, nullptr));
    EXPECT_FALSE(getProductVersion(version, &build));
}

TEST_F(Stated, DamagedDomainGivesNothing) {
    facts.version = "12";
    preferences.damaged.insert(QStringLiteral("/System/Library/CoreServices/SystemVersion"));
    EXPECT_FALSE(getProductVersion(version, nullptr));
    EXPECT_EQ(version, "old");
}

TEST_F(Stated, NothingAsksTheSystem) {
    EXPECT_FALSE(getProductVersion(version, nullptr));
    facts.version = "12";
    EXPECT_TRUE(getProductVersion(version, nullptr));
    EXPECT_EQ(version, "12");
    EXPECT_FALSE(getProductVersion(version, &build));
    facts.build = "20240101";
    EXPECT_TRUE(getProductVersion(version, &build));
    EXPECT_EQ(build, "20240101");
}

TEST_F(Stated, NothingLeavesErrnoAlone) {
    errno = 77;
    EXPECT_FALSE(getProductVersion(version, &build));
    EXPECT_FALSE(getSystemVersionNumber(minor, patch));
    EXPECT_FALSE(getOSKernelReleaseString(version));
    EXPECT_FALSE(isLion());
    EXPECT_EQ(errno, 77);
}

TEST_F(Stated, VersionNumberNeedsThreeNumbers) {
    stateBoth("10.6.8", "10K549");
    EXPECT_TRUE(getSystemVersionNumber(minor, patch));
    EXPECT_EQ(minor, 6u);
    EXPECT_EQ(patch, 8u);
    stateBoth("10.6", "10K549");
    EXPECT_FALSE(getSystemVersionNumber(minor, patch));
    state("ProductVersion", KxTest::number(10));
    EXPECT_FALSE(getSystemVersionNumber(minor, patch));
}

TEST_F(Stated, BuildNumberWritesTheLowByteOfTheLetter) {
    unsigned major = 0;
    unsigned letter = 0xABCDEF01;
    unsigned number = 0;
    stateBoth("10.6.8", "10K549");
    EXPECT_TRUE(getSystemBuildNumber(major, letter, number));
    EXPECT_EQ(major, 10u);
    EXPECT_EQ(letter, 0xABCDEF00u + 'K');
    EXPECT_EQ(number, 549u);
}

TEST_F(Stated, BuildNumberNeedsThreeParts) {
    unsigned major = 77;
    unsigned letter = 77;
    unsigned number = 77;
    stateBoth("10.6.8", "10K");
    EXPECT_FALSE(getSystemBuildNumber(major, letter, number));
    EXPECT_EQ(major, 10u);
    EXPECT_EQ(letter, unsigned{'K'});
    EXPECT_EQ(number, 77u);
    state("ProductVersion", KxTest::boolean(false));
    EXPECT_FALSE(getSystemBuildNumber(major, letter, number));
}

TEST(StringObject, BecomesTheTextAndOneUnitMoreUnlessItIsAscii) {
    QString out = QStringLiteral("old");
    EXPECT_FALSE(CFStringToQString(out, nullptr));
    EXPECT_EQ(out, "old");
    const KxTest::Object plain = KxTest::text("10.6.8");
    EXPECT_TRUE(CFStringToQString(out, static_cast<CFStringRef>(plain.get())));
    EXPECT_EQ(out, "10.6.8");
    const KxTest::Object other = KxTest::text(QStringLiteral("B\u00fccher"));
    EXPECT_TRUE(CFStringToQString(out, static_cast<CFStringRef>(other.get())));
    EXPECT_EQ(out, QStringLiteral("B\u00fccher") + QChar(0));
    const KxTest::Object empty = KxTest::text(QString());
    EXPECT_TRUE(CFStringToQString(out, static_cast<CFStringRef>(empty.get())));
    EXPECT_EQ(out.size(), 0);
}
