// CLibConOri: a library that belongs to a cloud project and to a project's orientation data.
#pragma once

#include "platform/base/CLibGen.h"

class CCloudProject;
class COriData;

/// Adds to CLibGen two pointers that it neither owns nor looks into. No virtual operation of its own.
class GPS_PLATFORM_API CLibConOri : public CLibGen {
public:
    /// `cloud` is null when the project is not in the cloud; `orientation` may be null.
    CLibConOri(CCloudProject* cloud, COriData* orientation) : cloud_(cloud), orientation_(orientation) {}
    CLibConOri(const CLibConOri&) = default;
    CLibConOri& operator=(const CLibConOri&) = default;
    ~CLibConOri() override;

    CCloudProject* GetCloudProject() const { return cloud_; }
    COriData* GetOriData() const { return orientation_; }

private:
    CCloudProject* cloud_;
    COriData* orientation_;
};
