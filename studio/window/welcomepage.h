// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QAction;
class QLabel;
class QListWidget;
class QListWidgetItem;

namespace Studio {

class RecentProjects;

/// What the window shows while no project is open: the first steps and the recent projects.
class WelcomePage : public QWidget
{
    Q_OBJECT

public:
    WelcomePage(RecentProjects &recent, const QList<QAction *> &firstSteps,
                QWidget *parent = nullptr);

    QListWidget *list() const;
    /// Shows a line above the steps; an empty one shows none.
    void setNote(const QString &text);

Q_SIGNALS:
    void projectWanted(const QString &path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fill();
    void showMenu(const QPoint &place);
    void removeCurrent();

    RecentProjects &m_recent;
    QListWidget *m_list;
    QLabel *m_nothing;
    QLabel *m_note;
};

} // namespace Studio
