// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QAbstractListModel>
#include <QStringList>

namespace Vela {

class Interface;

/// The code snippets of the current engine, as the list that combo boxes show. There is one object
/// for the process.
class VELA_EXPORT SnippetManager : public QAbstractListModel
{
    Q_OBJECT

public:
    /// Returns the object of the process, which is made at the first call. Callers do not own it.
    static SnippetManager *instance();

    /// Lists the files of a folder; their complete base names are the names of the snippets. An
    /// empty name is no folder, and has none.
    void load(const QString &folder);
    /// Returns the folder that was listed last.
    QString folder() const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// Returns the translated name for Qt::DisplayRole.
    QVariant data(const QModelIndex &index, int role) const override;

    /// Returns an empty name for an index out of range.
    QString name(unsigned int index) const;
    /// Asks for the values of the snippet's fields and returns its code with them. Empty if the
    /// user gives up or the file cannot be read.
    QString text(Interface &host, unsigned int index) const;
    /// Returns a Qt translation source of the display texts of a snippet.
    static QString translationSource(Interface &host, const QString &xml, const QString &name);

private:
    explicit SnippetManager(QObject *parent = nullptr);

    QString m_folder;
    QStringList m_names;
};

} // namespace Vela
