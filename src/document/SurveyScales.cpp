#include "document/SurveyScales.h"

namespace pollarix {

SurveyScales ReadScales(Connection& file) {
    SurveyScales scales;
    for (Recordset row = file.Execute("SELECT id, name FROM responsematrixgroup ORDER BY id");
         !row.AtEnd(); row.MoveNext())
        scales.scales.push_back({row.Integer(0), row.NullToString(1)});
    for (Recordset row = file.Execute(
             "SELECT id, name, ResponseMatrixGroupID, pos FROM responsematrix ORDER BY id");
         !row.AtEnd(); row.MoveNext())
        scales.points.push_back(
            {row.Integer(0), row.NullToString(1), row.Integer(2), row.Integer(3)});
    return scales;
}

void WriteScales(Connection& file, const SurveyScales& scales) {
    WriteBatch batch(file, WriteBatch::OnFailure::TakeBack);
    file.Run("DELETE FROM responsematrix");
    file.Run("DELETE FROM responsematrixgroup");
    TableInsert scale(file, "responsematrixgroup", {"id", "name"});
    for (const SurveyScales::Scale& one : scales.scales)
        scale.Add({one.id, one.name});
    TableInsert point(file, "responsematrix", {"id", "name", "ResponseMatrixGroupID", "pos"});
    for (const SurveyScales::Point& one : scales.points)
        point.Add({one.id, one.name, one.scale, one.pos});
    batch.Commit();
}

} // namespace pollarix
