// Texts of the library.
#include "gps/options/StringResources.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringResources, ListNameIsInUtf8) {
    char buffer[1024];
    EXPECT_EQ(LoadStringGps(10300, buffer, sizeof buffer), 11);
    EXPECT_STREQ(buffer, "Entit\xC3\xA0 GPS");
    EXPECT_EQ(kStrOpzListGps, 10300u);
}

TEST(StringResources, UnknownIdIsTheEmptyText) {
    for (const unsigned id : {0u, 10299u, 10301u, 4294967295u}) {
        char buffer[8] = "before";
        EXPECT_EQ(LoadStringGps(id, buffer, sizeof buffer), 0) << id;
        EXPECT_STREQ(buffer, "");
    }
}

TEST(StringResources, ShortBufferGetsWholeCharactersAndATerminator) {
    const std::string whole = "Entit\xC3\xA0 GPS";
    for (int size = 1; size <= 12; ++size) {
        std::string buffer(12, '#');
        // The sixth and seventh byte are one character.
        const int fits = size - 1 == 6 ? 5 : size - 1;
        EXPECT_EQ(LoadStringGps(10300, buffer.data(), size), fits) << size;
        const std::string untouched(12 - static_cast<std::size_t>(fits) - 1, '#');
        EXPECT_EQ(buffer, whole.substr(0, static_cast<std::size_t>(fits)) + '\0' + untouched) << size;
    }
}

TEST(StringResources, WithoutBufferNothingIsWritten) {
    char buffer[] = "before";
    EXPECT_EQ(LoadStringGps(10300, buffer, 0), 0);
    EXPECT_EQ(LoadStringGps(10300, buffer, -1), 0);
    EXPECT_EQ(LoadStringGps(10300, nullptr, 1024), 0);
    EXPECT_STREQ(buffer, "before");
}

}  // namespace
