#include "platform/charts/Chart.h"

#include "platform/base/Handlers.h"
#include "platform/charts/ChartDrawing.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <optional>

namespace pollarix {

namespace {

// A picture that leaves the program is at least this much finer than the screen's pixels.
constexpr qreal PictureFineness = 2;

} // namespace

struct Chart::State {
    explicit State(Chart& owner) : chart(owner) {}

    ChartRequest Request(const QSizeF& size) const {
        return {type, rows, size, chart.font(), chart.palette(), chart.locale()};
    }

    // Worked out when it is first needed: filling, restyling and resizing in a row cost one
    // drawing.
    ChartDrawing& Drawing() {
        if (!drawing)
            drawing.emplace(Request(chart.contentsRect().size()));
        return *drawing;
    }

    void Changed() {
        drawing.reset();
        chart.update();
    }

    void Describe() {
        QString said;
        if (const std::vector<ChartRow> drawn = DrawableRows(rows); drawn.empty()) {
            said = Chart::tr("No answers to show");
        } else {
            QStringList parts;
            for (const ChartRow& row : drawn)
                parts << (row.label + ' ' + ChartValueText(row.value, chart.locale())).trimmed();
            said = (drawn.size() == 1 ? Chart::tr("1 answer.")
                                      : Chart::tr("%1 answers.").arg(drawn.size())) +
                   ' ' + parts.join(", ") + '.';
        }
        chart.setAccessibleDescription(said);
    }

    // The chart as it stands on the screen, in finer pixels.
    QImage PictureAsShown() {
        const qreal fineness = std::max(PictureFineness, std::ceil(chart.devicePixelRatioF()));
        return Painted(Drawing(), chart.contentsRect().size(), fineness);
    }

    static QImage Painted(ChartDrawing& drawing, const QSize& size, qreal fineness) {
        QImage image(size * fineness, QImage::Format_RGB32);
        if (image.isNull())
            return image;
        QPainter painter(&image);
        painter.scale(fineness, fineness);
        drawing.Paint(painter);
        return image;
    }

    void ShowToolTip(const QHelpEvent& event) {
        const ChartPlan& plan = Drawing().Plan();
        const int row = plan.empty ? -1 : plan.RowAt(event.pos() - chart.contentsRect().topLeft());
        if (row < 0) {
            QToolTip::hideText();
            return;
        }
        // As rich text a long label is broken into lines; the label itself is never read as such.
        // The small area lets the tip follow from one bar to the next.
        QToolTip::showText(event.globalPos(), "<qt>" + plan.RowText(row).toHtmlEscaped() + "</qt>",
                           &chart, QRect(event.pos() - QPoint(2, 2), QSize(5, 5)));
    }

    void Copy() { QApplication::clipboard()->setImage(PictureAsShown()); }

    Chart& chart;
    ChartType type = ChartType::Bar3D;
    std::vector<ChartRow> rows;
    std::optional<ChartDrawing> drawing;
};

Chart::Chart(QWidget* parent) : QWidget(parent), state_(std::make_unique<State>(*this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Chart"));
    state_->Describe();
}

Chart::~Chart() = default;

ChartType Chart::chartType() const {
    return state_->type;
}

void Chart::SetChartType(ChartType type) {
    state_->type = type;
    state_->Changed();
}

void Chart::SetChartData(std::vector<ChartRow> rows) {
    state_->rows = std::move(rows);
    state_->Describe();
    state_->Changed();
}

const std::vector<ChartRow>& Chart::ChartData() const {
    return state_->rows;
}

QImage Chart::Picture(const QSize& size) {
    if (size.isEmpty())
        return {};
    ChartDrawing drawing(state_->Request(size));
    return State::Painted(drawing, size, 1);
}

QSize Chart::sizeHint() const {
    return {560, 360};
}

QSize Chart::minimumSizeHint() const {
    return {200, 150};
}

bool Chart::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        state_->ShowToolTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::ContentsRectChange)
        state_->Changed();
    return QWidget::event(event);
}

void Chart::changeEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::FontChange:
    case QEvent::LocaleChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        state_->Describe();
        state_->Changed();
        break;
    default:
        break;
    }
    QWidget::changeEvent(event);
}

void Chart::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* save = menu->addAction(tr("Save Picture..."));
    save->setEnabled(bool(SavePicture));
    connect(save, &QAction::triggered, this,
            [this] { RunHandler([this] { SavePicture(state_->PictureAsShown()); }); });
    QAction* copy = menu->addAction(tr("Copy"));
    copy->setShortcut(QKeySequence::Copy);
    connect(copy, &QAction::triggered, this, [this] { RunHandler([this] { state_->Copy(); }); });
    // The menu key points at nothing: the menu opens in the middle.
    menu->popup(event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(rect().center())
                                                               : event->globalPos());
    event->accept();
}

void Chart::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        RunHandler([this] { state_->Copy(); });
    else
        QWidget::keyPressEvent(event);
}

void Chart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (contentsRect() != rect())
        painter.fillRect(rect(), palette().base());
    painter.translate(contentsRect().topLeft());
    state_->Drawing().Paint(painter);
    painter.resetTransform();
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect().adjusted(1, 1, -1, -1);
        option.backgroundColor = palette().color(QPalette::Base);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void Chart::resizeEvent(QResizeEvent*) {
    state_->Changed();
}

} // namespace pollarix
