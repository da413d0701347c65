// Runs a target once over every file of the folders named, without libFuzzer: as an ordinary test.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "fuzz/Fuzz.h"

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) continue;  // a target without inputs of its own
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        const std::string bytes = content.str();
        std::fputs((file.string() + "\n").c_str(), stderr);  // the last one named is the one that failed
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::puts((std::to_string(files.size()) + " inputs").c_str());
    return files.empty() ? 1 : 0;
}
