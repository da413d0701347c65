// Plane coordinates of every point: the field book against bare loops over PROJ.
#include <proj.h>

#include <memory>

#include "bench/Work.h"
#include "bench/Workload.h"
#include "gps/coords/FCalcCoord.h"
#include "platform/coord/CConvCoord.h"

namespace bench {

namespace {

constexpr double kRad = 3.14159265358979323846 / 180.0;

struct FreeContext {
    void operator()(PJ_CONTEXT* c) const { proj_context_destroy(c); }
};
struct FreePj {
    void operator()(PJ* p) const { proj_destroy(p); }
};

// UTM 32 on WGS 84.
void SetUtm(CConvCoord& c) {
    c.SetImp(CConvCoord::impPronta, 1);
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
}

// A national datum seven parameters away from WGS 84 and its transverse Mercator belt.
void SetDatum(CConvCoord& c) {
    c.SetImp(CConvCoord::impPronta, 1);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    c.SetImpFlag(true);
    CDatumConv* datum = c.GetLibMap()->GetDatAt(0, 0, 0);
    datum->SetCoeffFromStd(104.1, 49.1, 9.9, -0.971, 2.917, -0.714, 11.68);
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 1500000, 0, 0.9996);
}

constexpr const char* kUtm = "+proj=utm +zone=32 +ellps=WGS84";
constexpr const char* kPipeline =
    "+proj=pipeline +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=104.1 +y=49.1 +z=9.9 +rx=-0.971 "
    "+ry=2.917 "
    "+rz=-0.714 +s=11.68 +convention=position_vector +step +inv +proj=cart +ellps=intl +step +proj=tmerc "
    "+lat_0=0 "
    "+lon_0=9 +k=0.9996 +x_0=1500000 +y_0=0 +ellps=intl";

// With `move` every pass works with another false easting, as after a change of the conversion: new
// coordinates are stored, not only equal ones compared.
Work Library(const char* name, void (*set)(CConvCoord&), std::size_t groups, bool move) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n, groups);
                book->SetConversions(set);
                CConvLocal* local = book->Get().GetGrpAt(0)->GetConvCoord()->GetConvLocal();
                // Both conversions stay in memory: making one is no part of the work.
                auto here = std::make_shared<CProiezPla>(local->GetProiezPla()),
                     there = std::make_shared<CProiezPla>(*here);
                CProiezPla::Values moved = here->GetValues();
                moved[2] += 1;
                there->Set(here->GetType(), moved);
                for (const auto& kept : {here, there}) {
                    double x, y, z;
                    kept->GrafToPlan(45, 9, 0, x, y, z);
                }
                auto next = std::make_shared<bool>(false);
                return Run{[book, local, here, there, next, move] {
                               if (move) {
                                   *next = !*next;
                                   const CProiezPla::Values& p = (*next ? there : here)->GetValues();
                                   local->SetTpProiezPlaEx(here->GetType(), p[0], p[1], p[2], p[3], p[4]);
                               }
                               FCalcCoordLibGps(&book->Get(), nullptr);
                           },
                           {}};
            }};
}

// The same heap objects, one proj_trans each, plane coordinates stored without comparison or report.
Work BareLoop(const char* name, const char* definition) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                auto points = std::make_shared<std::vector<CPunGps*>>(book->Points());
                std::shared_ptr<PJ_CONTEXT> context(proj_context_create(), FreeContext());
                std::shared_ptr<PJ> pj(proj_create(context.get(), definition), FreePj());
                auto shift = std::make_shared<double>(0);
                return Run{[book, points, context, pj, shift] {
                               *shift += 1;
                               for (CPunGps* p : *points) {
                                   const PJ_COORD out =
                                       proj_trans(pj.get(), PJ_FWD,
                                                  proj_coord(p->GetLong() * kRad, p->GetLat() * kRad,
                                                             p->GetElev() - p->GetAltAnt(), 0));
                                   p->CEgn::DoSetCoord(out.xyz.x + *shift, out.xyz.y, out.xyz.z);
                               }
                           },
                           {}};
            }};
}

Work Groups(const char* name, std::size_t groups) { return Library(name, SetUtm, groups, false); }

}  // namespace

std::vector<Ratio> RecomputeRatios() {
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    return {
        {"recompute.utm", Library("recompute.utm.library", SetUtm, 1, true),
         BareLoop("recompute.utm.proj_trans", kUtm), counts, [](std::size_t) { return 1.10; }, 0, 1.2},
        {"recompute.datum", Library("recompute.datum.library", SetDatum, 1, true),
         BareLoop("recompute.datum.proj_pipeline", kPipeline), counts, [](std::size_t) { return 0.90; }, 0,
         1.2},
        // "As fast as one group": the bound leaves room for the noise of the clock only.
        {"recompute.thousand_groups", Groups("recompute.groups_1000", 1000), Groups("recompute.groups_1", 1),
         counts, [](std::size_t) { return 1.05; }, 0, 0},
    };
}

}  // namespace bench
