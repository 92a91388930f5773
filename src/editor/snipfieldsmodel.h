// SPDX-License-Identifier: MIT
#pragma once

#include "editor/snipfield.h"

#include <QAbstractListModel>

namespace Vela {

/// The fields of the snippet that is being edited, as the list of their titles.
class SnipFieldsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit SnipFieldsModel(QObject *parent = nullptr);
    ~SnipFieldsModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const SnipFields &fields() const;
    void append(std::unique_ptr<SnipField> field);
    /// Does nothing for a row that does not exist.
    void remove(int row);
    /// Exchanges a row with the one above it. Does nothing for row 0 and one that does not exist.
    void moveUp(int row);

private:
    bool hasRow(int row) const;

    SnipFields m_fields;
};

} // namespace Vela
