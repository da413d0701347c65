// CSymbolUsedTracer: told which symbols a saved project uses.
#pragma once

#include "platform/base/PlatformExport.h"

/// The host makes one for a save and asks it afterwards which symbol types it has to save as well.
class GPS_PLATFORM_API CSymbolUsedTracer {
public:
    CSymbolUsedTracer() = default;
    CSymbolUsedTracer(const CSymbolUsedTracer&) = default;
    CSymbolUsedTracer& operator=(const CSymbolUsedTracer&) = default;
    virtual ~CSymbolUsedTracer();

    /// A symbol of this type (TipoSimb of a display entry) is used. Default: nothing.
    virtual void SymbolUsed(short tipoSimb);
};
