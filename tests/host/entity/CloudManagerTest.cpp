#include "platform/entity/CCloudManager.h"

#include <gtest/gtest.h>

#include "platform/entity/CCloudProject.h"
#include "platform/entity/CLibConOri.h"
#include "platform/entity/COriData.h"
#include "tests/host/entity/CloudParts.h"

namespace {

TEST(CloudManager, IsOneForTheProcess) {
    ASSERT_NE(CCloudManager::GetInstance(), nullptr);
    EXPECT_EQ(CCloudManager::GetInstance(), CCloudManager::GetInstance());
}

TEST(CloudManager, DeviceIdIsPositiveByDefaultAndCanBeSet) {
    CCloudManager& manager = *CCloudManager::GetInstance();
    const int before = manager.GetDevId();
    EXPECT_GT(before, 0);
    manager.SetDevId(31);
    EXPECT_EQ(manager.GetDevId(), 31);
    manager.SetDevId(before);
}

TEST(CloudManager, CountsHowOftenTheIdWasAskedFor) {
    CCloudManager& manager = *CCloudManager::GetInstance();
    const int calls = manager.GetDevIdCalls();
    manager.GetDevId();
    manager.GetDevId();
    EXPECT_EQ(manager.GetDevIdCalls(), calls + 2);
}

TEST(CloudProject, HoldsItsTables) {
    test::Table base(CCloudTable::tabGpsBase), points;
    CCloudProject project;
    EXPECT_TRUE(project.IsCloud());
    EXPECT_EQ(project.GetGpsBaseTable(), nullptr);
    EXPECT_EQ(project.GetGpsPntTable(), nullptr);
    project.SetGpsTables(&base, &points);
    EXPECT_EQ(project.GetGpsBaseTable(), &base);
    EXPECT_EQ(project.GetGpsPntTable(), &points);
}

TEST(CloudProject, NeedNotBeLinkedToTheCloud) {
    CCloudProject project(false);
    EXPECT_FALSE(project.IsCloud());
    project.SetCloud(true);
    EXPECT_TRUE(project.IsCloud());
}

TEST(LibConOri, KeepsProjectAndOrientationAndCopiesThem) {
    CCloudProject project;
    COriData orientation;
    const CLibConOri lib(&project, &orientation);
    EXPECT_EQ(lib.GetCloudProject(), &project);
    EXPECT_EQ(lib.GetOriData(), &orientation);
    const CLibConOri copy(lib);
    EXPECT_EQ(copy.GetCloudProject(), &project);
    EXPECT_EQ(copy.GetOriData(), &orientation);
    CLibConOri assigned(nullptr, nullptr);
    EXPECT_EQ(assigned.GetCloudProject(), nullptr);
    assigned = lib;
    EXPECT_EQ(assigned.GetCloudProject(), &project);
    EXPECT_EQ(assigned.GetOriData(), &orientation);
}

}  // namespace
