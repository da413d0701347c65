#include "host/project/SectionWalk.h"

#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/savedPointers.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

namespace gpsproject {

namespace {

class Walk {
public:
    Walk(ifpstream& in, SectionListener* listener) : in_(in), listener_(listener) {}

    std::int64_t All() {
        Begin();
        if (in_.GetVersion() < kVerDisegni) {
            CLibMap().LeggeDaFile(in_, in_.GetVersion());
            End("map library");
        } else {
            vex::LoadPointerFromFile(in_);
            End("drawing");
        }
        COpzLibGps().LeggeDaFile(in_, true, in_.GetVersion());
        End("field-book options");
        COpzListDisGps(nullptr).LeggeDaFile(in_, true, in_.GetVersion());
        End("display options");
        Groups();
        if (in_.GetVersion() < kVerOpzPostProc) return items_;
        if (in_.ReadUChar() != 0) COpzPostProc().LeggeDaFile(in_);
        End("post-processing options");
        return items_;
    }

private:
    void Groups() {
        CGrpGps group(nullptr, false, nullptr, 0);
        CPunGps point(nullptr, false, nullptr);
        CDrawingsMapper drawings;
        const int groups = in_.ReadInt();
        End("number of groups");
        for (record_.group = 0; record_.group < groups; ++record_.group) {
            group.LeggeDaFile(in_, drawings, true);
            const int points = in_.ReadInt();
            record_.point = -1;
            Item();
            for (record_.point = 0; record_.point < points; ++record_.point) {
                point.LeggeDaFile(in_);
                Item();
            }
        }
        record_.group = record_.point = -1;
    }

    void Begin() { record_.begin = in_.GetPosition(); }
    void Item() {
        ++items_;
        End("");
    }
    void End(const char* name) {
        record_.name = name;
        record_.end = in_.GetPosition();
        if (listener_) listener_->Record(record_);
        Begin();
    }

    ifpstream& in_;
    SectionListener* listener_;
    SectionRecord record_;
    std::int64_t items_ = 0;
};

}  // namespace

std::string SectionRecord::Text() const {
    if (group < 0) return name;
    const std::string text = "group " + std::to_string(group);
    return point < 0 ? text : text + ", point " + std::to_string(point);
}

std::int64_t WalkSection(ifpstream& in, SectionListener* listener) { return Walk(in, listener).All(); }

}  // namespace gpsproject
