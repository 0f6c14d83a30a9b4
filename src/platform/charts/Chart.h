// The chart: a table of labels and values drawn in one of twelve styles.
#pragma once

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace pollarix {

struct ChartRow {
    QString label;
    double value = 0;
};

// The numbers are those of the style list of the Analyze screen.
enum class ChartType {
    Bar3D = 0,
    Bar2D = 1,
    Line3D = 2,
    Line2D = 3,
    Area3D = 4,
    Area2D = 5,
    Step3D = 6,
    Step2D = 7,
    Combination3D = 8,
    Combination2D = 9,
    Pie2D = 14,
    XY2D = 16,
};

class Chart : public QWidget {
    Q_OBJECT
  public:
    explicit Chart(QWidget* parent = nullptr);
    ~Chart() override;

    ChartType chartType() const;
    void SetChartType(ChartType type);
    // The contents margins stay free of the drawing, for a control that stands on the chart.
    // Shows exactly these rows; an empty table shows an empty chart that says there is no answer.
    void SetChartData(std::vector<ChartRow> rows);
    const std::vector<ChartRow>& ChartData() const;

    // The chart as a picture of the given size in pixels.
    QImage Picture(const QSize& size);

    // Keeps the picture that the context menu's "Save Picture..." made: the owner sets it to asking
    // for a file name and writing the file. While it is empty the menu entry is disabled.
    std::function<void(const QImage&)> SavePicture;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace pollarix
