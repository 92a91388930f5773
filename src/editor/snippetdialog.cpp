// SPDX-License-Identifier: MIT
#include "editor/snippetdialog.h"

#include "editor/snippetmanager.h"
#include "editor/snippetxml.h"
#include "frame/interface.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QSpinBox>
#include <QVBoxLayout>
#include <array>

namespace Vela {

namespace {

// The host's texts for an XML file that cannot be read.
enum HostText { BrokenXmlTitle = 0, BrokenXmlMessage = 1 };

constexpr int numberLimit = 99999999;

QString translated(const QString &text, const QString &snippet)
{
    return SnippetManager::tr(text.toUtf8().constData(), snippet.toUtf8().constData());
}

// Returns null if the titles are not as many as the values.
QComboBox *makeItems(const FieldElement &field, const QString &snippet)
{
    const QStringList values = FieldElement::parts(field.value);
    const QStringList titles = FieldElement::parts(field.valueTitle);
    if (values.size() != titles.size())
        return nullptr;
    auto *const items = new QComboBox;
    for (int i = 0; i < values.size(); ++i)
        items->addItem(translated(titles.at(i), snippet), values.at(i));
    return items;
}

template <typename SpinBox>
SpinBox *makeNumber()
{
    auto *const number = new SpinBox;
    number->setRange(-numberLimit, numberLimit);
    return number;
}

// Returns null for a field that has no widget.
QWidget *makeWidget(const FieldElement &field, const QString &snippet)
{
    if (field.hasItems())
        return makeItems(field, snippet);
    if (field.type == SnipFieldType::Text)
        return new QLineEdit;
    if (field.type == SnipFieldType::Integer)
        return makeNumber<QSpinBox>();
    if (field.type == SnipFieldType::Float)
        return makeNumber<QDoubleSpinBox>();
    return nullptr;
}

// Returns the fields' widgets, in the fields' order.
QVector<QWidget *> addWidgets(QGridLayout *grid, const Snippet &snippet, const QString &name)
{
    std::array<int, FieldElement::ColumnCount> nextRow = {};
    QVector<QWidget *> widgets;
    for (const FieldElement &field : snippet.fields) {
        QWidget *const widget = makeWidget(field, name);
        if (!widget)
            continue;
        const QString title = translated(field.title, name);
        auto *const label = new QLabel(title);
        label->setTextFormat(Qt::PlainText);
        widget->setObjectName(field.name);
        widget->setAccessibleName(title);
        int &row = nextRow[size_t(field.column)];
        grid->addWidget(label, row, field.column);
        grid->addWidget(widget, row + 1, field.column);
        row += 2;
        widgets.append(widget);
    }
    return widgets;
}

QString valueOf(const QWidget *widget)
{
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->text();
    if (const auto *number = qobject_cast<const QSpinBox *>(widget))
        return QString::number(number->value());
    if (const auto *number = qobject_cast<const QDoubleSpinBox *>(widget))
        return QString::number(number->value(), 'f', QLocale::FloatingPointShortest);
    return qobject_cast<const QComboBox *>(widget)->currentData().toString();
}

QString filled(QString code, const QVector<QWidget *> &widgets)
{
    for (const QWidget *widget : widgets)
        code.replace(QLatin1Char('@') + widget->objectName(), valueOf(widget));
    return code;
}

} // namespace

void showSnippetError(const Interface &host, const Snippet &snippet)
{
    if (snippet.error.isEmpty())
        return;
    QMessageBox::critical(host.mainWindow(), host.translate(BrokenXmlTitle),
                          host.translate(BrokenXmlMessage)
                              .arg(snippet.error, QString::number(snippet.errorLine),
                                   QString::number(snippet.errorColumn)),
                          QMessageBox::Ok);
}

QString askSnippetValues(const Interface &host, const Snippet &snippet, const QString &name)
{
    showSnippetError(host, snippet);
    // The main window may go while the dialog waits, and takes it along.
    const QPointer<QDialog> dialog(new QDialog(host.mainWindow()));
    dialog->setWindowTitle(name);
    auto *const layout = new QVBoxLayout(dialog);
    auto *const grid = new QGridLayout;
    layout->addLayout(grid);
    const QVector<QWidget *> widgets = addWidgets(grid, snippet, name);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    dialog->adjustSize();

    QString code;
    if (widgets.isEmpty() || dialog->exec() == QDialog::Accepted)
        code = filled(snippet.code, widgets);
    delete dialog;
    return code;
}

} // namespace Vela
