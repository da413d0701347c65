#include "platform/base/fileHelpers.h"

#include <sys/stat.h>

#include <algorithm>

bool FEsisteIlFile(const char* path) {
    struct stat facts {};
    return path && *path && stat(PercorsoDiSistema(path).c_str(), &facts) == 0 && S_ISREG(facts.st_mode);
}

std::string EliminaEstensioneFile(const char* path) {
    std::string name = path ? path : "";
    const std::size_t last = name.find_last_of("./\\");
    if (last != std::string::npos && name[last] == '.') name.resize(last);
    return name;
}

std::string PercorsoDiSistema(const char* path) {
    std::string name = path ? path : "";
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}
