#include "shell/help/HelpWindow.h"

#include <QAction>
#include <QApplication>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWindow>

#include "shell/help/FoundTopicDelegate.h"
#include "shell/help/HelpBrowser.h"

namespace pollarix {

namespace {

enum Tab { ContentsTab, IndexTab, SearchTab };

QString FoundText(qsizetype count) {
    if (count == 0)
        return "No topic found.";
    return count == 1 ? QString("1 topic found.") : QString("%1 topics found.").arg(count);
}

} // namespace

HelpWindow::HelpWindow(QHelpEngine& engine) : engine_(engine), search_(engine) {
    setObjectName("HelpWindow");
    setWindowTitle("Pollarix Help");
    setWindowIcon(QIcon(":/icons/help.svg"));
    // The program ends with its main window, whether or not somebody is reading.
    setAttribute(Qt::WA_QuitOnClose, false);

    browser_ = new HelpBrowser(engine, this);
    browser_->setObjectName("Browser");
    browser_->setAccessibleName("Topic");
    browser_->setFrameShape(QFrame::NoFrame);
    contents_ = engine.contentWidget();
    index_ = engine.indexWidget();
    tabs_ = new QTabWidget(this);
    tabs_->setObjectName("Tabs");
    tabs_->setDocumentMode(true);
    tabs_->addTab(BuildContents(), "&Contents");
    tabs_->addTab(BuildIndex(), "&Index");
    tabs_->addTab(BuildSearch(), "&Search");

    auto* const splitter = new QSplitter(this);
    splitter->addWidget(tabs_);
    splitter->addWidget(browser_);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({270, 730});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    BuildToolbar();
    resize(QSize(1000, 700).boundedTo(screen()->availableSize()));

    // Whoever calls up a tab wants to use it, but for who is walking along the tabs with the arrow
    // keys.
    connect(tabs_, &QTabWidget::currentChanged, this, [this](int tab) {
        if (!tabs_->tabBar()->hasFocus())
            InputOf(tab)->setFocus();
    });
    // The browser says so before it has turned to the page itself.
    // With the page it tells: its own source() is still the one before.
    connect(browser_, &QTextBrowser::sourceChanged, this, &HelpWindow::ShowPlaceInContents);
    connect(engine.contentModel(), &QHelpContentModel::contentsCreated, this, [this] {
        contents_->expandToDepth(0);
        ShowPlaceInContents(browser_->source());
    });
}

void HelpWindow::BuildToolbar() {
    auto* const bar = addToolBar("Navigation");
    bar->setObjectName("Navigation");
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](QStyle::StandardPixmap icon, const QString& text, const char* keys) {
        QAction* const action = bar->addAction(style()->standardIcon(icon), text);
        action->setShortcut(QKeySequence(keys));
        action->setToolTip(QString("%1 (%2)").arg(text, action->shortcut().toString()));
        return action;
    };
    QAction* const back = add(QStyle::SP_ArrowBack, "Back", "Alt+Left");
    QAction* const forward = add(QStyle::SP_ArrowForward, "Forward", "Alt+Right");
    QAction* const home = add(QStyle::SP_DirHomeIcon, "First Page", "Alt+Home");
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, browser_, &QTextBrowser::forward);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(home, &QAction::triggered, this, [this] {
        const QList<QHelpLink> first = engine_.documentsForIdentifier("topic.1");
        if (!first.isEmpty())
            Open(first.first().url);
    });
}

QWidget* HelpWindow::BuildContents() {
    contents_->setObjectName("Contents");
    contents_->setAccessibleName("Contents");
    contents_->setHeaderHidden(true);
    contents_->setFrameShape(QFrame::NoFrame);
    connect(contents_, &QHelpContentWidget::linkActivated, this, &HelpWindow::Open);
    return contents_;
}

QWidget* HelpWindow::BuildIndex() {
    auto* const page = new QWidget(this);
    txtIndex_ = new QLineEdit(page);
    txtIndex_->setObjectName("txtIndex");
    txtIndex_->setClearButtonEnabled(true);
    auto* const label = new QLabel("&Look for:", page);
    label->setBuddy(txtIndex_);
    index_->setObjectName("Index");
    index_->setAccessibleName("Index");
    auto* const column = new QVBoxLayout(page);
    column->addWidget(label);
    column->addWidget(txtIndex_);
    column->addWidget(index_, 1);
    // What F1 asks for has an entry of its own, without a name: an empty line before all others.
    connect(index_->model(), &QAbstractItemModel::modelReset, index_, [this] {
        for (int row = 0; row < index_->model()->rowCount(); ++row)
            index_->setRowHidden(row, index_->model()->index(row, 0).data().toString().isEmpty());
    });
    connect(txtIndex_, &QLineEdit::textChanged, this,
            [this](const QString& text) { index_->filterIndices(text); });
    connect(txtIndex_, &QLineEdit::returnPressed, index_, &QHelpIndexWidget::activateCurrentItem);
    connect(index_, &QHelpIndexWidget::documentActivated, this,
            [this](const QHelpLink& document) { Open(document.url); });
    return page;
}

QWidget* HelpWindow::BuildSearch() {
    auto* const page = new QWidget(this);
    txtSearch_ = new QLineEdit(page);
    txtSearch_->setObjectName("txtSearch");
    txtSearch_->setClearButtonEnabled(true);
    auto* const label = new QLabel("&Look for:", page);
    label->setBuddy(txtSearch_);
    auto* const cmdSearch = new QPushButton("&Find", page);
    cmdSearch->setObjectName("cmdSearch");
    lblFound_ = new QLabel(page);
    lblFound_->setObjectName("lblFound");
    lstFound_ = new QListWidget(page);
    lstFound_->setObjectName("lstFound");
    lstFound_->setAccessibleName("Topics found");
    lstFound_->setItemDelegate(new FoundTopicDelegate(lstFound_));
    lstFound_->setResizeMode(QListView::Adjust);
    // Always there: its coming would leave the topics too little room for their lines.
    lstFound_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    lstFound_->setVerticalScrollMode(QListView::ScrollPerPixel);
    lstFound_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const row = new QHBoxLayout;
    row->addWidget(txtSearch_, 1);
    row->addWidget(cmdSearch);
    auto* const column = new QVBoxLayout(page);
    column->addWidget(label);
    column->addLayout(row);
    column->addWidget(lblFound_);
    column->addWidget(lstFound_, 1);

    connect(cmdSearch, &QPushButton::clicked, this, &HelpWindow::Search);
    connect(txtSearch_, &QLineEdit::returnPressed, this, &HelpWindow::Search);
    const auto open = [this](const QListWidgetItem* item) {
        Open(item->data(Qt::UserRole).toUrl());
    };
    connect(lstFound_, &QListWidget::itemClicked, this, open);
    connect(lstFound_, &QListWidget::itemActivated, this, open);
    return page;
}

void HelpWindow::Search() {
    const std::vector<FoundTopic> topics = search_.Search(txtSearch_->text());
    lstFound_->clear();
    for (const FoundTopic& topic : topics) {
        auto* const item = new QListWidgetItem(topic.title + '\n' + topic.extract, lstFound_);
        item->setData(Qt::UserRole, topic.address);
        item->setData(Qt::AccessibleTextRole, topic.title);
    }
    lstFound_->setCurrentRow(0);
    lblFound_->setText(FoundText(static_cast<qsizetype>(topics.size())));
}

QWidget* HelpWindow::InputOf(int tab) const {
    if (tab == IndexTab)
        return txtIndex_;
    if (tab == SearchTab)
        return txtSearch_;
    return contents_;
}

QUrl HelpWindow::Address() const {
    return browser_->source();
}

void HelpWindow::Open(const QUrl& address) {
    browser_->setSource(address);
}

void HelpWindow::ShowPlaceInContents(const QUrl& page) {
    const QModelIndex place = contents_->indexOf(page);
    if (!place.isValid())
        return;
    contents_->setCurrentIndex(place);
    contents_->scrollTo(place);
}

void HelpWindow::ShowTopic(const QUrl& address) {
    Open(address);
    BringToFront();
    browser_->setFocus();
}

void HelpWindow::ShowIndex() {
    tabs_->setCurrentIndex(IndexTab);
    BringToFront();
    txtIndex_->setFocus();
    txtIndex_->selectAll();
}

void HelpWindow::ShowSearch() {
    tabs_->setCurrentIndex(SearchTab);
    BringToFront();
    txtSearch_->setFocus();
    txtSearch_->selectAll();
}

void HelpWindow::BringToFront() {
    if (Address().isEmpty()) {
        // Index and search open beside the first page.
        const QList<QHelpLink> first = engine_.documentsForIdentifier("topic.1");
        if (!first.isEmpty())
            Open(first.first().url);
    }
    winId(); // so that there is a window to place before it shows
    StandAboveDialogs();
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}

void HelpWindow::StandAboveDialogs() {
    // A dialog takes the input of all windows but those that belong to it. So this one belongs to
    // whatever dialog waits, for as long as it waits.
    const QWidget* const dialog = QApplication::activeModalWidget();
    if (QWindow* const own = windowHandle())
        own->setTransientParent(dialog ? dialog->window()->windowHandle() : nullptr);
}

bool HelpWindow::event(QEvent* event) {
    // After the windows have settled who is blocked by whom.
    if (event->type() == QEvent::WindowBlocked)
        QMetaObject::invokeMethod(
            this, [this] { StandAboveDialogs(); }, Qt::QueuedConnection);
    return QMainWindow::event(event);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        close();
    else
        QMainWindow::keyPressEvent(event);
}

} // namespace pollarix
