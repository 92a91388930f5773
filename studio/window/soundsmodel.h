// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QPointer>

namespace Vela {
class Sound;
class Sounds;
} // namespace Vela

namespace Studio {

/// The sounds of a file as a table of their identifiers, durations and formats.
class SoundsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Identifier, Duration, Format, ColumnCount };

    explicit SoundsModel(QObject *parent = nullptr);

    /// Shows \a sounds until the next call or their end; null shows none.
    void setSounds(Vela::Sounds *sounds);
    Vela::Sounds *sounds() const;
    /// Returns null for an invalid index.
    Vela::Sound *sound(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void onChanged(bool count);
    void reset();

    QPointer<Vela::Sounds> m_sounds;
    int m_count = 0;
};

} // namespace Studio
