// TextOutput: a text file, or standard output, that is written piece by piece and checked.
#pragma once

#include <fmt/format.h>

#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "apps/gpsbook/writers/RowWriter.h"
#include "apps/gpsbook/writers/StagedOutput.h"

namespace gpsbook {

/// A file appears at Close, complete; without Close nothing is left.
/// Errors: WriteError from every command.
class TextOutput {
public:
    /// Errors: WriteError as StagedOutput reports it.
    explicit TextOutput(const RowOutput& output);

    void Append(std::string_view text) {
        buffer_.append(text.data(), text.data() + text.size());
        if (buffer_.size() >= kPieceSize) Flush();
    }
    void Close();

private:
    static constexpr std::size_t kPieceSize = 64 * 1024;

    void Flush();
    [[noreturn]] void Fail() const;

    std::string name_;
    std::unique_ptr<StagedOutput> staged_;  // none for standard output
    std::ofstream file_;
    std::ostream* out_;
    fmt::memory_buffer buffer_;
};

}  // namespace gpsbook
