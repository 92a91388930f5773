// SPDX-License-Identifier: MIT
#include "editor/valueedits.h"

#include "editor/plaintext.h"
#include "frame/archive.h"
#include "frame/filebrowseedit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegExpValidator>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <limits>

namespace Vela {

namespace {

const int foldedTextHeight = 22; // pixels
const int unfoldedTextHeight = 222;
const int textMargin = 1; // pixels; the usual 4 would cut a folded line off

// The text that a multi-line edit reported or was given: typing a letter over the same letter is
// no change of the value, though the widget tells of one.
const char knownText[] = "knownText";

QString stringAttribute(const QVariantMap &attributes, const char *key)
{
    return attributes.value(QLatin1String(key)).toString();
}

/// Checks texts against a pattern, and puts the last good one in the place of an unfinished text.
class PatternValidator : public QRegExpValidator
{
public:
    using QRegExpValidator::QRegExpValidator;

    void fixup(QString &input) const override
    {
        input = lastGood;
    }

    QString lastGood;
};

PatternValidator *validatorOf(const QLineEdit *edit)
{
    return dynamic_cast<PatternValidator *>(const_cast<QValidator *>(edit->validator()));
}

/// Lets \a edit hold any text that the attribute allows, which may be either class of regular
/// expressions or a pattern. A pattern with an error in it checks nothing.
void setValidator(QLineEdit *edit, const QVariant &attribute)
{
    QRegExp pattern = attribute.toRegExp();
    if (attribute.userType() == QMetaType::QRegularExpression)
        pattern = QRegExp(attribute.toRegularExpression().pattern());
    else if (attribute.userType() == QMetaType::QString)
        pattern = QRegExp(attribute.toString());
    if (edit->inputMask().isEmpty())
        edit->setMaxLength(std::numeric_limits<int>::max());
    auto *validator = new PatternValidator(edit);
    if (!pattern.isEmpty() && pattern.isValid())
        validator->setRegExp(pattern);
    edit->setValidator(validator);
}

/// Remembers a text that was set as the last good one.
void setGood(const QLineEdit *edit, const QString &text)
{
    if (auto *validator = validatorOf(edit))
        validator->lastGood = text;
}

/// Returns whether \a text, which now stands in \a edit, is a new value.
bool takesText(const QLineEdit *edit, const QString &text)
{
    auto *validator = validatorOf(edit);
    if (!validator)
        return true;
    if (!edit->hasAcceptableInput() || text == validator->lastGood)
        return false;
    validator->lastGood = text;
    return true;
}

} // namespace

void WidgetValueEdit::setEnabled(QWidget *widget, bool enabled)
{
    widget->setEnabled(enabled);
}

void BoolValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    if (auto *box = qobject_cast<QCheckBox *>(widget))
        box->setChecked(value.toBool());
}

QWidget *BoolValueEdit::createWidget(QWidget *parent, const QVariantMap &)
{
    auto *box = new QCheckBox(parent);
    connect(box, &QCheckBox::toggled, this, &BoolValueEdit::changed);
    return box;
}

void BoolValueEdit::changed(bool value)
{
    Q_EMIT valueChanged(qobject_cast<QWidget *>(sender()), value);
}

void FileValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    auto *edit = qobject_cast<FileBrowseEdit *>(widget);
    if (edit && edit->value() != value.toString())
        edit->setValue(value.toString());
}

QWidget *FileValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    auto *edit = new FileBrowseEdit(parent);
    if (attributes.contains(QStringLiteral("filter")))
        edit->setFilter(stringAttribute(attributes, "filter"));
    edit->setBasePath(attributes.value(QStringLiteral("baseArchive")).value<Archive *>(),
                      stringAttribute(attributes, "basePath"));
    connect(edit, &FileBrowseEdit::valueChanged, this, &FileValueEdit::changed);
    return edit;
}

void FileValueEdit::changed(const QString &value)
{
    Q_EMIT valueChanged(qobject_cast<QWidget *>(sender()), value);
}

QFlags<PropertyValueEdit::Capabilities> TextValueEdit::capabilities() const
{
    return CanFold;
}

void TextValueEdit::setFolded(QWidget *widget, bool folded) const
{
    auto *edit = qobject_cast<QPlainTextEdit *>(widget);
    if (!edit)
        return;
    const auto policy = folded ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded;
    edit->setHorizontalScrollBarPolicy(policy);
    edit->setVerticalScrollBarPolicy(policy);
    edit->setFixedHeight(folded ? foldedTextHeight : unfoldedTextHeight);
}

void TextValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    QString text = value.toString();
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    auto *edit = qobject_cast<QPlainTextEdit *>(widget);
    if (edit && plainText(edit->document()) != text)
        edit->setPlainText(text);
    widget->setProperty(knownText, text);
}

QWidget *TextValueEdit::createWidget(QWidget *parent, const QVariantMap &)
{
    auto *edit = new QPlainTextEdit(parent);
    edit->setTabChangesFocus(true);
    edit->document()->setDocumentMargin(textMargin);
    setFolded(edit, true);
    connect(edit, &QPlainTextEdit::textChanged, this, &TextValueEdit::changed);
    return edit;
}

void TextValueEdit::changed()
{
    auto *edit = qobject_cast<QPlainTextEdit *>(sender());
    const QString text = edit ? plainText(edit->document()) : QString();
    if (!edit || edit->property(knownText).toString() == text)
        return;
    edit->setProperty(knownText, text);
    Q_EMIT valueChanged(edit, text);
}

void StringValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    auto *edit = qobject_cast<QLineEdit *>(widget);
    if (!edit)
        return;
    if (edit->text() != value.toString())
        edit->setText(value.toString());
    setGood(edit, edit->text());
}

QWidget *StringValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    auto *edit = new QLineEdit(parent);
    edit->setInputMask(stringAttribute(attributes, "mask"));
    setValidator(edit, attributes.value(QStringLiteral("validator")));
    connect(edit, &QLineEdit::textChanged, this, &StringValueEdit::changed);
    return edit;
}

void StringValueEdit::changed(const QString &value)
{
    auto *edit = qobject_cast<QLineEdit *>(sender());
    if (edit && takesText(edit, value))
        Q_EMIT valueChanged(edit, value);
}

void OptionValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    bool isNumber = false;
    const int index = value.toInt(&isNumber);
    if (auto *box = qobject_cast<QComboBox *>(widget))
        box->setCurrentIndex(isNumber ? index : -1);
}

QWidget *OptionValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    auto *box = new QComboBox(parent);
    box->addItems(attributes.value(QStringLiteral("items")).toStringList());
    box->setCurrentIndex(-1);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &OptionValueEdit::changed);
    return box;
}

void OptionValueEdit::changed(int value)
{
    Q_EMIT valueChanged(qobject_cast<QWidget *>(sender()), value);
}

void StringOptionValueEdit::setValue(QWidget *widget, const QVariant &value)
{
    const QSignalBlocker blocker(widget);
    auto *box = qobject_cast<QComboBox *>(widget);
    const QString text = value.toString();
    if (!box)
        return;
    setGood(box->lineEdit(), text);
    if (box->currentText() == text)
        return;
    box->setCurrentIndex(box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
    box->setEditText(text);
}

QWidget *StringOptionValueEdit::createWidget(QWidget *parent, const QVariantMap &attributes)
{
    auto *box = new QComboBox(parent);
    box->setEditable(true);
    // The items stay as given, and a typed text stays as typed.
    box->setInsertPolicy(QComboBox::NoInsert);
    box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    box->completer()->setCaseSensitivity(Qt::CaseSensitive);
    box->addItems(attributes.value(QStringLiteral("items")).toStringList());
    setValidator(box->lineEdit(), attributes.value(QStringLiteral("validator")));
    box->setCurrentIndex(-1);
    connect(box, &QComboBox::currentTextChanged, this, &StringOptionValueEdit::changed);
    return box;
}

void StringOptionValueEdit::changed(const QString &value)
{
    auto *box = qobject_cast<QComboBox *>(sender());
    if (box && takesText(box->lineEdit(), value))
        Q_EMIT valueChanged(box, value);
}

} // namespace Vela
