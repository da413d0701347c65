// CountingItem: a cloud item that counts what a conversion reports to it.
#pragma once

#include "platform/coord/CConvPart.h"
#include "platform/entity/CCloudItem.h"

namespace gpstest {

class CountingItem : public CCloudItem {
public:
    CountingItem() : CCloudItem(nullptr, false) {}
    void ConvCoordChanged() override { ++changes; }

    int changes = 0;
};

/// The whole of a part, which counts what the part tells it.
class CountingWhole : public CConvPart::Whole {
public:
    void PartChanged() override { ++changes; }
    void PartAssigned() override { ++assignments; }

    int changes = 0;
    int assignments = 0;
};

}  // namespace gpstest
