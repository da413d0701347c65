// StreamVersions: the stream versions at which records got more fields.
#pragma once

inline constexpr short kVerEntita =
    742;  // entity record, place and base of groups; date and precision of points
inline constexpr short kVerRmsDouble = 743;           // RMS of points in double precision, DOP
inline constexpr short kVerTipiGruppo = 750;          // factors, survey and receiver type of groups
inline constexpr short kVerGrafBase = 881;            // base position of points
inline constexpr short kVerSecondaPunDup = 903;       // mark of the secondary duplicate
inline constexpr short kVerOpzPostProc = 1002;        // post-processing options
inline constexpr short kVerSenzaGeocentriche = 1003;  // points without geocentric coordinates
inline constexpr short kVerDisegni = 1004;            // drawing references; the map library is elsewhere
inline constexpr short kVerRiserve = 1106;            // reserved values
inline constexpr short kVerDispositivo = 1311;        // creator device of groups
inline constexpr short kVerCorrente = 1400;           // of journal entries and exchange files
