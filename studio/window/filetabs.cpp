// SPDX-License-Identifier: MIT
#include "studio/window/filetabs.h"

#include <QDir>
#include <QHash>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QToolButton>

namespace Studio {

namespace {

QString fileName(const QString &path)
{
    return path.section(QLatin1Char('/'), -1);
}

} // namespace

FileTabs::FileTabs(QWidget *parent)
    : QTabBar(parent)
{
    setObjectName(QStringLiteral("fileTabs"));
    setAccessibleName(tr("Open files"));
    setDocumentMode(true);
    setDrawBase(false);
    setExpanding(false);
    setMovable(true);
    setElideMode(Qt::ElideNone);
    setUsesScrollButtons(true);
    connect(this, &QTabBar::currentChanged, this, [this](int tab) {
        if (tab >= 0)
            Q_EMIT fileChosen(path(tab));
    });
}

QString FileTabs::path(int tab) const
{
    return tabData(tab).toString();
}

int FileTabs::find(const QString &path) const
{
    for (int tab = 0; tab < count(); ++tab) {
        if (this->path(tab) == path)
            return tab;
    }
    return -1;
}

int FileTabs::insert(int tab, const QString &path)
{
    const int at = insertTab(tab, fileName(path));
    setTabData(at, path);
    setTabToolTip(at, QDir::toNativeSeparators(path));
    setTabButton(at, QTabBar::RightSide, makeCross());
    return at;
}

// The style's own cross cannot be seen in the dark, and a style sheet would keep the widgets round
// the bar from another palette.
QToolButton *FileTabs::makeCross()
{
    auto *cross = new QToolButton;
    cross->setIcon(QIcon(QStringLiteral(":/studio/icons/close.png")));
    cross->setIconSize(QSize(12, 12));
    cross->setAutoRaise(true);
    cross->setFocusPolicy(Qt::NoFocus);
    cross->setToolTip(tr("Close this file"));
    cross->setAccessibleName(tr("Close this file"));
    connect(cross, &QToolButton::clicked, this, [this, cross] {
        int tab = 0;
        while (tabButton(tab, QTabBar::RightSide) != cross)
            ++tab;
        close(tab);
    });
    return cross;
}

void FileTabs::show(const QString &path)
{
    const QSignalBlocker quiet(this);
    if (path.isEmpty())
        return;
    int tab = find(path);
    if (tab < 0) {
        tab = insert(currentIndex() + 1, path);
        nameTabs();
    }
    setCurrentIndex(tab);
    m_used.removeAll(path);
    m_used.prepend(path);
}

void FileTabs::removeFile(const QString &path)
{
    const QSignalBlocker quiet(this);
    const int tab = find(path);
    if (tab < 0)
        return;
    remove(tab);
    nameTabs();
}

void FileTabs::clear()
{
    const QSignalBlocker quiet(this);
    while (count() > 0)
        remove(count() - 1);
}

void FileTabs::setModified(const QStringList &paths)
{
    if (paths == m_modified)
        return;
    m_modified = paths;
    nameTabs();
}

QStringList FileTabs::paths() const
{
    QStringList paths;
    for (int tab = 0; tab < count(); ++tab)
        paths.append(path(tab));
    return paths;
}

QString FileTabs::currentPath() const
{
    return path(currentIndex());
}

QStringList FileTabs::lastUsed() const
{
    QStringList all = m_used + paths();
    all.removeDuplicates();
    return all;
}

void FileTabs::restore(const QStringList &paths)
{
    clear();
    const QSignalBlocker quiet(this);
    for (const QString &path : paths)
        insert(count(), path);
    nameTabs();
}

void FileTabs::closeCurrent()
{
    close(currentIndex());
}

void FileTabs::goOn(int steps)
{
    if (count() > 0)
        setCurrentIndex((currentIndex() + steps + count()) % count());
}

void FileTabs::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton)
        close(tabAt(event->pos()));
    else
        QTabBar::mouseReleaseEvent(event);
}

void FileTabs::close(int tab)
{
    if (tab < 0)
        return;
    const bool last = count() == 1;
    const QString path = this->path(tab);
    remove(tab);
    nameTabs();
    if (last)
        Q_EMIT fileChosen(QString());
    Q_EMIT closed(path);
}

void FileTabs::remove(int tab)
{
    m_used.removeAll(path(tab));
    removeTab(tab);
}

// Files of one name are told apart by their folders.
void FileTabs::nameTabs()
{
    QHash<QString, int> uses;
    for (int tab = 0; tab < count(); ++tab)
        ++uses[fileName(path(tab))];
    for (int tab = 0; tab < count(); ++tab) {
        const QString file = path(tab);
        QString text =
            uses.value(fileName(file)) > 1 ? QDir::toNativeSeparators(file) : fileName(file);
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        const bool modified = m_modified.contains(file);
        setTabText(tab, modified ? QString(text + QStringLiteral(" \u25CF")) : text);
    }
}

} // namespace Studio
