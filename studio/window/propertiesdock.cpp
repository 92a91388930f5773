// SPDX-License-Identifier: MIT
#include "studio/window/propertiesdock.h"

#include "frame/propertyitem.h"
#include "frame/textcodecs.h"
#include "project/projectfile.h"
#include "studio/window/notelabel.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace Studio {

namespace {

/// Edits the property "Encoding" by choosing among the encodings, and all others as their types
/// want it.
class PropertyDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override
    {
        if (!isEncoding(index))
            return QStyledItemDelegate::createEditor(parent, option, index);
        auto *box = new QComboBox(parent);
        for (int i = 0; i < Vela::TextCodecs::count(); ++i)
            box->addItem(Vela::TextCodecs::displayName(i),
                         QString::fromLatin1(Vela::TextCodecs::name(i)));
        return box;
    }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
    }

    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        auto *box = qobject_cast<QComboBox *>(editor);
        if (!box || !isEncoding(index))
            return QStyledItemDelegate::setEditorData(editor, index);
        const QByteArray name = index.data(Qt::EditRole).toString().toLatin1();
        box->setCurrentIndex(Vela::TextCodecs::index(name.constData()));
    }

    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override
    {
        const auto *box = qobject_cast<QComboBox *>(editor);
        if (!box || !isEncoding(index))
            return QStyledItemDelegate::setModelData(editor, model, index);
        model->setData(index, box->currentData());
    }

private:
    static bool isEncoding(const QModelIndex &index)
    {
        return index.sibling(index.row(), PropertiesModel::NameColumn).data().toString()
            == QLatin1String("Encoding");
    }
};

} // namespace

PropertiesDock::PropertiesDock(QWidget *parent)
    : QDockWidget(tr("File"), parent)
    , m_view(new QTreeView)
    , m_nothing(new NoteLabel(tr("No properties")))
{
    setObjectName(QStringLiteral("propertiesDock"));
    m_nothing->setAlignment(Qt::AlignCenter);
    m_view->setObjectName(QStringLiteral("properties"));
    m_view->setAccessibleName(tr("Properties"));
    m_view->setModel(&m_model);
    m_view->setItemDelegateForColumn(PropertiesModel::ValueColumn, new PropertyDelegate(m_view));
    m_view->setRootIsDecorated(false);
    m_view->setAlternatingRowColors(true);
    m_view->setUniformRowHeights(true);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                            | QAbstractItemView::SelectedClicked
                            | QAbstractItemView::AnyKeyPressed);
    m_view->header()->resizeSection(PropertiesModel::NameColumn, 110);

    auto *content = new QWidget;
    auto *layout = new QStackedLayout(content);
    layout->addWidget(m_nothing);
    layout->addWidget(m_view);
    setWidget(content);
    const auto showContent = [this, layout] {
        layout->setCurrentWidget(m_model.rowCount() > 0 ? static_cast<QWidget *>(m_view)
                                                        : m_nothing);
    };
    connect(&m_model, &PropertiesModel::modelReset, content, showContent);
}

// The same one again keeps the row that is chosen.
void PropertiesDock::setItem(Vela::PropertyItem *item)
{
    if (item && item == m_model.item())
        m_model.refresh();
    else
        m_model.setItem(item);
}

PropertiesModel *PropertiesDock::model()
{
    return &m_model;
}

QTreeView *PropertiesDock::view() const
{
    return m_view;
}

} // namespace Studio
