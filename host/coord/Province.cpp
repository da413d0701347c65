// The provinces of Italy with their signs and regions, and what else an address of a station can say.
#include "host/coord/Province.h"

#include <algorithm>
#include <array>

namespace {

using Catalogo = CTrovaNomeBaseGps;

constexpr std::array<ProvinciaInfo, 109> kProvince{{
    {Catalogo::provTutte, "any", "any province", ""},
    {Catalogo::provAG, "AG", "Agrigento", "Sicilia"},
    {Catalogo::provAL, "AL", "Alessandria", "Piemonte"},
    {Catalogo::provAN, "AN", "Ancona", "Marche"},
    {Catalogo::provAO, "AO", "Valle d'Aosta", "Valle d'Aosta"},
    {Catalogo::provAP, "AP", "Ascoli Piceno", "Marche"},
    {Catalogo::provAQ, "AQ", "L'Aquila", "Abruzzo"},
    {Catalogo::provAR, "AR", "Arezzo", "Toscana"},
    {Catalogo::provAT, "AT", "Asti", "Piemonte"},
    {Catalogo::provAV, "AV", "Avellino", "Campania"},
    {Catalogo::provBA, "BA", "Bari", "Puglia"},
    {Catalogo::provBG, "BG", "Bergamo", "Lombardia"},
    {Catalogo::provBI, "BI", "Biella", "Piemonte"},
    {Catalogo::provBL, "BL", "Belluno", "Veneto"},
    {Catalogo::provBN, "BN", "Benevento", "Campania"},
    {Catalogo::provBO, "BO", "Bologna", "Emilia-Romagna"},
    {Catalogo::provBR, "BR", "Brindisi", "Puglia"},
    {Catalogo::provBS, "BS", "Brescia", "Lombardia"},
    {Catalogo::provBT, "BT", "Barletta-Andria-Trani", "Puglia"},
    {Catalogo::provBZ, "BZ", "Bolzano", "Trentino-Alto Adige"},
    {Catalogo::provCA, "CA", "Cagliari", "Sardegna"},
    {Catalogo::provCB, "CB", "Campobasso", "Molise"},
    {Catalogo::provCE, "CE", "Caserta", "Campania"},
    {Catalogo::provCH, "CH", "Chieti", "Abruzzo"},
    {Catalogo::provCL, "CL", "Caltanissetta", "Sicilia"},
    {Catalogo::provCN, "CN", "Cuneo", "Piemonte"},
    {Catalogo::provCO, "CO", "Como", "Lombardia"},
    {Catalogo::provCR, "CR", "Cremona", "Lombardia"},
    {Catalogo::provCS, "CS", "Cosenza", "Calabria"},
    {Catalogo::provCT, "CT", "Catania", "Sicilia"},
    {Catalogo::provCZ, "CZ", "Catanzaro", "Calabria"},
    {Catalogo::provEN, "EN", "Enna", "Sicilia"},
    {Catalogo::provFC, "FC", "Forlì-Cesena", "Emilia-Romagna"},
    {Catalogo::provFE, "FE", "Ferrara", "Emilia-Romagna"},
    {Catalogo::provFG, "FG", "Foggia", "Puglia"},
    {Catalogo::provFI, "FI", "Firenze", "Toscana"},
    {Catalogo::provFM, "FM", "Fermo", "Marche"},
    {Catalogo::provFR, "FR", "Frosinone", "Lazio"},
    {Catalogo::provGE, "GE", "Genova", "Liguria"},
    {Catalogo::provGO, "GO", "Gorizia", "Friuli-Venezia Giulia"},
    {Catalogo::provGR, "GR", "Grosseto", "Toscana"},
    {Catalogo::provIM, "IM", "Imperia", "Liguria"},
    {Catalogo::provIS, "IS", "Isernia", "Molise"},
    {Catalogo::provKR, "KR", "Crotone", "Calabria"},
    {Catalogo::provLC, "LC", "Lecco", "Lombardia"},
    {Catalogo::provLE, "LE", "Lecce", "Puglia"},
    {Catalogo::provLI, "LI", "Livorno", "Toscana"},
    {Catalogo::provLO, "LO", "Lodi", "Lombardia"},
    {Catalogo::provLT, "LT", "Latina", "Lazio"},
    {Catalogo::provLU, "LU", "Lucca", "Toscana"},
    {Catalogo::provMB, "MB", "Monza e della Brianza", "Lombardia"},
    {Catalogo::provMC, "MC", "Macerata", "Marche"},
    {Catalogo::provME, "ME", "Messina", "Sicilia"},
    {Catalogo::provMI, "MI", "Milano", "Lombardia"},
    {Catalogo::provMN, "MN", "Mantova", "Lombardia"},
    {Catalogo::provMO, "MO", "Modena", "Emilia-Romagna"},
    {Catalogo::provMS, "MS", "Massa-Carrara", "Toscana"},
    {Catalogo::provMT, "MT", "Matera", "Basilicata"},
    {Catalogo::provNA, "NA", "Napoli", "Campania"},
    {Catalogo::provNO, "NO", "Novara", "Piemonte"},
    {Catalogo::provNU, "NU", "Nuoro", "Sardegna"},
    {Catalogo::provOR, "OR", "Oristano", "Sardegna"},
    {Catalogo::provPA, "PA", "Palermo", "Sicilia"},
    {Catalogo::provPC, "PC", "Piacenza", "Emilia-Romagna"},
    {Catalogo::provPD, "PD", "Padova", "Veneto"},
    {Catalogo::provPE, "PE", "Pescara", "Abruzzo"},
    {Catalogo::provPG, "PG", "Perugia", "Umbria"},
    {Catalogo::provPI, "PI", "Pisa", "Toscana"},
    {Catalogo::provPN, "PN", "Pordenone", "Friuli-Venezia Giulia"},
    {Catalogo::provPO, "PO", "Prato", "Toscana"},
    {Catalogo::provPR, "PR", "Parma", "Emilia-Romagna"},
    {Catalogo::provPT, "PT", "Pistoia", "Toscana"},
    {Catalogo::provPU, "PU", "Pesaro e Urbino", "Marche"},
    {Catalogo::provPV, "PV", "Pavia", "Lombardia"},
    {Catalogo::provPZ, "PZ", "Potenza", "Basilicata"},
    {Catalogo::provRA, "RA", "Ravenna", "Emilia-Romagna"},
    {Catalogo::provRC, "RC", "Reggio di Calabria", "Calabria"},
    {Catalogo::provRE, "RE", "Reggio nell'Emilia", "Emilia-Romagna"},
    {Catalogo::provRG, "RG", "Ragusa", "Sicilia"},
    {Catalogo::provRI, "RI", "Rieti", "Lazio"},
    {Catalogo::provRM, "RM", "Roma", "Lazio"},
    {Catalogo::provRN, "RN", "Rimini", "Emilia-Romagna"},
    {Catalogo::provRO, "RO", "Rovigo", "Veneto"},
    {Catalogo::provSA, "SA", "Salerno", "Campania"},
    {Catalogo::provSI, "SI", "Siena", "Toscana"},
    {Catalogo::provSO, "SO", "Sondrio", "Lombardia"},
    {Catalogo::provSP, "SP", "La Spezia", "Liguria"},
    {Catalogo::provSR, "SR", "Siracusa", "Sicilia"},
    {Catalogo::provSS, "SS", "Sassari", "Sardegna"},
    {Catalogo::provSU, "SU", "Sud Sardegna", "Sardegna"},
    {Catalogo::provSV, "SV", "Savona", "Liguria"},
    {Catalogo::provTA, "TA", "Taranto", "Puglia"},
    {Catalogo::provTE, "TE", "Teramo", "Abruzzo"},
    {Catalogo::provTN, "TN", "Trento", "Trentino-Alto Adige"},
    {Catalogo::provTO, "TO", "Torino", "Piemonte"},
    {Catalogo::provTP, "TP", "Trapani", "Sicilia"},
    {Catalogo::provTR, "TR", "Terni", "Umbria"},
    {Catalogo::provTS, "TS", "Trieste", "Friuli-Venezia Giulia"},
    {Catalogo::provTV, "TV", "Treviso", "Veneto"},
    {Catalogo::provUD, "UD", "Udine", "Friuli-Venezia Giulia"},
    {Catalogo::provVA, "VA", "Varese", "Lombardia"},
    {Catalogo::provVB, "VB", "Verbano-Cusio-Ossola", "Piemonte"},
    {Catalogo::provVC, "VC", "Vercelli", "Piemonte"},
    {Catalogo::provVE, "VE", "Venezia", "Veneto"},
    {Catalogo::provVI, "VI", "Vicenza", "Veneto"},
    {Catalogo::provVR, "VR", "Verona", "Veneto"},
    {Catalogo::provVT, "VT", "Viterbo", "Lazio"},
    {Catalogo::provVV, "VV", "Vibo Valentia", "Calabria"},
    {Catalogo::provEstero, "abroad", "outside Italy", ""},
}};

// Of ASCII letters only, so that no locale is asked.
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace

std::span<const ProvinciaInfo> Province() { return kProvince; }

const ProvinciaInfo& InfoOf(CTrovaNomeBaseGps::enumProvincia provincia) {
    return kProvince[static_cast<std::size_t>(provincia)];
}

std::optional<CTrovaNomeBaseGps::enumProvincia> ProvinciaFrom(std::string_view text) {
    const std::string_view italian = text.substr(0, text.find('/'));
    for (const ProvinciaInfo& p : kProvince)
        if (SameText(text, p.sign) || SameText(italian, p.name)) return p.provincia;
    return std::nullopt;
}
