// SPDX-License-Identifier: MIT
#include "frame/itemmodel.h"

namespace Vela {

ItemModel::ItemModel(QObject *parent)
    : QAbstractItemModel(parent)
{
}

ItemModel::~ItemModel() = default;

} // namespace Vela
