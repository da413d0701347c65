#include "platform/entity/CCloudManager.h"

CCloudManager* CCloudManager::GetInstance() {
    static CCloudManager manager;
    return &manager;
}

int CCloudManager::GetDevId() {
    ++calls_;
    return devId_;
}
