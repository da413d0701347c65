#include "apps/gpsbook/simulator/Simulator.h"
#include "apps/gpsbook/book/Interrupt.h"

#include <string>

#include "apps/gpsbook/simulator/EpochGenerator.h"
#include "apps/gpsbook/simulator/NmeaText.h"
#include "apps/gpsbook/simulator/PosText.h"

namespace gpsbook {

namespace {

constexpr std::size_t kPieceSize = 64 * 1024;

void Count(SimulationSummary& summary, const SimulatedEpoch& epoch) {
    if (summary.epochs == 0) summary.first = epoch.utc;
    summary.last = epoch.utc;
    ++summary.epochs;
    switch (epoch.solution) {
        case Solution::fixed:
            ++summary.fixed;
            break;
        case Solution::floating:
            ++summary.floating;
            break;
        case Solution::single:
            ++summary.single;
            break;
    }
}

}  // namespace

SimulationSummary Simulate(const SimulationOptions& options, std::ostream& out) {
    SimulationSummary summary;
    std::string piece;
    const auto send = [&] {
        out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
        summary.bytes += static_cast<std::int64_t>(piece.size());
        piece.clear();
    };
    if (options.form != LogForm::nmea) AppendPosHeader(piece, options);
    EpochGenerator generator(options);
    while (summary.epochs < options.epochs && out) {
        CheckInterrupt();
        const SimulatedEpoch epoch = generator.Next();
        if (options.form == LogForm::nmea)
            AppendNmea(piece, epoch, options);
        else
            AppendPosRow(piece, epoch, options);
        Count(summary, epoch);
        if (piece.size() >= kPieceSize) send();
    }
    send();
    return summary;
}

}  // namespace gpsbook
