// FaultRun: a program that is run with one of its calls to the file system refused.
#pragma once

#include <string>
#include <vector>

namespace test {

struct FaultRun {
    int code = -1;
    std::string message;             // what it wrote to its standard error
    std::vector<std::string> calls;  // "17 fsync": those for files in the folder, in order
};

/// The error that is none: a read or write takes half of its bytes.
constexpr int kHalf = 0;

/// The program is killed in front of the call; its code is -1 then.
constexpr int kKill = -1;

/// Runs a program and its arguments. Of the calls that concern files in the folder, number `call` fails with
/// the error number `error`; none for a call of -1.
FaultRun RunWithFault(const std::vector<std::string>& command, const std::string& folder, int call,
                      int error);

}  // namespace test
