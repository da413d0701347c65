// COpzPostProc: options of the post-processing of baselines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gps/GpsExport.h"
#include "platform/base/GpsValues.h"
#include "platform/base/streams.h"

/// Parameters of the host's engine, the user's choices about the new coordinates, and the observation files
/// of the rovers ("Dett") and of the bases ("Base"). The library keeps, copies and stores all this; what the
/// values mean, the units of the real ones included, is the engine's business.
///
/// Indices are 0-based. One that does not exist is answered with null, 0 or the empty text, and nothing
/// happens.
class GPS_API COpzPostProc {
public:
    enum EPar1 : std::int32_t { EPAR1_0 = 0 };

    /// Parameters of the engine: in the project's record, not in the settings.
    struct TParPostProc {
        struct TValPair {
            double dVal;  // the engine's unit
            std::int32_t nVal;
        };

        std::uint16_t wPar1 = 15;
        std::uint16_t wPar2 = 10;
        std::uint16_t wPar3 = 6;
        std::uint16_t wPar4 = 3;
        double dPar1 = 0.001;  // the engine's unit
        double dPar2 = 0.95;   // the engine's unit
        EPar1 ePar1 = EPAR1_0;
        bool bPar1 = true;
        TValPair aValPair[2] = {{0.0, 20}, {50.0, 1013}};
        bool bPar2 = false;
        std::uint16_t wPar5 = 50;
        double dPar3 = 2.0;      // the engine's unit
        double dPar4 = 0.5;      // the engine's unit
        std::int32_t nPar1 = 0;  // stored in 16 bits
        bool bPar3 = true;
        std::uint16_t wPar6 = 1;
        bool bPar4 = true;
        bool bPar5 = true;
        std::int32_t nPar2 = 0;  // stored in 16 bits
        bool bPar6 = false;
        bool bPar7 = true;
        bool bPar8 = true;
        bool bPar9 = true;
    };

    /// One observation file.
    struct TDatiStaticPtBaseLine {
        bool bFlag1 = true;
        bool bFileExists = false;  // at the last look
        bool bFlag2 = false;
        bool bFlag3 = true;
        bool bFlag4 = false;
        std::int32_t nIdx1 = -1;
        std::string sText1;
        std::string sFile;  // whole path; the files of a list are told apart by it
        std::int32_t nIdx2 = -1;
        std::int32_t nIdx3 = 1;
        std::string sText2;
        bool bAltValue = false;         // dValue holds the other one of two quantities
        double dValue = GPS_VAL_UNSET;  // the engine's unit
        double dA1 = GPS_VAL_UNSET;     // the engine's unit
        double dA2 = GPS_VAL_UNSET;     // the engine's unit
        double dA3 = GPS_VAL_UNSET;     // the engine's unit
        double dB1 = GPS_VAL_UNSET;     // the engine's unit
        double dB2 = GPS_VAL_UNSET;     // the engine's unit
        double dB3 = GPS_VAL_UNSET;     // the engine's unit

        // Lines of the results, in two blocks. Not stored.
        std::vector<std::string> vecStringResults1;
        std::vector<std::string> vecStringResults2;

        // Where the engine works. Copied, not stored, not looked at here.
        std::string sWork1;
        std::string sWork2;
        std::string sWork3;
        std::string sWork4;
        double dWorkA[3] = {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};  // the engine's unit
        double dWorkB[3] = {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};  // the engine's unit
        double dWorkC[3] = {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};  // the engine's unit
        std::int32_t nWork1 = 0;
        std::int32_t nWork2 = 0;
        std::int32_t nWork3 = 0;
        bool bWork = false;
        std::int64_t nWork64 = -1;
    };

    /// Defaults, then the choices from the settings.
    COpzPostProc();

    /// Every member, files and results too. Settings are not read again.
    COpzPostProc(const COpzPostProc&) = default;
    COpzPostProc& operator=(const COpzPostProc&) = default;
    virtual ~COpzPostProc();

    /// The choices, in the section "OPZ-POST-PROC"; their keys are the names of the members.
    void GetDaIni();
    void SetInIni();

    // --- record of the project -----------------------------------------------------------------------------

    /// Everything but the choices, the further parameters and the results.
    void SalvaInFile(ofpstream& out) const;

    /// The record's files come behind those that the lists hold already: meant for a new object. A record
    /// that ends too early gives what it has of a text that is cut, then zeros and empty texts.
    void LeggeDaFile(ifpstream& in);

    // --- files ---------------------------------------------------------------------------------------------

    /// The rover files of a project: all "*.tps" in the folder that is named like the project's file without
    /// its extension. Once files have been found or added (bDettScanned) no folder is read any more; then it
    /// brings bFileExists of all files of both lists up to date.
    void FindTpsDettFilesInFolder(const char* projectPath);

    int GetNumPtBaseLineDett() const { return static_cast<int>(vecPtBaseLineDett.size()); }
    TDatiStaticPtBaseLine* GetDataPtBaseLineDettAt(unsigned int i);
    void DelDataPtBaseLineDettAt(unsigned int i);
    void DelAllDataPtBaseLineDett() { vecPtBaseLineDett.clear(); }

    /// Appends a file, which counts as there, also when the list has it already. Always true.
    bool AddDataPtBaseLineDett(std::string file);

    /// First position of a file, compared letter by letter; -1 without it.
    int GetIdPtBaseLineDettByFile(std::string file) const;

    int GetNumPtBaseLineBase() const { return static_cast<int>(vecPtBaseLineBase.size()); }
    TDatiStaticPtBaseLine* GetDataPtBaseLineBaseAt(unsigned int i);
    void DelDataPtBaseLineBaseAt(unsigned int i);
    void DelAllDataPtBaseLineBase() { vecPtBaseLineBase.clear(); }

    /// As for rovers, but bDettScanned stays. Intended: the rovers' folder may still be unread.
    bool AddDataPtBaseLineBase(std::string file);
    int GetIdPtBaseLineBaseByFile(std::string file) const;

    // --- results of rover file i ---------------------------------------------------------------------------

    void ClearStringResults(unsigned int i);
    void AddStringResults1(unsigned int i, std::string line);
    void AddStringResults2(unsigned int i, std::string line);
    int GetNumStringResults1(unsigned int i) const;
    int GetNumStringResults2(unsigned int i) const;

    /// Line j.
    std::string GetStringResults1At(unsigned int i, unsigned int j) const;
    std::string GetStringResults2At(unsigned int i, unsigned int j) const;

    /// All lines of the first block, then of the second, each followed by CR and LF.
    std::string GetFullResult(unsigned int i) const;

    // --- values --------------------------------------------------------------------------------------------

    TParPostProc ParPostProc;

    // The user's choices: in the settings, not in the project's record.
    std::int32_t TpInsCoordBase = 0;         // how coordinates of bases are put in
    std::int32_t eOpzCreaNuoviPt = 0;        // making of new points
    std::string sNumeGruppoSpec;             // which groups
    std::int32_t eOpzNomiNuoviPt = 0;        // names of new points
    std::string sSuffissoPtNuovi;            // what is appended to them
    std::int32_t eOpzNomiVecchiPt = 0;       // names of replaced points
    std::string sSuffissoPtVecchi = "_OLD";  // what is appended to them

    // Further parameters: neither in the settings nor in the record.
    double dExtra1 = 10.0;   // the engine's unit
    double dExtra2 = 2.0;    // the engine's unit
    double dExtra3 = 0.005;  // the engine's unit
    double dExtra4 = 0.005;  // the engine's unit
    std::int32_t nExtra5 = 8;

    bool bDettScanned = false;  // the rover files are known
    std::vector<TDatiStaticPtBaseLine> vecPtBaseLineDett;
    std::vector<TDatiStaticPtBaseLine> vecPtBaseLineBase;

private:
    const TDatiStaticPtBaseLine* Dett(unsigned int i) const;
};
