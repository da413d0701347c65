#include "apps/gpsbook/writers/TextOutput.h"

#include <iostream>

namespace gpsbook {

TextOutput::TextOutput(const RowOutput& output) : name_(output.path) {
    if (name_ == "-") {
        name_ = "standard output";
        out_ = output.standardOutput != nullptr ? output.standardOutput : &std::cout;
    } else {
        staged_ = std::make_unique<StagedOutput>(name_, output.overwrite);
        file_.open(staged_->File(), std::ios::binary);
        out_ = &file_;
    }
}

void TextOutput::Close() {
    Flush();
    if (!out_->flush()) Fail();
    if (!staged_) return;
    file_.close();
    if (!file_) Fail();
    staged_->Commit();
}

void TextOutput::Flush() {
    out_->write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    buffer_.clear();
    if (!*out_) Fail();
}

void TextOutput::Fail() const {
    throw WriteError(name_, staged_ ? "writing failed; see whether the disk is full"
                                    : "writing failed; see whether its reader has gone");
}

}  // namespace gpsbook
