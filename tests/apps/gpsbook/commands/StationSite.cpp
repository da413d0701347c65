#include "tests/apps/gpsbook/commands/StationSite.h"

#include <gtest/gtest.h>

namespace gpsbook::test {

StationSite::StationSite()
    : Site([](gpsproject::Project& p) {
          CGrpGps& quay = *p.GetBook().GetGrpAt(0);
          quay.SetGeocCeFaMis(4316426, 1014588, 4569607);
          quay.SetBaseAltAnt(0);
          CGrpGps& pier = *p.GetBook().GetGrpAt(1);
          pier.SetBaseLat(45);
          pier.SetBaseLong(13);
          pier.SetBaseElev(10);
          pier.SetBaseAltAnt(0);
      }) {
    Put("shipped.csv",
        "id,name,country,province,x,y,z,frame,epoch,source\n"
        "UDIN,Udine,ITA,UD,4316423,1014588,4569607,ETRF2000,2008.0,here\n"
        "UDIN,Udine,ITA,UD,4316422.9,1014588,4569607,ETRF89,1989.0,here\n"
        "UDIN,Udine,ITA,UD,4316424,1014588,4569607,IGb14,2010.0,here\n"
        "GORI,Gorizia,ITA,GO,4317947,1046521,4560977,ETRF2000,2008.0,here\n");
    around_.environment = {{"GPS_SURVEY_STATIONS", Path("shipped.csv")},
                           {"GPS_SURVEY_SETTINGS", Path("settings/settings.ini")}};
}

Outcome StationSite::Run(const std::vector<std::string>& arguments) const {
    return Site::Run(arguments, around_);
}

void StationSite::ExpectRefused(const std::vector<std::string>& arguments, int exitCode,
                                const std::string& words) const {
    const std::string bytes = Bytes();
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, exitCode) << words << '\n' << outcome;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << words << '\n' << outcome;
    EXPECT_EQ(outcome.out, "") << outcome;
    EXPECT_TRUE(Bytes() == bytes) << "the book was changed: " << words;
}

}  // namespace gpsbook::test
