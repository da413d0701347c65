#include "gps/options/COpzPostProc.h"

#include <utility>

#include "platform/base/CIniFile.h"
#include "platform/base/fileHelpers.h"
#include "platform/os/findFile.h"

namespace {

constexpr const char* kSection = "OPZ-POST-PROC";

using Files = std::vector<COpzPostProc::TDatiStaticPtBaseLine>;
using Lines = std::vector<std::string>;

COpzPostProc::TDatiStaticPtBaseLine* At(Files& files, unsigned int i) {
    return i < files.size() ? &files[i] : nullptr;
}

void DelAt(Files& files, unsigned int i) {
    if (i < files.size()) files.erase(files.begin() + static_cast<std::ptrdiff_t>(i));
}

void Add(Files& files, std::string file) {
    COpzPostProc::TDatiStaticPtBaseLine added;
    added.sFile = std::move(file);
    added.bFileExists = true;
    files.push_back(std::move(added));
}

int IdByFile(const Files& files, const std::string& file) {
    for (std::size_t i = 0; i < files.size(); ++i)
        if (files[i].sFile == file) return static_cast<int>(i);
    return -1;
}

void LookForEach(Files& files) {
    for (auto& file : files) file.bFileExists = FEsisteIlFile(file.sFile.c_str());
}

std::string LineAt(const Lines& lines, unsigned int j) { return j < lines.size() ? lines[j] : std::string(); }

// A search that ends with the block, come what may.
class Search {
public:
    explicit Search(const std::string& pattern) : handle_(FindFirstFileA(pattern.c_str(), &found_)) {}
    ~Search() {
        if (IsFound()) FindClose(handle_);
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    bool IsFound() const { return handle_ != INVALID_HANDLE_VALUE; }
    bool Next() { return FindNextFileA(handle_, &found_); }
    const char* Name() const { return found_.cFileName; }

private:
    WIN32_FIND_DATAA found_{};
    HANDLE handle_;
};

}  // namespace

COpzPostProc::COpzPostProc() { GetDaIni(); }

COpzPostProc::~COpzPostProc() = default;

// --- settings ----------------------------------------------------------------------------------------------

void COpzPostProc::GetDaIni() {
    const CIniFile ini;
    TpInsCoordBase = ini.GetLong(kSection, "TpInsCoordBase", 0);
    eOpzCreaNuoviPt = ini.GetLong(kSection, "eOpzCreaNuoviPt", 0);
    sNumeGruppoSpec = ini.GetString(kSection, "sNumeGruppoSpec", "");
    eOpzNomiNuoviPt = ini.GetLong(kSection, "eOpzNomiNuoviPt", 0);
    sSuffissoPtNuovi = ini.GetString(kSection, "sSuffissoPtNuovi", "");
    eOpzNomiVecchiPt = ini.GetLong(kSection, "eOpzNomiVecchiPt", 0);
    sSuffissoPtVecchi = ini.GetString(kSection, "sSuffissoPtVecchi", "_OLD");
}

void COpzPostProc::SetInIni() {
    CIniFile ini;
    ini.WriteLong(kSection, "TpInsCoordBase", TpInsCoordBase);
    ini.WriteLong(kSection, "eOpzCreaNuoviPt", eOpzCreaNuoviPt);
    ini.WriteString(kSection, "sNumeGruppoSpec", sNumeGruppoSpec);
    ini.WriteLong(kSection, "eOpzNomiNuoviPt", eOpzNomiNuoviPt);
    ini.WriteString(kSection, "sSuffissoPtNuovi", sSuffissoPtNuovi);
    ini.WriteLong(kSection, "eOpzNomiVecchiPt", eOpzNomiVecchiPt);
    ini.WriteString(kSection, "sSuffissoPtVecchi", sSuffissoPtVecchi);
}

// --- files -------------------------------------------------------------------------------------------------

void COpzPostProc::FindTpsDettFilesInFolder(const char* projectPath) {
    if (bDettScanned) {
        LookForEach(vecPtBaseLineDett);
        LookForEach(vecPtBaseLineBase);
        return;
    }
    DelAllDataPtBaseLineDett();
    const std::string folder = EliminaEstensioneFile(projectPath) + "\\";
    Search search(folder + "*.tps");
    if (!search.IsFound()) return;  // the next call looks again
    do {
        Add(vecPtBaseLineDett, folder + search.Name());
    } while (search.Next());
    bDettScanned = true;
}

COpzPostProc::TDatiStaticPtBaseLine* COpzPostProc::GetDataPtBaseLineDettAt(unsigned int i) {
    return At(vecPtBaseLineDett, i);
}

void COpzPostProc::DelDataPtBaseLineDettAt(unsigned int i) { DelAt(vecPtBaseLineDett, i); }

bool COpzPostProc::AddDataPtBaseLineDett(std::string file) {
    Add(vecPtBaseLineDett, std::move(file));
    bDettScanned = true;
    return true;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes its paths by value
int COpzPostProc::GetIdPtBaseLineDettByFile(std::string file) const {
    return IdByFile(vecPtBaseLineDett, file);
}

COpzPostProc::TDatiStaticPtBaseLine* COpzPostProc::GetDataPtBaseLineBaseAt(unsigned int i) {
    return At(vecPtBaseLineBase, i);
}

void COpzPostProc::DelDataPtBaseLineBaseAt(unsigned int i) { DelAt(vecPtBaseLineBase, i); }

bool COpzPostProc::AddDataPtBaseLineBase(std::string file) {
    Add(vecPtBaseLineBase, std::move(file));
    return true;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes its paths by value
int COpzPostProc::GetIdPtBaseLineBaseByFile(std::string file) const {
    return IdByFile(vecPtBaseLineBase, file);
}

// --- results -----------------------------------------------------------------------------------------------

const COpzPostProc::TDatiStaticPtBaseLine* COpzPostProc::Dett(unsigned int i) const {
    return i < vecPtBaseLineDett.size() ? &vecPtBaseLineDett[i] : nullptr;
}

void COpzPostProc::ClearStringResults(unsigned int i) {
    if (auto* file = GetDataPtBaseLineDettAt(i)) {
        file->vecStringResults1.clear();
        file->vecStringResults2.clear();
    }
}

void COpzPostProc::AddStringResults1(unsigned int i, std::string line) {
    if (auto* file = GetDataPtBaseLineDettAt(i)) file->vecStringResults1.push_back(std::move(line));
}

void COpzPostProc::AddStringResults2(unsigned int i, std::string line) {
    if (auto* file = GetDataPtBaseLineDettAt(i)) file->vecStringResults2.push_back(std::move(line));
}

int COpzPostProc::GetNumStringResults1(unsigned int i) const {
    const auto* file = Dett(i);
    return file ? static_cast<int>(file->vecStringResults1.size()) : 0;
}

int COpzPostProc::GetNumStringResults2(unsigned int i) const {
    const auto* file = Dett(i);
    return file ? static_cast<int>(file->vecStringResults2.size()) : 0;
}

std::string COpzPostProc::GetStringResults1At(unsigned int i, unsigned int j) const {
    const auto* file = Dett(i);
    return file ? LineAt(file->vecStringResults1, j) : std::string();
}

std::string COpzPostProc::GetStringResults2At(unsigned int i, unsigned int j) const {
    const auto* file = Dett(i);
    return file ? LineAt(file->vecStringResults2, j) : std::string();
}

std::string COpzPostProc::GetFullResult(unsigned int i) const {
    std::string all;
    if (const auto* file = Dett(i))
        for (const Lines* block : {&file->vecStringResults1, &file->vecStringResults2})
            for (const std::string& line : *block) all.append(line).append("\r\n");
    return all;
}
