#include "apps/gpsbook/commands/Output.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

void PrintText(std::string_view text, const std::string& otherwise) {
    std::cout << text;
    if (!std::cout.flush())
        throw WriteError("standard output", otherwise + "; see whether its reader has gone");
}

void PrintJson(const nlohmann::ordered_json& value, const std::string& otherwise) {
    PrintText(value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n', otherwise);
}

std::string SavedButUntold(const std::string& file) {
    return "the result could not be written, " + file + " is saved";
}

}  // namespace gpsbook
