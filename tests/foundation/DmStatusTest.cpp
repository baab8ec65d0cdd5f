#include <KestoDM/foundation/DmStatus.h>

#include <gtest/gtest.h>

using Kesto::DmStatus;

TEST(DmStatus, IsOneByte) {
    EXPECT_EQ(sizeof(DmStatus), 1u);
}

TEST(DmStatus, CodesHaveTheirFixedNumbers) {
    EXPECT_EQ(DmStatus::kSuccess, 0);
    EXPECT_EQ(DmStatus::kSuccessReserved1, 1);
    EXPECT_EQ(DmStatus::kSuccessReplaced, 2);
    EXPECT_EQ(DmStatus::kFailure, 3);
    EXPECT_EQ(DmStatus::kFileError, 4);
    EXPECT_EQ(DmStatus::kReserved5, 5);
    EXPECT_EQ(DmStatus::kInvalidArgument, 6);
    EXPECT_EQ(DmStatus::kConnectionError, 7);
    EXPECT_EQ(DmStatus::kReserved8, 8);
    EXPECT_EQ(DmStatus::kConstEntity, 9);
}

TEST(DmStatus, CodesBelowThreeAreSuccess) {
    for (auto code : {DmStatus::kSuccess, DmStatus::kSuccessReserved1, DmStatus::kSuccessReplaced}) {
        DmStatus const status(code);
        EXPECT_TRUE(status.isSuccess()) << int(code);
        EXPECT_FALSE(status.isFailure()) << int(code);
        EXPECT_TRUE(static_cast<bool>(status)) << int(code);
    }
}

TEST(DmStatus, CodesFromThreeOnAreFailure) {
    for (auto code :
         {DmStatus::kFailure, DmStatus::kFileError, DmStatus::kReserved5, DmStatus::kInvalidArgument,
          DmStatus::kConnectionError, DmStatus::kReserved8, DmStatus::kConstEntity}) {
        DmStatus const status(code);
        EXPECT_FALSE(status.isSuccess()) << int(code);
        EXPECT_TRUE(status.isFailure()) << int(code);
        EXPECT_FALSE(static_cast<bool>(status)) << int(code);
    }
}

TEST(DmStatus, ReservedOneCountsAsSuccessAndFiveAndEightAsFailure) {
    EXPECT_TRUE(DmStatus(DmStatus::kSuccessReserved1).isSuccess());
    EXPECT_TRUE(DmStatus(DmStatus::kReserved5).isFailure());
    EXPECT_TRUE(DmStatus(DmStatus::kReserved8).isFailure());
}

TEST(DmStatus, ComparesAgainstStatusAndStatusValues) {
    DmStatus status(DmStatus::kFailure);
    EXPECT_TRUE(status == DmStatus::kFailure);
    EXPECT_TRUE(status != DmStatus::kSuccess);
    EXPECT_TRUE(status == DmStatus(DmStatus::kFailure));
    EXPECT_TRUE(status != DmStatus(DmStatus::kFileError));
    EXPECT_EQ(status.getStatus(), DmStatus::kFailure);
}

TEST(DmStatus, AssignsFromStatusAndCopies) {
    DmStatus status(DmStatus::kSuccess);
    status = DmStatus::kConstEntity;
    EXPECT_EQ(status.getStatus(), DmStatus::kConstEntity);
    DmStatus const copy(status);
    EXPECT_EQ(copy, status);
    DmStatus moved(std::move(status));
    EXPECT_EQ(moved.getStatus(), DmStatus::kConstEntity);
    moved = DmStatus(DmStatus::kSuccessReplaced);
    EXPECT_EQ(moved.getStatus(), DmStatus::kSuccessReplaced);
}
