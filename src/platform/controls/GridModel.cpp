#include "platform/controls/GridModel.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

// After a failure that took longer than this, the other cells of a repaint are not tried.
constexpr qint64 LongestWaitMs = 200;

Qt::Alignment ToQt(int alignment) {
    switch (alignment) {
    case 3:
        return Qt::AlignHCenter | Qt::AlignTop;
    case 4:
        return Qt::AlignCenter;
    case 7:
        return Qt::AlignRight | Qt::AlignVCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

} // namespace

GridModel::GridModel() {
    cells_.SetRows(1);
    cells_.SetCols(1);
    shownCols_ = 1;
}

void GridModel::SetRows(int count) {
    const int body = std::max(0, count - 1);
    if (count < cells_.Rows())
        remembered_.clear();
    if (silent_ || body == shownRows_) {
        cells_.SetRows(count);
    } else if (body > shownRows_) {
        beginInsertRows({}, shownRows_, body - 1);
        cells_.SetRows(count);
        shownRows_ = body;
        endInsertRows();
    } else {
        beginRemoveRows({}, body, shownRows_ - 1);
        cells_.SetRows(count);
        shownRows_ = body;
        endRemoveRows();
    }
}

void GridModel::SetCols(int count) {
    if (count < cells_.Cols())
        remembered_.clear();
    if (silent_) {
        cells_.SetCols(count);
        return;
    }
    beginResetModel();
    cells_.SetCols(count);
    shownCols_ = count;
    endResetModel();
}

void GridModel::SetText(int row, int col, const QString& text) {
    cells_.SetText(row, col, text);
    TellChanged(row, col);
}

void GridModel::SetAlignment(int row, int col, int alignment) {
    cells_.SetAlignment(row, col, alignment);
    TellChanged(row, col);
}

void GridModel::SetColAlignment(int col, int alignment) {
    cells_.SetColAlignment(col, alignment);
    if (silent_)
        return;
    emit headerDataChanged(Qt::Horizontal, col, col);
    if (shownRows_ > 0)
        emit dataChanged(index(0, col), index(shownRows_ - 1, col));
}

void GridModel::SetProvider(std::function<QString(int row, int col)> provider) {
    provider_ = std::move(provider);
    remembered_.clear();
    failureTold_ = false;
    if (!silent_ && shownRows_ > 0 && shownCols_ > 0)
        emit dataChanged(index(0, 0), index(shownRows_ - 1, shownCols_ - 1));
}

void GridModel::SetHeadColumn(bool on) {
    headColumn_ = on;
}

void GridModel::TellChanged(int row, int col) {
    if (silent_)
        return;
    if (row == 0)
        emit headerDataChanged(Qt::Horizontal, col, col);
    else if (headColumn_ && col == 0)
        emit headerDataChanged(Qt::Vertical, row - 1, row - 1);
    else
        emit dataChanged(index(row - 1, col), index(row - 1, col));
}

void GridModel::Speak() {
    beginResetModel();
    silent_ = false;
    shownRows_ = BodyRows();
    shownCols_ = cells_.Cols();
    endResetModel();
}

QString GridModel::Text(int row, int col) const {
    if (const QString own = cells_.Text(row, col); !own.isNull())
        return own;
    if (!provider_ || row == 0)
        return {};
    if (const QStringList* texts = remembered_.object(row);
        texts && col < texts->size() && !texts->at(col).isNull())
        return texts->at(col);
    QString text = provider_(row, col);
    if (text.isNull())
        text = QString("");
    // The provider may have asked for other cells meanwhile, so the row is looked up again.
    QStringList* texts = remembered_.object(row);
    if (!texts) {
        texts = new QStringList; // the cache owns it
        remembered_.insert(row, texts);
    }
    if (texts->size() <= col)
        texts->resize(cells_.Cols());
    (*texts)[col] = text;
    return text;
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shownRows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shownCols_;
}

QVariant GridModel::Shown(int row, int col, int role) const {
    if (row >= cells_.Rows() || col >= cells_.Cols())
        return {}; // silent, and smaller than the views know
    if (role == Qt::TextAlignmentRole)
        return QVariant(ToQt(cells_.Alignment(row, col)));
    if (role != Qt::DisplayRole)
        return {};
    if (waitedInVain_)
        return {};
    QElapsedTimer took;
    took.start();
    try {
        return Text(row, col);
    } catch (...) {
        // Someone else holds what the texts are read from: to wait again for each cell on the
        // screen would stop the program for minutes.
        if (took.elapsed() > LongestWaitMs) {
            waitedInVain_ = true;
            QTimer::singleShot(0, this, [this] { waitedInVain_ = false; });
        }
        // This is the middle of a repaint. The first failure is shown when that is over; one for
        // each cell on the screen would bury the user in boxes.
        if (!std::exchange(failureTold_, true)) {
            QTimer::singleShot(0, [failure = std::current_exception()] {
                RunHandler([&] { std::rethrow_exception(failure); });
            });
        }
        return {};
    }
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    return index.isValid() ? Shown(index.row() + 1, index.column(), role) : QVariant();
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section < 0 || (orientation == Qt::Vertical && !headColumn_))
        return {};
    return orientation == Qt::Horizontal ? Shown(0, section, role) : Shown(section + 1, 0, role);
}

} // namespace pollarix
