#include <KestoDM/foundation/DmVersion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using Kesto::DmVersion;

TEST(DmVersion, VersionTextJoinsTheBuildFacts) {
    EXPECT_EQ(DmVersion::getVersionText(),
              "Kesto version " + DmVersion::getVersionNumber() + " (" + DmVersion::getBuildDate() +
                  ", build " + DmVersion::getBuildNumber() + ", commit " + DmVersion::getCommitHash() +
                  ", branch " + DmVersion::getBranch() + ")");
}

TEST(DmVersion, VersionNumberIsTheProjectVersion) {
    EXPECT_THAT(DmVersion::getVersionNumber(), testing::MatchesRegex("^[0-9]+\\.[0-9]+\\.[0-9]+$"));
}

TEST(DmVersion, VersionLineRightAlignsTheLibraryNameInSixteenColumns) {
    EXPECT_EQ(DmVersion::getVersionLine(), "  KestoPrivateDM: " + DmVersion::getVersionText());
}

TEST(DmVersion, VersionLineHasNoLineEnd) {
    std::string const line = DmVersion::getVersionLine();
    EXPECT_EQ(line.find('\n'), std::string::npos);
}

TEST(DmVersion, BuildNumberIsDigits) {
    EXPECT_THAT(DmVersion::getBuildNumber(), testing::MatchesRegex("^[0-9]+$"));
}

TEST(DmVersion, BuildDateIsADay) {
    EXPECT_THAT(DmVersion::getBuildDate(), testing::MatchesRegex("^[0-9]{4}-[0-9]{2}-[0-9]{2}$"));
}

TEST(DmVersion, CommitHashAndBranchAreNotEmpty) {
    EXPECT_FALSE(DmVersion::getCommitHash().empty());
    EXPECT_FALSE(DmVersion::getBranch().empty());
}

TEST(DmVersion, EachFactIsTheSameObjectAtEveryCall) {
    EXPECT_EQ(&DmVersion::getVersionNumber(), &DmVersion::getVersionNumber());
    EXPECT_EQ(&DmVersion::getVersionText(), &DmVersion::getVersionText());
}
