// The ties between GIS handles and entities while files are loaded.
#include <gtest/gtest.h>

#include "platform/cad/CLoadGisBinderNew.h"
#include "platform/entity/CEgn.h"

namespace {

class LoadGisBinder : public ::testing::Test {
protected:
    LoadGisBinder() { binder.Clear(); }
    ~LoadGisBinder() override { binder.Clear(); }

    CLoadGisBinderNew& binder = *CLoadGisBinderNew::GetInstance();
    CEgn first, second;
};

TEST_F(LoadGisBinder, IsOneForTheProcess) {
    EXPECT_EQ(CLoadGisBinderNew::GetInstance(), &binder);
    EXPECT_TRUE(binder.IsEmpty());
}

TEST_F(LoadGisBinder, FindsWhatWasBound) {
    binder.Bind(5, &first);
    binder.Bind(-6, &second);
    binder.Bind(0, &second);
    EXPECT_EQ(binder.Find(5), &first);
    EXPECT_EQ(binder.Find(-6), &second);
    EXPECT_EQ(binder.Find(0), &second) << "0 is a handle as any other";
    EXPECT_EQ(binder.Find(7), nullptr);
    EXPECT_FALSE(binder.IsEmpty());
}

TEST_F(LoadGisBinder, LaterEntityReplacesTheFormer) {
    binder.Bind(5, &first);
    binder.Bind(5, &second);
    EXPECT_EQ(binder.Find(5), &second);
}

TEST_F(LoadGisBinder, ClearedItKnowsNothing) {
    binder.Bind(5, &first);
    binder.Clear();
    EXPECT_TRUE(binder.IsEmpty());
    EXPECT_EQ(binder.Find(5), nullptr);
    binder.Clear();
    EXPECT_TRUE(binder.IsEmpty());
}

}  // namespace
