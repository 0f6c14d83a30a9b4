// The Analyze screen, and its graph in all styles.
#include "images/Scene.h"
#include "images/Studio.h"
#include "platform/controls/ComboBox.h"

namespace pollarix::images {

namespace {

constexpr const char* Styles[] = {"3D Bar",         "2D Bar",         "3D Line", "2D Line",
                                  "3D Area",        "2D Area",        "3D Step", "2D Step",
                                  "3D Combination", "2D Combination", "Pie",     "2D X-Y"};

void ShowGraph(Studio& studio, const QSize& size, const QString& style, const QString& row) {
    studio.StartWithSample(size);
    studio.Menu("mnuViewAnalyse");
    studio.Choose("cboGraphStyle", style);
    studio.SelectRow("gSummaryReport", row);
}

QImage Screen(Studio& studio, const QSize& size, const QString& style, const QString& row) {
    ShowGraph(studio, size, style, row);
    return studio.Picture();
}

QImage Expanded(Studio& studio) {
    ShowGraph(studio, Small, "3D Bar", "The permanent");
    studio.Click("cmdExpand");
    return studio.Picture();
}

QImage Graph(Studio& studio, const QString& style) {
    ShowGraph(studio, Small, style, "The permanent");
    studio.Settle();
    return studio.Find<QWidget>("c").grab().toImage();
}

QImage Summary(Studio& studio) {
    studio.StartWithSample(Small);
    studio.Menu("mnuViewAnalyse");
    return studio.Picture();
}

} // namespace

std::vector<Scene> AnalysisScenes() {
    std::vector<Scene> scenes = {
        {"analyze", "Analyze screen with the graph of a question",
         [](Studio& studio) { return Screen(studio, Small, "3D Bar", "The permanent"); }},
        {"analyze-large", "Analyze screen, large window",
         [](Studio& studio) { return Screen(studio, Large, "3D Bar", "The permanent"); }},
        {"analyze-pie", "Analyze screen with a pie",
         [](Studio& studio) { return Screen(studio, Small, "Pie", "The permanent"); }},
        {"analyze-matrix", "Analyze screen with the graph of a sub question",
         [](Studio& studio) { return Screen(studio, Small, "2D Bar", "The labels and texts"); }},
        {"analyze-summary", "Analyze screen before a response is selected", Summary},
        {"analyze-expanded", "Analyze screen with the graph expanded", Expanded},
    };
    for (const char* style : Styles) {
        const QString name = QString("graph-") + QString(style).toLower().replace(' ', '-');
        scenes.push_back({name, QString("Graph in the style ") + style,
                          [style](Studio& studio) { return Graph(studio, style); }});
    }
    return scenes;
}

} // namespace pollarix::images
