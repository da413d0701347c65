#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/base/VEXNotifySource.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

using Data = VEXNotifyObject::CNotifyData;

// Writes down in which order its listeners are called.
struct Diary {
    std::vector<std::string> calls;
    VEXNotifySource::Listener Of(const std::string& who) {
        return [this, who](int, int, Data*) { calls.push_back(who); };
    }
};

TEST(Notify, ListenersAreCalledInTheOrderOfAdding) {
    VEXNotifySource source;
    Diary diary;
    source.AddListener(diary.Of("a"));
    source.AddListener(diary.Of("b"));
    source.AddListener(diary.Of("c"));
    source.Notify(1, 2, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(Notify, CodeValueAndPayloadPassThrough) {
    struct Payload : Data {
        int answer = 42;
    } payload;
    VEXNotifySource source;
    int code = 0, value = 0;
    Data* data = nullptr;
    source.AddListener([&](int c, int v, Data* d) {
        code = c;
        value = v;
        data = d;
    });
    source.Notify(7, -9, &payload);
    EXPECT_EQ(code, 7);
    EXPECT_EQ(value, -9);
    EXPECT_EQ(data, &payload);

    source.Notify(1, 1, nullptr);
    EXPECT_EQ(code, 1);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(data, nullptr);
}

TEST(Notify, SourceWithoutListenersIsSilent) {
    VEXNotifySource source;
    source.Notify(1, 1, nullptr);
    EXPECT_FALSE(source.RemoveListener(1));
}

TEST(Notify, RemovedListenerIsNotCalledAnyMore) {
    VEXNotifySource source;
    Diary diary;
    source.AddListener(diary.Of("a"));
    const int b = source.AddListener(diary.Of("b"));
    source.AddListener(diary.Of("c"));
    EXPECT_TRUE(source.RemoveListener(b));
    EXPECT_FALSE(source.RemoveListener(b)) << "it is gone";
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"a", "c"}));
}

TEST(Notify, NumbersAreNeverZeroAndNeverUsedAgain) {
    VEXNotifySource source;
    const int a = source.AddListener([](int, int, Data*) {});
    EXPECT_NE(a, 0);
    source.RemoveListener(a);
    const int b = source.AddListener([](int, int, Data*) {});
    EXPECT_NE(b, 0);
    EXPECT_NE(b, a) << "who removes twice must not remove somebody else";
}

TEST(Notify, ListenerAddedDuringACallIsCalledFromTheNextOneOn) {
    VEXNotifySource source;
    Diary diary;
    source.AddListener([&](int, int, Data*) {
        diary.calls.push_back("a");
        if (diary.calls.size() == 1) source.AddListener(diary.Of("new"));
    });
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"a"}));
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"a", "a", "new"}));
}

TEST(Notify, ListenerRemovedDuringACallIsNotReached) {
    VEXNotifySource source;
    Diary diary;
    int last = 0;
    source.AddListener([&](int, int, Data*) { source.RemoveListener(last); });
    source.AddListener(diary.Of("b"));
    last = source.AddListener(diary.Of("last"));
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"b"}));
}

TEST(Notify, ListenerMayRemoveItself) {
    VEXNotifySource source;
    Diary diary;
    int own = 0;
    const std::string text = "a text long enough to live on the heap, read after the removal";
    own = source.AddListener([&, text](int, int, Data*) {
        source.RemoveListener(own);
        diary.calls.push_back(text);
    });
    source.AddListener(diary.Of("b"));
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{text, "b"}));
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{text, "b", "b"}));
}

TEST(Notify, ListenerMayNotifyAgain) {
    VEXNotifySource source;
    std::vector<int> codes;
    source.AddListener([&](int code, int, Data*) {
        codes.push_back(code);
        if (code < 3) source.Notify(code + 1, 0, nullptr);
    });
    source.Notify(1, 0, nullptr);
    EXPECT_EQ(codes, (std::vector<int>{1, 2, 3}));
}

TEST(Notify, CopyHasNoListeners) {
    VEXNotifySource source;
    Diary diary;
    source.AddListener(diary.Of("a"));
    VEXNotifySource copy(source);
    copy.Notify(1, 1, nullptr);
    EXPECT_TRUE(diary.calls.empty());
}

TEST(Notify, AssignmentLeavesTheListenersOfBothSides) {
    VEXNotifySource source, target;
    Diary diary;
    source.AddListener(diary.Of("source"));
    target.AddListener(diary.Of("target"));
    target = source;
    target.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"target"}));
    source.Notify(1, 1, nullptr);
    EXPECT_EQ(diary.calls, (std::vector<std::string>{"target", "source"}));
}

TEST(Notify, PayloadIsDestroyedThroughItsBase) {
    struct Payload : Data {
        bool& gone;
        explicit Payload(bool& g) : gone(g) {}
        ~Payload() override { gone = true; }
    };
    bool gone = false;
    const Data* data = new Payload(gone);
    delete data;
    EXPECT_TRUE(gone);
}

// One new operation each: it tells how many entries the base's table has.
struct AfterObject : VEXNotifyObject {
    virtual void Next() {}
};
struct AfterSource : VEXNotifySource {
    virtual void Next() {}
};
struct AfterData : Data {
    virtual void Next() {}
};

TEST(Notify, DestructorsAreTheOnlyVirtualOperations) {
    EXPECT_TRUE(std::has_virtual_destructor_v<VEXNotifyObject>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Data>);
    EXPECT_EQ(VirtualSlot(&AfterObject::Next), 2);
    EXPECT_EQ(VirtualSlot(&AfterSource::Next), 2);
    EXPECT_EQ(VirtualSlot(&AfterData::Next), 2);
    EXPECT_EQ(VirtualSlot(&VEXNotifySource::Notify), -1);
}

}  // namespace
