// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QPointer>
#include <QVector>

class QGridLayout;
class QToolButton;

namespace Vela {

class PropertyEdit;
class PropertyProvider;
class PropertyValueEdit;
class Section;

/// The rows of a PropertyEdit.
class PropertyEditPrivate : public QObject
{
    Q_OBJECT

public:
    struct Row
    {
        QLabel *label = nullptr;
        QPointer<QWidget> widget;         ///< null for a kind that the registry does not have
        QPointer<PropertyValueEdit> edit; ///< what made the widget
        QToolButton *foldButton = nullptr;
        int sectionIndex = 0;
        bool foldable = true;
    };

    explicit PropertyEditPrivate(PropertyEdit *form);
    ~PropertyEditPrivate() override;

    /// Empties the forms that show \a gone.
    static void forget(const PropertyProvider *gone);

    void clear();
    void build();
    void readValue(int index);
    void nameRow(const Row &row, const QString &name);

    PropertyProvider *provider = nullptr;
    QVector<Section *> sections;
    QVector<Row> rows;

public Q_SLOTS:
    void sectionToggled(bool expanded);
    void foldClicked();

private:
    Section *beginSection(int index);
    void endSection();
    void addRow(int index);
    void addEditor(Row *row, int index);
    void showStates();
    void orderTabs(QWidget *before);

    PropertyEdit *q;
    QGridLayout *grid = nullptr; ///< of the section that is being built
    bool building = false;
};

} // namespace Vela
