#include "platform/base/StringTrimRight.h"

void StringTrimRight(std::string& text) {
    // Not found: npos, and one more is 0.
    text.resize(text.find_last_not_of(" \t\r\n\v\f") + 1);
}
