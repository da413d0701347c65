#include "platform/cad/COrkaEng.h"

namespace {

int calls = 0;

}  // namespace

void COrkaEng::AddDrawingRefUsage(long long, int times) { calls += times; }
void COrkaEng::SubDrawingRefUsage(long long, int times) { calls += times; }
int COrkaEng::GetCalls() { return calls; }
