// VEXNotifySource: an object to whose notifications others listen.
#pragma once

#include <functional>
#include <memory>

#include "platform/base/VEXNotifyObject.h"

/// Tells listeners about events. Adds no virtual operation to VEXNotifyObject.
///
/// Listeners are called in the order in which they were added, on the thread that notifies. A listener may
/// add and remove listeners, itself too, while it is called: one removed is not called any more, one added is
/// called from the next notification on. A source must not be destroyed by a listener of its own.
///
/// A copy has no listeners, and an assignment changes those of neither side: who listens to a source does
/// not listen to its copies.
class GPS_PLATFORM_API VEXNotifySource : public VEXNotifyObject {
public:
    /// Called with code, value and payload. The payload may be null and belongs to the one who notifies.
    using Listener = std::function<void(int code, int value, CNotifyData* data)>;

    VEXNotifySource();
    VEXNotifySource(const VEXNotifySource& other);
    VEXNotifySource& operator=(const VEXNotifySource& other);
    ~VEXNotifySource() override;

    /// Adds a listener; returns the number under which it is removed, never 0.
    int AddListener(Listener listener);

    /// Removes a listener. Returns false when there is none of that number.
    bool RemoveListener(int number);

    /// Calls every listener. `data` may be null; it is not kept.
    void Notify(int code, int value, CNotifyData* data);

private:
    struct Listeners;
    std::unique_ptr<Listeners> listeners_;  // made on first use: most sources never have a listener
};
