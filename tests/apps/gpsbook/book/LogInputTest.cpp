#include "apps/gpsbook/book/LogInput.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "apps/gpsbook/commands/CommandError.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

/// Bytes that differ from place to place.
std::string Bytes(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>((i * 2654435761U) >> 13);
    return text;
}

/// Everything that is left of the input, and the sizes of its pieces.
std::string Rest(LogInput& input, std::vector<std::size_t>* sizes = nullptr) {
    std::string all;
    for (std::string_view piece = input.Next(); !piece.empty(); piece = input.Next()) {
        all += piece;
        if (sizes) sizes->push_back(piece.size());
    }
    return all;
}

TEST(LogInput, FileLargerThanAPieceComesWhole) {
    const TestFolder folder;
    const std::string text = Bytes(5'000'001);
    WriteFile(folder / "a.log", text);
    LogInput input(folder / "a.log");
    EXPECT_EQ(input.Size(), 5'000'001);
    const std::string first(input.Next(65536));
    EXPECT_GE(first.size(), 65536U);
    EXPECT_EQ(input.Read(), static_cast<std::int64_t>(first.size()));
    std::vector<std::size_t> sizes;
    EXPECT_TRUE(first + Rest(input, &sizes) == text);
    EXPECT_GT(sizes.size(), 1U) << "a file of 5 MB in one piece";
    EXPECT_EQ(input.Read(), 5'000'001);
    EXPECT_TRUE(input.Next().empty()) << "the end stays the end";
}

TEST(LogInput, EmptyFileHasNoPiece) {
    const TestFolder folder;
    WriteFile(folder / "a.log", "");
    LogInput input(folder / "a.log");
    EXPECT_EQ(input.Size(), 0);
    EXPECT_TRUE(input.Next(65536).empty());
}

TEST(LogInput, ShortFileEndsBeforeTheBytesAskedFor) {
    const TestFolder folder;
    WriteFile(folder / "a.log", "abc");
    LogInput input(folder / "a.log");
    EXPECT_EQ(input.Next(65536), "abc");
    EXPECT_TRUE(input.Next().empty());
}

TEST(LogInput, PipeIsReadThoughItsSizeIsNotKnown) {
    const TestFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    LogInput::Check(pipe);
    const std::string text = Bytes(3'000'000);
    std::thread writer([&] { WriteFile(pipe, text); });
    std::string all;
    {
        LogInput input(pipe);
        EXPECT_EQ(input.Size(), 0);
        all = input.Next(65536);
        EXPECT_GE(all.size(), 65536U);
        all += Rest(input);
    }
    writer.join();
    EXPECT_TRUE(all == text);
}

struct Refusal {
    int code;
    std::string message;
};

/// How a name is refused; code 0 when it is not.
template <typename Action>
Refusal RefusalOf(Action action) {
    try {
        action();
    } catch (const CommandError& e) {
        return {e.Code(), e.what()};
    }
    return {0, ""};
}

TEST(LogInput, WhatCannotBeReadIsRefusedWhenCheckedAndWhenOpened) {
    const TestFolder folder;
    WriteFile(folder / "file", "x");
    struct Row {
        std::string name;
        int code;
        const char* message;
    };
    const Row rows[] = {
        {folder / "none.nmea", exitNotFound, "there is no such file"},
        {folder / "file/none.nmea", exitNotFound, "there is no such file"},
        {"", exitNotFound, "there is no such file"},
        {folder / "", exitFailure, "is a folder"},
        {folder / std::string(300, 'x'), exitFailure, "cannot be read"},
    };
    for (const Row& row : rows) {
        for (const Refusal& refusal : {RefusalOf([&] { LogInput::Check(row.name); }),
                                       RefusalOf([&] { const LogInput input(row.name); })}) {
            EXPECT_EQ(refusal.code, row.code) << row.name;
            EXPECT_EQ(refusal.message.find(row.name + ": " + row.message), 0U) << refusal.message;
        }
    }
}

TEST(LogInput, CheckOfAFileThatCanBeReadIsSilent) {
    const TestFolder folder;
    WriteFile(folder / "a.log", "");
    LogInput::Check(folder / "a.log");
    LogInput::Check("-");
}

}  // namespace
}  // namespace gpsbook
