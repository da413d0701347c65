// COrkaEng: the engine of another host. It takes several usages at once, which that of the open host cannot:
// code compiled with the wrong one of the two headers does not link.
#pragma once

class __attribute__((visibility("default"))) COrkaEng {
public:
    static void AddDrawingRefUsage(long long drawing, int times = 1);
    static void SubDrawingRefUsage(long long drawing, int times = 1);

    /// Calls of both operations so far.
    static int GetCalls();
};
