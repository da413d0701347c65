// CConvPart: base of the parts of a coordinate conversion, which report their changes to the whole.
#pragma once

#include "platform/base/PlatformExport.h"

/// A part knows whom to tell when one of its values really changes: the conversion or the map library that
/// holds it. The binding belongs to the object, not to its value: a copy has none, and an assignment keeps
/// that of the target and reports nothing.
class GPS_PLATFORM_API CConvPart {
public:
    class GPS_PLATFORM_API Whole {
    public:
        /// A value of a part has changed.
        virtual void PartChanged() = 0;

        /// A part was assigned to: what was prepared from it is out of date, but nothing is to be reported.
        virtual void PartAssigned() = 0;

    protected:
        ~Whole() = default;  // never destroyed through this class
    };

    CConvPart() = default;
    CConvPart(const CConvPart&) noexcept {}
    CConvPart& operator=(const CConvPart&) noexcept {
        if (whole_) whole_->PartAssigned();
        return *this;
    }

    /// `whole` must outlive the part; null unbinds.
    void BindTo(Whole* whole) { whole_ = whole; }

protected:
    ~CConvPart() = default;  // never destroyed through this class

    /// Stores a value; true when it differs. NaN always does, -0.0 over 0.0 does not and is not stored.
    template <class T>
    static bool Store(T& field, const T& value) {
        if (!(field != value)) return false;
        field = value;
        return true;
    }

    void Changed() {
        if (whole_) whole_->PartChanged();
    }

    /// As after an assignment: for values that were read from a file.
    void Assigned() {
        if (whole_) whole_->PartAssigned();
    }

private:
    Whole* whole_ = nullptr;
};
