// MovedUsage: the one usage of a drawing that an object counts while its drawing is read.
#pragma once

#include <new>
#include <utility>

#include "platform/cad/COrkaEng.h"

/// Gives the usage of the present drawing up at once; Take, at the end, takes one of what the drawing is
/// then, also when it stays the same. When the reading ends early it is taken all the same: the engine's
/// count stays right.
class MovedUsage {
public:
    explicit MovedUsage(long long& drawing) : drawing_(drawing) { COrkaEng::SubDrawingRefUsage(drawing_); }
    ~MovedUsage() {
        if (taken_) return;
        try {
            Take();
        } catch (const std::bad_alloc&) {  // the reading has ended with an exception of its own
        }
    }
    MovedUsage(const MovedUsage&) = delete;
    MovedUsage& operator=(const MovedUsage&) = delete;

    /// When the engine has no memory for it, the object has no drawing: it holds no usage that was never
    /// taken.
    void Take() {
        taken_ = true;
        const long long drawing = std::exchange(drawing_, 0);
        COrkaEng::AddDrawingRefUsage(drawing);
        drawing_ = drawing;
    }

private:
    long long& drawing_;
    bool taken_ = false;
};
