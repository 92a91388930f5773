// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QTabBar>

class QToolButton;

namespace Studio {

/// The bar of the files that the user has looked at: a tab each, with a mark on unsaved changes.
/// Files are named by their paths relative to the project's root.
class FileTabs : public QTabBar
{
    Q_OBJECT

public:
    explicit FileTabs(QWidget *parent = nullptr);

    /// Makes the tab of a file the current one, added behind the current tab if there is none; an
    /// empty path stands for no file.
    void show(const QString &path);
    void removeFile(const QString &path);
    void clear();
    /// Marks these files as modified, and no others.
    void setModified(const QStringList &paths);
    QStringList paths() const;
    /// Returns an empty path if there is no tab.
    QString currentPath() const;
    /// Returns the paths with the one that was current last in front; those that never were come
    /// last.
    QStringList lastUsed() const;
    /// Has tabs of these files only.
    void restore(const QStringList &paths);

    /// Closes the current tab and goes to its neighbour.
    void closeCurrent();
    /// Goes to the tab so many places further, around the ends of the bar.
    void goOn(int steps);

Q_SIGNALS:
    /// The user closed the tab of a file.
    void closed(const QString &path);
    /// The user chose a file; an empty path stands for none, as the last tab was closed.
    void fileChosen(const QString &path);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QString path(int tab) const;
    int find(const QString &path) const;
    QToolButton *makeCross();
    int insert(int tab, const QString &path);
    void close(int tab);
    void remove(int tab);
    void nameTabs();

    QStringList m_modified;
    QStringList m_used; ///< the last one in front
};

} // namespace Studio
