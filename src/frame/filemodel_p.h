// SPDX-License-Identifier: MIT
#pragma once

#include <QStringListModel>

namespace Vela {

/// The names in one folder, for a completer: it shows them bare, and completes with the folder,
/// the prefix, in front.
class FileModel : public QStringListModel
{
    Q_OBJECT

public:
    using QStringListModel::QStringListModel;

    void setPrefix(const QString &prefix);

    QVariant data(const QModelIndex &index, int role) const override;

private:
    QString m_prefix;
};

} // namespace Vela
