// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QAbstractItemModel>

namespace Vela {

/// The common base of the library's own item models.
class VELA_EXPORT ItemModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit ItemModel(QObject *parent = nullptr);
    ~ItemModel() override;
};

} // namespace Vela
