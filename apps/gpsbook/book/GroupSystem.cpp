#include "apps/gpsbook/book/GroupSystem.h"

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/fields/SystemText.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

CProiezPla ProjectionFrom(const std::string& crs) {
    CProiezPla projection;
    if (const std::string problem = ReadSystem(crs, projection); !problem.empty())
        throw CommandError(exitUsage, "--crs: " + problem);
    return projection;
}

std::string TableSystem(const CProiezPla& projection) {
    return projection.IsDefinizioneText() ? projection.GetWkt() : projection.GetDefinizione();
}

std::string TableSystem(const CGrpGps& group) {
    const CConvLocal& local = *group.GetConvCoord()->GetConvLocal();
    if (local.IsRotoTrasSet()) return {};
    const CProiezPla& projection = local.GetProiezPla();
    return projection.GetType() == TpProiezPla::definizione ? TableSystem(projection)
                                                            : projection.GetSistema();
}

void SetSystem(CGrpGps& group, const std::string& crs) {
    CConvCoord* conversion = group.GetConvCoord();
    const std::string definition = ProjectionFrom(crs).GetDefinizione();
    std::string why;
    if (!conversion->GetConvLocal()->SetDefinizione(definition, why))
        throw CommandError(exitUsage, "--crs: " + why);
    conversion->SetImp(CConvCoord::impPronta, 1);
    group.SetCodeElab(1);  // bit 0: the conversion counts as valid
}

CGrpGps& AddGroup(CLibGps& book, const std::string& name, const std::string& crs) {
    ProjectionFrom(crs);
    CGrpGps& group = *book.AddGrp(false);
    group.SetNome(name);
    group.SetNomeGrp(name);
    SetSystem(group, crs);
    return group;
}

}  // namespace gpsbook
