// Provinces by sign and name.
#include "host/coord/Province.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace {

using Catalogo = CTrovaNomeBaseGps;

TEST(Province, TableHasTheOrderOfTheEnumeration) {
    ASSERT_EQ(Province().size(), static_cast<std::size_t>(Catalogo::provEstero) + 1);
    for (std::size_t i = 0; i < Province().size(); ++i) {
        EXPECT_EQ(Province()[i].provincia, static_cast<Catalogo::enumProvincia>(i));
        EXPECT_EQ(&InfoOf(Province()[i].provincia), &Province()[i]);
    }
    EXPECT_EQ(Province().front().provincia, Catalogo::provTutte);
    EXPECT_EQ(Province().back().provincia, Catalogo::provEstero);
}

TEST(Province, EveryOneIsFoundByItsSignAndByItsName) {
    std::set<std::string_view> signs, names;
    for (const ProvinciaInfo& p : Province()) {
        EXPECT_TRUE(signs.insert(p.sign).second) << p.sign;
        EXPECT_TRUE(names.insert(p.name).second) << p.name;
        EXPECT_EQ(ProvinciaFrom(p.sign), p.provincia) << p.sign;
        EXPECT_EQ(ProvinciaFrom(p.name), p.provincia) << p.name;
    }
}

// Provinces of each region, as they are since 2016.
TEST(Province, RegionsHaveAllTheirProvinces) {
    const std::map<std::string_view, int> expected{{"Abruzzo", 4},
                                                   {"Basilicata", 2},
                                                   {"Calabria", 5},
                                                   {"Campania", 5},
                                                   {"Emilia-Romagna", 9},
                                                   {"Lazio", 5},
                                                   {"Liguria", 4},
                                                   {"Lombardia", 12},
                                                   {"Marche", 5},
                                                   {"Molise", 2},
                                                   {"Piemonte", 8},
                                                   {"Puglia", 6},
                                                   {"Sardegna", 5},
                                                   {"Sicilia", 9},
                                                   {"Toscana", 10},
                                                   {"Umbria", 2},
                                                   {"Veneto", 7},
                                                   {"Friuli-Venezia Giulia", 4},
                                                   {"Trentino-Alto Adige", 2},
                                                   {"Valle d'Aosta", 1}};
    std::map<std::string_view, int> counted;
    for (const ProvinciaInfo& p : Province())
        if (!p.region.empty()) ++counted[p.region];
    EXPECT_EQ(counted, expected);
}

TEST(Province, TextIsReadInLargeAndSmallLettersAndInTwoLanguages) {
    EXPECT_EQ(ProvinciaFrom("ud"), Catalogo::provUD);
    EXPECT_EQ(ProvinciaFrom("UDINE"), Catalogo::provUD);
    EXPECT_EQ(ProvinciaFrom("Bolzano/Bozen"), Catalogo::provBZ);
    EXPECT_EQ(ProvinciaFrom("Any"), Catalogo::provTutte);
    EXPECT_EQ(ProvinciaFrom("abroad"), Catalogo::provEstero);
}

TEST(Province, OtherTextIsNone) {
    for (const char* text : {"", "U", "UDI", "XX", "Udin", "Udine ", "/", "UD/x"})
        EXPECT_EQ(ProvinciaFrom(text), std::nullopt) << text;
}

}  // namespace
