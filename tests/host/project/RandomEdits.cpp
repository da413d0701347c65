#include "tests/host/project/RandomEdits.h"

#include "gps/options/COpzPostProc.h"

namespace test {

namespace {

using gpsproject::BookEdits;
using gpsproject::Project;

class Editor {
public:
    Editor(Project& project, std::mt19937& random)
        : project_(project), book_(project.GetBook()), edits_(project.GetEdits()), random_(random) {}

    void Step() {
        const int groups = book_.GetGrpArSize();
        if (groups == 0 || (groups < 6 && OneIn(8))) return AddGroup();
        const int g = Below(groups);
        const int points = book_.GetPunArSize(g);
        switch (Below(12)) {
            case 0:
                edits_.DeletingGroup(g);
                return book_.DelGrpAt(g);
            case 1: {
                const int other = Below(groups);
                book_.GrpGpsSwap(g, other);
                return edits_.GroupsSwapped(g, other);
            }
            case 2:
                book_.GetGrpAt(g)->SetNomeGrp(Name());
                book_.GetGrpAt(g)->SetBaseAltAnt(Below(300) / 100.0);
                return edits_.GroupChanged(g);
            case 3:
                return ChangeProject();
            case 4:
            case 5:
                if (points == 0) break;
                ChangePoint(g, Below(points));
                return;
            case 6:
                if (points == 0) break;
                {
                    const int p = Below(points);
                    edits_.DeletingPoint(g, p);
                    return book_.DelPunAt(g, p);
                }
            case 7:
                if (points == 0) break;
                {
                    const int i = Below(points), j = Below(points);
                    book_.PunGpsSwap(g, i, j);
                    return edits_.PointsSwapped(g, i, j);
                }
            default:
                break;
        }
        AddPoint(g, OneIn(2) ? points : Below(points + 1));
    }

private:
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
    bool OneIn(int n) { return Below(n) == 0; }
    std::string Name() { return "N" + std::to_string(Below(1'000'000)); }

    void AddGroup() {
        const int g = Below(book_.GetGrpArSize() + 1);
        book_.InsGrpAt(g, false)->SetNomeGrp(Name());
        edits_.GroupInserted(g);
    }

    void AddPoint(int g, int p) {
        CPunGps* point = book_.InsPunAt(g, p, false);
        point->SetNome(Name());
        point->SetLat(45.0 + Below(1000) / 1e3);
        edits_.PointInserted(g, p);
    }

    void ChangePoint(int g, int p) {
        book_.GetPunAt(g, p)->SetLong(11.0 + Below(1000) / 1e3);
        edits_.PointChanged(g, p);
    }

    void ChangeProject() {
        switch (Below(4)) {
            case 0:
                project_.GetSettings()[Name()] = Name();
                return edits_.SettingsChanged(project_.GetSettings());
            case 1:
                project_.SetStreamVersion(static_cast<short>(1399 + Below(2)));
                return edits_.VersionChanged(project_.GetStreamVersion());
            case 2:
                book_.GetOpzPostProc()->ParPostProc.wPar1 = static_cast<std::uint16_t>(Below(1000));
                return edits_.OptionsChanged();
            default:
                project_.GetMap().AddDat(Below(100), Below(100));
                return edits_.MapChanged();
        }
    }

    Project& project_;
    CLibGps& book_;
    BookEdits& edits_;
    std::mt19937& random_;
};

}  // namespace

void EditSomething(Project& project, std::mt19937& random) {
    gpsproject::Edit edit(project.GetEdits());
    Editor editor(project, random);
    const int steps = std::uniform_int_distribution<int>(1, 3)(random);
    for (int i = 0; i < steps; ++i) editor.Step();
    edit.Done();
}

}  // namespace test
