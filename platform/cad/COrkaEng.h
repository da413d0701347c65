// COrkaEng: the CAD engine's counted references to drawings.
#pragma once

#include <functional>

#include "platform/base/PlatformExport.h"

/// The engine keeps a drawing in memory while someone uses it. Drawings are known by signed 64-bit ids;
/// id 0 means "no drawing" and both operations accept it without effect.
///
/// A count that passes through zero within one operation of a caller (release, then take again) must not
/// destroy the drawing: the engine frees unused drawings when it is idle, never inside these calls.
class GPS_PLATFORM_API COrkaEng {
public:
    static void AddDrawingRefUsage(long long drawing);

    /// Releasing a drawing that nobody uses has no effect.
    static void SubDrawingRefUsage(long long drawing);

    // The open host has no drawings: it only counts, and can be watched.

    /// Present number of usages of a drawing; 0 for id 0.
    static int GetDrawingRefUsage(long long drawing);

    /// Told of every call, those with id 0 too: +1 for Add, -1 for Sub. An empty function ends the watch.
    using Watcher = std::function<void(int step, long long drawing)>;
    static void SetWatcher(Watcher watcher);
};
