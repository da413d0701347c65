#include <algorithm>
#include <utility>
#include <vector>

#include "platform/base/VEXNotifySource.h"

VEXNotifyObject::~VEXNotifyObject() = default;
VEXNotifyObject::CNotifyData::~CNotifyData() = default;

struct VEXNotifySource::Listeners {
    struct Entry {
        int number;
        Listener call;
    };
    std::vector<Entry> entries;
    int lastNumber = 0;

    bool Has(int number) const {
        return std::any_of(entries.begin(), entries.end(),
                           [=](const Entry& e) { return e.number == number; });
    }
};

VEXNotifySource::VEXNotifySource() = default;
VEXNotifySource::VEXNotifySource(const VEXNotifySource& other) : VEXNotifyObject(other) {}
VEXNotifySource& VEXNotifySource::operator=(const VEXNotifySource&) { return *this; }
VEXNotifySource::~VEXNotifySource() = default;

int VEXNotifySource::AddListener(Listener listener) {
    if (!listeners_) listeners_ = std::make_unique<Listeners>();
    listeners_->entries.push_back({listeners_->lastNumber + 1, std::move(listener)});
    return ++listeners_->lastNumber;
}

bool VEXNotifySource::RemoveListener(int number) {
    if (!listeners_) return false;
    return std::erase_if(listeners_->entries, [=](const Listeners::Entry& e) { return e.number == number; }) >
           0;
}

void VEXNotifySource::Notify(int code, int value, CNotifyData* data) {
    if (!listeners_) return;
    // A copy, because a listener may add and remove listeners while it is called.
    const auto called = listeners_->entries;
    for (const auto& entry : called)
        if (listeners_->Has(entry.number)) entry.call(code, value, data);
}
