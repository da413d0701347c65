#include "platform/os/findFile.h"

#include <dirent.h>

#include <cstring>
#include <memory>
#include <string>

#include "host/os/PatternMatch.h"
#include "platform/base/fileHelpers.h"

namespace {

struct Search {
    DIR* folder;
    std::string pattern;

    Search(DIR* opened, std::string wanted) : folder(opened), pattern(std::move(wanted)) {}
    ~Search() { closedir(folder); }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    bool Next(WIN32_FIND_DATAA* found) const {
        while (const dirent* entry = readdir(folder)) {
            const std::size_t length = std::strlen(entry->d_name);
            if (length >= sizeof found->cFileName || !PatternMatch(pattern, {entry->d_name, length}))
                continue;
            std::memcpy(found->cFileName, entry->d_name, length + 1);
            return true;
        }
        return false;
    }
};

bool IsSearch(HANDLE search) { return search && search != INVALID_HANDLE_VALUE; }

}  // namespace

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* found) {
    if (!pattern || !found) return INVALID_HANDLE_VALUE;
    const std::string path = PercorsoDiSistema(pattern);
    const std::size_t name = path.rfind('/') + 1;  // 0 without a folder
    std::string wanted = path.substr(name);
    DIR* const folder = opendir(name == 0 ? "." : path.substr(0, name).c_str());
    if (!folder) return INVALID_HANDLE_VALUE;
    std::unique_ptr<Search> search;
    try {
        search = std::make_unique<Search>(folder, std::move(wanted));
    } catch (...) {
        closedir(folder);
        throw;
    }
    return search->Next(found) ? search.release() : INVALID_HANDLE_VALUE;
}

bool FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found) {
    return IsSearch(search) && found && static_cast<const Search*>(search)->Next(found);
}

bool FindClose(HANDLE search) {
    if (!IsSearch(search)) return false;
    delete static_cast<Search*>(search);
    return true;
}
