#include "design/ResponseScales.h"

namespace pollarix {

std::vector<ResponseScale> ReadResponseScales(Connection& SurveyConnection) {
    std::vector<ResponseScale> scales;
    for (Recordset group = SurveyConnection.Execute(
             "SELECT rmg.id, rmg.name FROM responsematrixgroup AS rmg WHERE rmg.id<>1 "
             "ORDER BY rmg.id");
         !group.AtEnd(); group.MoveNext()) {
        ResponseScale scale;
        scale.id = group.Integer(0);
        QStringList names;
        for (Recordset point = SurveyConnection.Execute(
                 "SELECT name FROM responsematrix AS rm WHERE rm.responsematrixgroupid = ? "
                 "ORDER BY pos",
                 {scale.id});
             !point.AtEnd(); point.MoveNext())
            names << point.NullToString(0);
        scale.text = names.join('/');
        scales.push_back(std::move(scale));
    }
    return scales;
}

std::int64_t AddResponseScale(Connection& SurveyConnection, const QStringList& points) {
    WriteBatch batch(SurveyConnection, WriteBatch::OnFailure::TakeBack);
    const std::int64_t id =
        TableInsert(SurveyConnection, "ResponseMatrixGroup", {"Name"}).Add({"User Added"});
    TableInsert insert(SurveyConnection, "ResponseMatrix",
                       {"Name", "ResponseMatrixGroupID", "pos"});
    for (qsizetype i = 0; i < points.size(); ++i)
        insert.Add({points[i], id, static_cast<std::int64_t>(i)});
    batch.Commit();
    return id;
}

} // namespace pollarix
