// CTrovaNomeBaseGps: the catalogue of permanent GNSS stations.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/base/PlatformExport.h"

/// Finds the permanent station that stands at a position. One for the whole process, used from one thread.
///
/// Positions are geocentric, metres, as bases of groups have them: the antenna's phase centre in the measured
/// datum. A station is found when it lies within the search radius of the position; of several the nearest
/// is taken, of equally near ones the first of the catalogue. Where stations, radius and the frames of their
/// coordinates come from is the host's business. A catalogue that cannot be read has no stations.
class GPS_PLATFORM_API CTrovaNomeBaseGps {
public:
    /// Where a station stands: anywhere, in one of the provinces of Italy, named by their signs, or abroad.
    /// Numbers may change between versions: they are not for storing.
    enum enumProvincia {
        provTutte,
        provAG,
        provAL,
        provAN,
        provAO,
        provAP,
        provAQ,
        provAR,
        provAT,
        provAV,
        provBA,
        provBG,
        provBI,
        provBL,
        provBN,
        provBO,
        provBR,
        provBS,
        provBT,
        provBZ,
        provCA,
        provCB,
        provCE,
        provCH,
        provCL,
        provCN,
        provCO,
        provCR,
        provCS,
        provCT,
        provCZ,
        provEN,
        provFC,
        provFE,
        provFG,
        provFI,
        provFM,
        provFR,
        provGE,
        provGO,
        provGR,
        provIM,
        provIS,
        provKR,
        provLC,
        provLE,
        provLI,
        provLO,
        provLT,
        provLU,
        provMB,
        provMC,
        provME,
        provMI,
        provMN,
        provMO,
        provMS,
        provMT,
        provNA,
        provNO,
        provNU,
        provOR,
        provPA,
        provPC,
        provPD,
        provPE,
        provPG,
        provPI,
        provPN,
        provPO,
        provPR,
        provPT,
        provPU,
        provPV,
        provPZ,
        provRA,
        provRC,
        provRE,
        provRG,
        provRI,
        provRM,
        provRN,
        provRO,
        provSA,
        provSI,
        provSO,
        provSP,
        provSR,
        provSS,
        provSU,
        provSV,
        provTA,
        provTE,
        provTN,
        provTO,
        provTP,
        provTR,
        provTS,
        provTV,
        provUD,
        provVA,
        provVB,
        provVC,
        provVE,
        provVI,
        provVR,
        provVT,
        provVV,
        provEstero
    };

    static CTrovaNomeBaseGps* GetInstance();

    /// The name of the station at x, y, z (metres) within the province. True when there is one; else `name`
    /// stays as it was.
    bool GetNomeBaseGps(double x, double y, double z, enumProvincia provincia, std::string& name);

    /// The same; x, y, z (metres) become the station's own position in the frame of the catalogue. Without a
    /// station they stay as they were.
    bool GetNomeCoordBaseGps(double& x, double& y, double& z, enumProvincia provincia, std::string& name);

    /// A search: true when it has found a station and put its position (metres) and name into the arguments.
    using Ricerca =
        std::function<bool(double& x, double& y, double& z, enumProvincia provincia, std::string& name)>;

    /// Both look-ups go through `ricerca` from now on; through the host's own catalogue when it is empty.
    /// Exceptions of a search pass through to the caller.
    void SetRicerca(Ricerca ricerca) { ricerca_ = std::move(ricerca); }

private:
    CTrovaNomeBaseGps() = default;

    Ricerca ricerca_;
};
