#include "platform/base/CPointerRef.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

struct Counted : CPointerRef {};

TEST(PointerRef, CountsUpAndDown) {
    Counted object;
    EXPECT_EQ(object.GetRefCount(), 0);
    EXPECT_EQ(object.AddRef(), 1);
    EXPECT_EQ(object.AddRef(), 2);
    EXPECT_EQ(object.ReleaseRef(), 1);
    EXPECT_EQ(object.GetRefCount(), 1);
}

TEST(PointerRef, StaysAtZeroWhenNothingIsHeld) {
    Counted object;
    EXPECT_EQ(object.ReleaseRef(), 0);
    EXPECT_EQ(object.GetRefCount(), 0);
    EXPECT_EQ(object.AddRef(), 1);
}

TEST(PointerRef, CopyStartsAtZero) {
    Counted object;
    object.AddRef();
    const Counted copy(object);
    EXPECT_EQ(copy.GetRefCount(), 0);
    EXPECT_EQ(object.GetRefCount(), 1);
}

TEST(PointerRef, AssignmentLeavesBothCounts) {
    Counted source, target;
    source.AddRef();
    target.AddRef();
    target.AddRef();
    target = source;
    EXPECT_EQ(target.GetRefCount(), 2);
    EXPECT_EQ(source.GetRefCount(), 1);
}

TEST(PointerRef, HasNoVirtualOperation) { EXPECT_FALSE(std::is_polymorphic_v<CPointerRef>); }

}  // namespace
