// CEgn: a drawing entity with name, texts, code and coordinates.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/CPointerRef.h"
#include "platform/base/GpsValues.h"
#include "platform/base/VEXNotifySource.h"
#include "platform/base/streams.h"

class CCloudItem;

/// Base of everything that is shown in a drawing. A new entity has empty texts, the photo names "******",
/// unset coordinates, code, validity and GIS handle 0 and descriptor -1.
///
/// Coordinates: easting X, northing Y, height Z in the project's current plane system, metres; the position
/// of the ground mark. Unset is GPS_VAL_UNSET.
///
/// The virtual setters of this class store and do nothing else; derived classes compare and report.
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API CEgn : public VEXNotifySource, public CPointerRef {
public:
    /// The code that keeps an entity out of recomputation: it gets no plane coordinates from its fix.
    static constexpr std::uint32_t CODE_NE = 0x4E45;

    /// Validity bits: set where the coordinates have values.
    static constexpr std::uint32_t VLDT_XY = 0x1;
    static constexpr std::uint32_t VLDT_Z = 0x2;

    CEgn();

    /// Copies every text and value, but no listener and no reference.
    CEgn(const CEgn& other);
    CEgn& operator=(const CEgn& other);
    ~CEgn() override;

    /// The entity's cloud item; null for an entity that does not take part in the cloud.
    virtual CCloudItem* GetCloudItem() const;
    virtual void SetNome(const std::string& nome);
    virtual void SetSecScri(const std::string& secScri);
    /// Easting, northing, height: metres.
    virtual void DoSetCoord(double x, double y, double z) {
        x_ = x;
        y_ = y;
        z_ = z;
    }
    /// Stores the lower 32 bits.
    virtual void SetCodeEgn(unsigned long code);
    /// Entity type number; 0 for an entity without a type of its own.
    virtual int GetUserType();

    const std::string& GetNome() const { return nome_; }
    const std::string& GetSecScri() const { return secScri_; }
    unsigned long GetCodeEgn() const { return code_; }

    double GetCoordX() const { return x_; }  // metres, easting
    double GetCoordY() const { return y_; }  // metres, northing
    double GetCoordZ() const { return z_; }  // metres, height

    /// Sets the coordinates (metres) through the entity's own DoSetCoord.
    void SetCoord(double x, double y, double z) { DoSetCoord(x, y, z); }

    /// Stores in the validity word which of XY and Z have values; other bits stay.
    void CalcolaValiditaXYZ() {
        validita_ = (validita_ & ~(VLDT_XY | VLDT_Z)) | (EstValidoXY() ? VLDT_XY : 0) |
                    (IsCoordValid(z_) ? VLDT_Z : 0);
    }

    /// True when X and Y have values. Looks at the values, not at the validity word, so that an entity that
    /// nobody validated is judged right.
    bool EstValidoXY() const { return IsCoordValid(x_) && IsCoordValid(y_); }

    std::uint32_t GetVldtEgn() const { return validita_; }
    void SetVldtEgn(std::uint32_t validita) { validita_ = validita; }

    /// Whether the entity is kept out of recomputation (CODE_NE).
    bool IsCodedNE() const { return code_ == CODE_NE; }

    // Texts and links that most entities never have.
    const std::string& GetTerScri() const;
    void SetTerScri(const std::string& terScri);
    const std::string& GetNote() const;
    void SetNote(const std::string& note);
    const std::string& GetNomiFoto_Raw() const;
    void SetNomiFoto_Raw(const std::string& nomi);
    const std::string& GetAttribDis() const;
    void SetAttribDis(const std::string& attrib);
    int GetIdentDescr() const;
    void SetIdentDescr(int ident);
    int GetGisHandle() const;
    void SetGisHandle(int handle);

    /// Back to the values of a new entity, stored directly: nothing is reported.
    void AnnullaTutteLeVar();

    /// The entity's record in a project stream, the same in every version; see docs/formats/records.md.
    void SalvaInFile(ofpstream& out) const;

    /// Reads such a record straight into the fields: no virtual setter is called, nothing is reported.
    void LeggeDaFile(ifpstream& in);

private:
    struct Altri;

    const Altri& Altro() const;
    Altri& AltroDaScrivere();

    // What a recomputation touches stands together at the front: one cache line with the virtual table.
    std::uint32_t code_ = 0;
    std::uint32_t validita_ = 0;
    double x_ = GPS_VAL_UNSET;  // metres
    double y_ = GPS_VAL_UNSET;  // metres
    double z_ = GPS_VAL_UNSET;  // metres
    std::string nome_;
    std::string secScri_;
    std::unique_ptr<Altri> altri_;  // the rarely used rest, made on first use: a million points stay compact
};
