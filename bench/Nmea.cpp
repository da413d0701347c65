// Reading a receiver's log: megabytes a second on one core, up to finished epochs.
#include <sstream>

#include "apps/gpsbook/readers/Format.h"
#include "apps/gpsbook/simulator/Simulator.h"
#include "bench/Work.h"

namespace bench {

namespace {

class Count : public gpsbook::EpochSink {
public:
    void Accept(const gpsbook::Epoch&) override { ++epochs; }
    void Reject(gpsbook::Reason, std::int64_t, std::string_view) override {}
    void Ignore(gpsbook::Reason, std::int64_t, std::string_view) override {}
    long epochs = 0;
};

double MegabytesPerSecond(std::size_t epochs) {
    gpsbook::SimulationOptions options;
    options.epochs = static_cast<int>(epochs);
    options.satellitesInView = true;  // as most receivers do: sentences that only have to be passed over
    std::ostringstream log;
    gpsbook::Simulate(options, log);
    const std::string text = log.str();
    const double ns = NsPerItem(Run{[&text] {
                                        Count count;
                                        const auto reader = gpsbook::MakeReader(gpsbook::Format::nmea, count);
                                        for (std::size_t at = 0; at < text.size(); at += 1 << 20)
                                            reader->Feed(std::string_view(text).substr(at, 1 << 20));
                                        reader->Finish();
                                        Keep(count);
                                    },
                                    {}},
                                text.size());
    return 1e3 / ns;
}

}  // namespace

std::vector<Figure> NmeaFigures() {
    return {{"nmea.read", "MB/s", MegabytesPerSecond, {10'000, 100'000}, 150, true}};
}

}  // namespace bench
