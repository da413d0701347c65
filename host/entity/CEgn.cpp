#include "platform/entity/CEgn.h"

#include <utility>

#include "platform/base/BlockWriter.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

// The texts stand apart: a descriptor alone, as every merged entity has one, costs no room for them.
struct CEgn::Altri {
    struct Testi {
        std::string terScri;
        std::string note;
        std::string nomiFoto = "******";
        std::string attribDis;
        bool operator==(const Testi&) const = default;
    };

    Altri() = default;
    Altri(const Altri& other)
        : identDescr(other.identDescr),
          gisHandle(other.gisHandle),
          testi(other.testi ? std::make_unique<Testi>(*other.testi) : nullptr) {}

    static const Testi& NuoviTesti() {
        static const Testi nuovi;
        return nuovi;
    }
    const Testi& Testo() const { return testi ? *testi : NuoviTesti(); }
    Testi& TestoDaScrivere() {
        if (!testi) testi = std::make_unique<Testi>();
        return *testi;
    }

    int identDescr = -1;
    int gisHandle = 0;
    std::unique_ptr<Testi> testi;  // null: as in a new entity
};

CEgn::CEgn() = default;

CEgn::CEgn(const CEgn& other)
    : VEXNotifySource(other),
      CPointerRef(other),
      code_(other.code_),
      validita_(other.validita_),
      x_(other.x_),
      y_(other.y_),
      z_(other.z_),
      nome_(other.nome_),
      secScri_(other.secScri_),
      altri_(other.altri_ ? std::make_unique<Altri>(*other.altri_) : nullptr) {}

CEgn& CEgn::operator=(const CEgn& other) {
    if (this == &other) return *this;
    VEXNotifySource::operator=(other);
    CPointerRef::operator=(other);
    code_ = other.code_;
    validita_ = other.validita_;
    nome_ = other.nome_;
    secScri_ = other.secScri_;
    x_ = other.x_;
    y_ = other.y_;
    z_ = other.z_;
    altri_ = other.altri_ ? std::make_unique<Altri>(*other.altri_) : nullptr;
    return *this;
}

CEgn::~CEgn() = default;

CCloudItem* CEgn::GetCloudItem() const { return nullptr; }

void CEgn::SetNome(const std::string& nome) { nome_ = nome; }

void CEgn::SetSecScri(const std::string& secScri) { secScri_ = secScri; }

void CEgn::SetCodeEgn(unsigned long code) { code_ = static_cast<std::uint32_t>(code); }

int CEgn::GetUserType() { return 0; }

const CEgn::Altri& CEgn::Altro() const {
    static const Altri nuovo;
    return altri_ ? *altri_ : nuovo;
}

CEgn::Altri& CEgn::AltroDaScrivere() {
    if (!altri_) altri_ = std::make_unique<Altri>();
    return *altri_;
}

const std::string& CEgn::GetTerScri() const { return Altro().Testo().terScri; }
void CEgn::SetTerScri(const std::string& terScri) { AltroDaScrivere().TestoDaScrivere().terScri = terScri; }
const std::string& CEgn::GetNote() const { return Altro().Testo().note; }
void CEgn::SetNote(const std::string& note) { AltroDaScrivere().TestoDaScrivere().note = note; }
const std::string& CEgn::GetNomiFoto_Raw() const { return Altro().Testo().nomiFoto; }
void CEgn::SetNomiFoto_Raw(const std::string& nomi) { AltroDaScrivere().TestoDaScrivere().nomiFoto = nomi; }
const std::string& CEgn::GetAttribDis() const { return Altro().Testo().attribDis; }
void CEgn::SetAttribDis(const std::string& attrib) { AltroDaScrivere().TestoDaScrivere().attribDis = attrib; }
int CEgn::GetIdentDescr() const { return Altro().identDescr; }
void CEgn::SetIdentDescr(int ident) { AltroDaScrivere().identDescr = ident; }
int CEgn::GetGisHandle() const { return Altro().gisHandle; }
void CEgn::SetGisHandle(int handle) { AltroDaScrivere().gisHandle = handle; }

void CEgn::AnnullaTutteLeVar() {
    code_ = 0;
    validita_ = 0;
    nome_.clear();
    secScri_.clear();
    x_ = y_ = z_ = GPS_VAL_UNSET;
    altri_.reset();
}

void CEgn::SalvaInFile(ofpstream& out) const {
    out.WriteString(nome_);
    out.WriteString(secScri_);
    {
        BlockWriter fields(out, 33);
        fields.WriteUInt(code_);
        fields.WriteUInt(validita_);
        fields.WriteDouble(x_);
        fields.WriteDouble(y_);
        fields.WriteDouble(z_);
        fields.WriteUChar(altri_ ? 1 : 0);
    }
    if (!altri_) return;
    const Altri::Testi& testi = altri_->Testo();
    out.WriteString(testi.terScri);
    out.WriteString(testi.note);
    out.WriteString(testi.nomiFoto);
    out.WriteString(testi.attribDis);
    out.WriteInt(altri_->identDescr);
    out.WriteInt(altri_->gisHandle);
}

void CEgn::LeggeDaFile(ifpstream& in) {
    in.ReadString(nome_);
    in.ReadString(secScri_);
    code_ = in.ReadUInt();
    validita_ = in.ReadUInt();
    x_ = in.ReadDouble();
    y_ = in.ReadDouble();
    z_ = in.ReadDouble();
    if (in.ReadUChar() == 0) {
        altri_.reset();
        return;
    }
    Altri& altri = AltroDaScrivere();
    Altri::Testi testi;
    in.ReadString(testi.terScri);
    in.ReadString(testi.note);
    in.ReadString(testi.nomiFoto);
    in.ReadString(testi.attribDis);
    if (testi == Altri::NuoviTesti())
        altri.testi.reset();
    else
        altri.TestoDaScrivere() = std::move(testi);
    altri.identDescr = in.ReadInt();
    altri.gisHandle = in.ReadInt();
}
