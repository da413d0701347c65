#include "platform/cad/COrkaEng.h"

#include <unordered_map>
#include <utility>

namespace {

struct Engine {
    std::unordered_map<long long, int> usage;
    COrkaEng::Watcher watcher;
};

Engine& TheEngine() {
    static Engine engine;
    return engine;
}

}  // namespace

void COrkaEng::AddDrawingRefUsage(long long drawing) {
    Engine& engine = TheEngine();
    if (engine.watcher) engine.watcher(+1, drawing);
    if (drawing != 0) ++engine.usage[drawing];
}

void COrkaEng::SubDrawingRefUsage(long long drawing) {
    Engine& engine = TheEngine();
    if (engine.watcher) engine.watcher(-1, drawing);
    const auto found = engine.usage.find(drawing);
    if (found == engine.usage.end()) return;
    if (--found->second == 0) engine.usage.erase(found);
}

int COrkaEng::GetDrawingRefUsage(long long drawing) {
    const Engine& engine = TheEngine();
    const auto found = engine.usage.find(drawing);
    return found == engine.usage.end() ? 0 : found->second;
}

void COrkaEng::SetWatcher(Watcher watcher) { TheEngine().watcher = std::move(watcher); }
