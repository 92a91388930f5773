// SPDX-License-Identifier: MIT
#include "studio/window/welcomepage.h"

#include "studio/window/notelabel.h"
#include "studio/window/recentprojects.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace Studio {

namespace {

constexpr int ColumnWidth = 560;
constexpr int IconSize = 64;

QLabel *heading(const QString &text, qreal factor)
{
    auto *label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(factor < 1.5);
    label->setFont(font);
    return label;
}

QToolButton *stepButton(QAction *action)
{
    auto *button = new QToolButton;
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setMinimumHeight(36);
    return button;
}

QLayout *titleRow()
{
    auto *icon = new QLabel;
    icon->setPixmap(QIcon(QStringLiteral(":/studio/icons/vela-128.png")).pixmap(IconSize));
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(heading(QStringLiteral("Vela Studio"), 2.0));
    auto *subtitle =
        new QLabel(WelcomePage::tr("Texts, animations, sprites and sounds of 2D games"));
    words->addWidget(subtitle);
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(icon);
    row->addLayout(words);
    row->addStretch();
    return row;
}

} // namespace

WelcomePage::WelcomePage(RecentProjects &recent, const QList<QAction *> &firstSteps,
                         QWidget *parent)
    : QWidget(parent)
    , m_recent(recent)
    , m_list(new QListWidget)
    , m_nothing(new NoteLabel(tr("Projects that you open are listed here.")))
    , m_note(new QLabel)
{
    m_note->setObjectName(QStringLiteral("welcomeNote"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setWordWrap(true);
    m_note->hide();
    auto *steps = new QHBoxLayout;
    for (QAction *action : firstSteps)
        steps->addWidget(stepButton(action));
    steps->addStretch();
    auto *hint = new NoteLabel(tr("Or drop a project's folder onto this window."));

    m_list->setObjectName(QStringLiteral("recentProjects"));
    m_list->setAccessibleName(tr("Recent projects"));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setSpacing(3);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->installEventFilter(this);
    connect(m_list, &QListWidget::itemActivated, this, [this](const QListWidgetItem *item) {
        Q_EMIT projectWanted(item->data(Qt::UserRole).toString());
    });
    connect(m_list, &QListWidget::customContextMenuRequested, this, &WelcomePage::showMenu);

    auto *column = new QWidget;
    column->setMaximumWidth(ColumnWidth);
    auto *layout = new QVBoxLayout(column);
    layout->setSpacing(12);
    layout->addSpacing(48);
    layout->addLayout(titleRow());
    layout->addSpacing(8);
    layout->addWidget(m_note);
    layout->addLayout(steps);
    layout->addWidget(hint);
    layout->addSpacing(16);
    layout->addWidget(heading(tr("Recent projects"), 1.1));
    layout->addWidget(m_nothing);
    layout->addWidget(m_list, 100);
    layout->addStretch(1);
    auto *centre = new QHBoxLayout(this);
    centre->addStretch(1);
    centre->addWidget(column, 4);
    centre->addStretch(1);

    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    connect(&recent, &RecentProjects::changed, this, &WelcomePage::fill);
    fill();
}

QListWidget *WelcomePage::list() const
{
    return m_list;
}

void WelcomePage::setNote(const QString &text)
{
    m_note->setText(text);
    m_note->setVisible(!text.isEmpty());
}

bool WelcomePage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete) {
        removeCurrent();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void WelcomePage::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Missing projects are listed in a colour of the palette.
    if (event->type() == QEvent::PaletteChange)
        fill();
}

void WelcomePage::fill()
{
    m_list->clear();
    const QStringList paths = m_recent.paths();
    for (const QString &path : paths) {
        const QString name = QFileInfo(path).fileName();
        const bool there = RecentProjects::isThere(path);
        const QString place = QDir::toNativeSeparators(path);
        auto *item = new QListWidgetItem(QIcon(QStringLiteral(":/studio/icons/icon_project.png")),
                                         name + QLatin1Char('\n') + place, m_list);
        item->setData(Qt::UserRole, path);
        item->setToolTip(there ? place : tr("%1 is not there any more").arg(place));
        if (!there)
            item->setForeground(palette().brush(QPalette::Disabled, QPalette::Text));
    }
    m_list->setVisible(!paths.isEmpty());
    m_nothing->setVisible(paths.isEmpty());
}

void WelcomePage::showMenu(const QPoint &place)
{
    if (!m_list->itemAt(place))
        return;
    QMenu menu(this);
    connect(menu.addAction(tr("Open")), &QAction::triggered, this,
            [this] { Q_EMIT projectWanted(m_list->currentItem()->data(Qt::UserRole).toString()); });
    connect(menu.addAction(tr("Remove from the list")), &QAction::triggered, this,
            &WelcomePage::removeCurrent);
    menu.exec(m_list->viewport()->mapToGlobal(place));
}

void WelcomePage::removeCurrent()
{
    if (const QListWidgetItem *item = m_list->currentItem())
        m_recent.remove(item->data(Qt::UserRole).toString());
}

} // namespace Studio
