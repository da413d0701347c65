#include "platform/cad/CLoadGisBinderNew.h"

CLoadGisBinderNew* CLoadGisBinderNew::GetInstance() {
    static CLoadGisBinderNew instance;
    return &instance;
}

CEgn* CLoadGisBinderNew::Find(int handle) const {
    const auto found = bound_.find(handle);
    return found == bound_.end() ? nullptr : found->second;
}
