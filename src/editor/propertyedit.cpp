// SPDX-License-Identifier: MIT
#include "editor/propertyedit.h"

#include "editor/foldbutton.h"
#include "editor/multivaluewidget.h"
#include "editor/propertyedit_p.h"
#include "editor/propertyprovider.h"
#include "editor/propertyvalueregistry_p.h"
#include "editor/section.h"
#include "frame/interface.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDial>
#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <QSlider>
#include <QSpacerItem>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace Vela {

namespace {

const int labelWidth = 100; // pixels
const int foldButtonSize = 12;
const int sectionSpacing = 8;
const int columnSpacing = 8;
const int rowSpacing = 12;
const int dialogCheckInterval = 100; // milliseconds

enum Column { FoldColumn, LabelColumn, LineColumn, EditorColumn, SpacerColumn };

/// The forms that live; null while the program's static objects end.
Q_GLOBAL_STATIC(QVector<PropertyEditPrivate *>, liveForms)

/// Lets the wheel change only the field that has the focus; from others it goes on to what
/// scrolls the form.
class WheelFilter : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel || static_cast<QWidget *>(watched)->hasFocus())
            return false;
        event->ignore();
        return true;
    }
};

bool turnsWithTheWheel(const QWidget *widget)
{
    return qobject_cast<const QAbstractSpinBox *>(widget) || qobject_cast<const QComboBox *>(widget)
        || qobject_cast<const QSlider *>(widget) || qobject_cast<const QDial *>(widget);
}

/// Guards \a editor and the fields in it, which may be of any kind.
void guardFromWheel(QWidget *editor)
{
    auto *filter = new WheelFilter(editor);
    QWidgetList widgets = editor->findChildren<QWidget *>();
    widgets.append(editor);
    for (QWidget *widget : qAsConst(widgets)) {
        if (!turnsWithTheWheel(widget))
            continue;
        widget->setFocusPolicy(Qt::StrongFocus);
        widget->installEventFilter(filter);
    }
}

/// A label that shows with dots that there was no room for all of its name, the tool tip.
class RowLabel : public QLabel
{
public:
    explicit RowLabel(QWidget *parent)
        : QLabel(parent)
    {
        setTextFormat(Qt::PlainText);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const QRect room = contentsRect();
        const QString shown = fontMetrics().elidedText(toolTip(), Qt::ElideRight, room.width());
        QPainter painter(this);
        style()->drawItemText(&painter, room,
                              QStyle::visualAlignment(layoutDirection(), alignment()), palette(),
                              isEnabled(), shown, foregroundRole());
    }
};

/// Returns \a text for a place where a single "&" would mark a key.
QString withoutMnemonic(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// Tells assistive programs what the fields of a row are called.
void nameFields(QWidget *editor, const QString &name)
{
    editor->setAccessibleName(name);
    if (QWidget *field = editor->focusProxy())
        field->setAccessibleName(name);
    const auto *multi = qobject_cast<MultiValueWidget *>(editor);
    for (unsigned int i = 0; multi && i < multi->count(); ++i) {
        if (QWidget *field = multi->itemWidget(i))
            field->setAccessibleName(name + QLatin1Char(' ') + multi->itemLabel(i)->text());
    }
}

/// Deletes \a section when nothing of it can be at work any more. A dialog or menu that is open may
/// be one of its fields' own, which waits for the answer.
void endLater(Section *section)
{
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget())
        QTimer::singleShot(dialogCheckInterval, section, [section] { endLater(section); });
    else
        section->deleteLater();
}

/// Returns the last widget before \a form that Tab reaches, or null.
QWidget *tabStopBefore(QWidget *form)
{
    QWidget *widget = form->previousInFocusChain();
    while (widget != form
           && (form->isAncestorOf(widget) || !(widget->focusPolicy() & Qt::TabFocus)))
        widget = widget->previousInFocusChain();
    return widget == form ? nullptr : widget;
}

} // namespace

PropertyEditPrivate::PropertyEditPrivate(PropertyEdit *form)
    : QObject(form)
    , q(form)
{
    liveForms->append(this);
}

PropertyEditPrivate::~PropertyEditPrivate()
{
    if (!liveForms.isDestroyed())
        liveForms->removeOne(this);
}

void PropertyEditPrivate::forget(const PropertyProvider *gone)
{
    if (liveForms.isDestroyed())
        return;
    for (PropertyEditPrivate *form : qAsConst(*liveForms)) {
        if (form->provider == gone) {
            form->provider = nullptr;
            form->clear();
        }
    }
}

/// Takes all rows away. A signal of one of their widgets may have led here, so they end later.
void PropertyEditPrivate::clear()
{
    for (const Row &row : qAsConst(rows)) {
        if (row.widget)
            PropertyEditListener::bind(row.widget, nullptr, 0);
    }
    rows.clear();
    const QVector<Section *> gone = sections;
    sections.clear();
    delete q->layout();
    for (Section *section : gone) {
        section->disconnect(this);
        section->hide();
        endLater(section);
    }
}

void PropertyEditPrivate::build()
{
    auto *column = new QVBoxLayout(q);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(sectionSpacing);
    if (!provider)
        return;
    building = true;
    QWidget *const before = tabStopBefore(q);
    const int count = int(provider->count());
    QString title;
    for (int index = 0; index < count; ++index) {
        if (!grid || provider->section(unsigned(index)) != title) {
            endSection();
            title = provider->section(unsigned(index));
            column->addWidget(beginSection(index));
        }
        addRow(index);
    }
    endSection();
    column->addStretch();
    showStates();
    orderTabs(before);
    building = false;
}

Section *PropertyEditPrivate::beginSection(int index)
{
    const QString title = provider->section(unsigned(index));
    auto *section = new Section(title, Section::DEFAULT_DURATION, true, q);
    section->setObjectName(provider->sectionKey(unsigned(index)));
    connect(section, &Section::toggled, this, &PropertyEditPrivate::sectionToggled);
    sections.append(section);
    grid = new QGridLayout;
    grid->setHorizontalSpacing(columnSpacing);
    grid->setVerticalSpacing(rowSpacing);
    return section;
}

void PropertyEditPrivate::endSection()
{
    if (!grid)
        return;
    auto *line = new QFrame(sections.last());
    line->setFrameStyle(QFrame::VLine | QFrame::Sunken);
    grid->addWidget(line, 0, LineColumn, -1, 1);
    grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum), 0, SpacerColumn);
    grid->setColumnStretch(EditorColumn, 1);
    sections.last()->setContentLayout(grid);
    grid = nullptr;
}

void PropertyEditPrivate::addRow(int index)
{
    const int gridRow = grid->count() > 0 ? grid->rowCount() : 0;
    Section *section = sections.last();
    Row row;
    row.sectionIndex = sections.size() - 1;
    row.label = new RowLabel(section);
    row.label->setFixedWidth(labelWidth);
    addEditor(&row, index);
    if (row.widget) {
        // Beside an unfolded editor, label and button stay where they were.
        const int height = QWidgetItem(row.widget).sizeHint().height();
        row.label->setMinimumHeight(height);
        row.label->setBuddy(row.widget);
        auto *fold = new QVBoxLayout;
        fold->addSpacing(qMax(0, (height - foldButtonSize) / 2));
        fold->addWidget(row.foldButton);
        fold->addStretch();
        grid->addLayout(fold, gridRow, FoldColumn);
        grid->addWidget(row.widget, gridRow, EditorColumn);
    }
    grid->addWidget(row.label, gridRow, LabelColumn, Qt::AlignTop);
    nameRow(row, provider->label(unsigned(index)));
    rows.append(row);
}

/// Makes the editor and the button that folds it, if the kind is known.
void PropertyEditPrivate::addEditor(Row *row, int index)
{
    Section *section = sections.last();
    PropertyValueEdit *edit =
        PropertyValueRegistry::instance().find(provider->kind(unsigned(index)));
    row->foldable = edit && (edit->capabilities() & PropertyValueEdit::CanFold);
    if (!edit)
        return;
    // Made before the editor, for that is the order of Tab.
    auto *button = new FoldButton(section);
    button->setFixedSize(foldButtonSize, foldButtonSize);
    button->setStyleSheet(QStringLiteral("QToolButton { background: transparent; border: none; } "
                                         "QToolButton:focus { border: 1px solid "
                                         "palette(highlight); }"));
    button->setEnabled(row->foldable);
    if (row->foldable) {
        button->setArrowType(Qt::RightArrow);
        connect(button, &QToolButton::clicked, this, &PropertyEditPrivate::foldClicked);
    }
    row->foldButton = button;
    row->edit = edit;
    row->widget = edit->createWidget(section, provider->attributes(unsigned(index)));
    row->widget->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    PropertyEditListener::bind(row->widget, provider, unsigned(index));
    guardFromWheel(row->widget);
    edit->setValue(row->widget, provider->value(unsigned(index)));
}

/// Opens and closes the sections as the user left them.
void PropertyEditPrivate::showStates()
{
    const Interface *host = Interface::instance();
    const bool isAlone = sections.size() == 1;
    for (Section *section : qAsConst(sections)) {
        const QString key = section->objectName();
        const bool isKept = !isAlone && host && !key.isEmpty();
        section->toggle(isKept ? host->option(key, true).toBool() : true);
    }
}

/// Puts the rows' fields where the form stands in the order of Tab: they were made last of all in
/// the window.
void PropertyEditPrivate::orderTabs(QWidget *before)
{
    QWidgetList fields;
    for (QWidget *widget = q->nextInFocusChain(); widget != q;
         widget = widget->nextInFocusChain()) {
        const bool isField = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
        if (isField && std::any_of(sections.cbegin(), sections.cend(), [widget](Section *section) {
                return section->isAncestorOf(widget);
            }))
            fields.append(widget);
    }
    for (QWidget *field : qAsConst(fields)) {
        if (before)
            QWidget::setTabOrder(before, field);
        before = field;
    }
}

void PropertyEditPrivate::nameRow(const Row &row, const QString &name)
{
    row.label->setText(row.widget ? withoutMnemonic(name) : name);
    row.label->setToolTip(name);
    if (!row.widget)
        return;
    nameFields(row.widget, name);
    const bool isFolded = row.foldButton->arrowType() == Qt::RightArrow;
    row.foldButton->setAccessibleName((isFolded ? tr("Unfold %1") : tr("Fold %1")).arg(name));
}

void PropertyEditPrivate::readValue(int index)
{
    if (!provider || index >= rows.size() || unsigned(index) >= provider->count())
        return;
    const Row row = rows.at(index);
    if (row.edit && row.widget)
        row.edit->setValue(row.widget, provider->value(unsigned(index)));
}

void PropertyEditPrivate::sectionToggled(bool expanded)
{
    const QString key = sender()->objectName();
    Interface *host = Interface::instance();
    if (!building && host && !key.isEmpty())
        host->setOption(key, expanded);
}

void PropertyEditPrivate::foldClicked()
{
    const auto found = std::find_if(rows.cbegin(), rows.cend(), [this](const Row &candidate) {
        return candidate.foldButton == sender();
    });
    if (found == rows.cend() || !found->edit || !found->widget)
        return;
    // A copy: the editor's own code may change the form.
    const Row row = *found;
    const bool folded = row.foldButton->arrowType() == Qt::DownArrow;
    row.foldButton->setArrowType(folded ? Qt::RightArrow : Qt::DownArrow);
    row.edit->setFolded(row.widget, folded);
    nameRow(row, row.label->toolTip());
}

PropertyEdit::PropertyEdit(QWidget *parent)
    : QWidget(parent)
    , d(new PropertyEditPrivate(this))
{
    PropertyValueRegistry::instance();
}

PropertyEdit::~PropertyEdit() = default;

void PropertyEdit::registerValueEdit(const QString &kind, PropertyValueEdit *edit)
{
    PropertyValueRegistry::instance().add(kind, edit);
}

void PropertyEdit::setProvider(PropertyProvider *provider)
{
    if (provider == d->provider) {
        for (int index = 0; index < d->rows.size(); ++index)
            d->readValue(index);
        return;
    }
    d->provider = provider;
    d->clear();
    d->build();
}

void PropertyEdit::propertyChanged(unsigned int index)
{
    d->readValue(int(index));
}

void PropertyEdit::setPropertyEnabled(unsigned int index, bool enabled)
{
    if (index >= unsigned(d->rows.size()))
        return;
    // A copy: a field that loses the focus may report a value, and its provider change the form.
    const PropertyEditPrivate::Row row = d->rows.at(int(index));
    if (row.edit && row.widget)
        row.edit->setEnabled(row.widget, enabled);
    row.label->setEnabled(enabled);
}

void PropertyEdit::updateNameStrings()
{
    if (!d->provider)
        return;
    const int count = qMin(d->rows.size(), int(d->provider->count()));
    for (int index = 0; index < count; ++index) {
        const PropertyEditPrivate::Row &row = d->rows.at(index);
        d->sections.at(row.sectionIndex)->setTitle(d->provider->section(unsigned(index)));
        if (row.edit && row.widget)
            row.edit->retranslateOwn(row.widget);
        d->nameRow(row, d->provider->label(unsigned(index)));
    }
}

} // namespace Vela
