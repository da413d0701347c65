// COpzDisEgn: how one class of entities is drawn.
#pragma once

#include <string>

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"

/// An entry of a display list: visibility, colours, symbol type and line widths, all signed 16-bit numbers
/// whose meaning is the drawing program's. A new entry shows its symbol (1); everything else is 0.
///
/// Its settings stand in the section "<text of the constructor>-<name>" (GetSezioneIni), so that entries of
/// one list do not share them.
///
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API COpzDisEgn {
public:
    /// A null pointer counts as the empty text.
    explicit COpzDisEgn(const char* section);
    COpzDisEgn(const COpzDisEgn&) = default;
    COpzDisEgn& operator=(const COpzDisEgn&) = default;
    virtual ~COpzDisEgn();

    /// A copy of the same class, owned by the caller; null without memory.
    virtual COpzDisEgn* Clone() const;

    /// Whether the settings of a GIS may take the place of these. Default: false.
    virtual bool IsAllowUseGisSettings() const;

    /// Back to the values of a new entry; the name stays.
    virtual void doRisettaOpz();

    /// Reads the settings. A class of entries knows which of them it reads, and their defaults: this base
    /// reads none.
    virtual void doGetDaIni();

    /// Writes all ten values.
    virtual void doSetInIni();

    void RisettaOpz() { doRisettaOpz(); }
    void GetDaIni() { doGetDaIni(); }
    void SetInIni() { doSetInIni(); }

    /// Part of the section's name: set it before settings are read.
    const std::string& GetNomeOpz() const { return nome_; }
    void SetNomeOpz(const std::string& nome) { nome_ = nome; }

    /// Section of the settings; without a name the constructor's text alone.
    std::string GetSezioneIni() const;

    short GetVisSimb() const { return VisSimb; }
    short GetColSimb() const { return ColSimb; }
    short GetColNome() const { return ColNome; }
    short GetColDesc() const { return ColDesc; }
    short GetColQuot() const { return ColQuot; }
    short GetTipoSimb() const { return TipoSimb; }
    short GetLwSimb() const { return lwSimb_; }
    short GetLwNameSimb() const { return lwNameSimb_; }
    short GetLwDescSimb() const { return lwDescSimb_; }
    short GetLwQuotSimb() const { return lwQuotSimb_; }

    void SetVisSimb(short value) { VisSimb = value; }
    void SetColSimb(short value) { ColSimb = value; }
    void SetColNome(short value) { ColNome = value; }
    void SetColDesc(short value) { ColDesc = value; }
    void SetColQuot(short value) { ColQuot = value; }
    void SetTipoSimb(short value) { TipoSimb = value; }
    void SetLwSimb(short value) { lwSimb_ = value; }
    void SetLwNameSimb(short value) { lwNameSimb_ = value; }
    void SetLwDescSimb(short value) { lwDescSimb_ = value; }
    void SetLwQuotSimb(short value) { lwQuotSimb_ = value; }

    /// The ten values in their order, as a list stores them. Reading changes nothing when the stream has
    /// failed.
    void SalvaValori(ofpstream& out) const;
    void LeggeValori(ifpstream& in);

protected:
    // Classes of entries set these directly, the line widths by their setters.
    // NOLINTBEGIN(misc-non-private-member-variables-in-classes)
    short VisSimb = 1;   // visibility of the symbol
    short ColSimb = 0;   // colour of the symbol
    short ColNome = 0;   // of the name label
    short ColDesc = 0;   // of the description label
    short ColQuot = 0;   // of the height label
    short TipoSimb = 0;  // symbol type
    // NOLINTEND(misc-non-private-member-variables-in-classes)

private:
    struct Valore;
    static const Valore valori_[10];

    // Line widths of symbol, name, description and height label.
    short lwSimb_ = 0;
    short lwNameSimb_ = 0;
    short lwDescSimb_ = 0;
    short lwQuotSimb_ = 0;

    std::string sezione_;
    std::string nome_;
};
