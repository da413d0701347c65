// WriteSetting: changes one setting of a file; for tests that let the system refuse something meanwhile.
#include "platform/base/CIniFile.h"

int main(int count, char** arguments) {
    if (count != 3) return 2;
    return CIniFile(arguments[1]).WriteString("S", "k", arguments[2]) ? 0 : 1;
}
