// SPDX-License-Identifier: MIT
#include "studio/window/searchcontrols.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QToolButton>

namespace Studio {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Studio::TermOptions", text);
}

} // namespace

QLineEdit *makeSearchEdit(const char *name, const QString &label)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    edit->setAccessibleName(label);
    edit->setPlaceholderText(label);
    edit->setClearButtonEnabled(true);
    return edit;
}

QToolButton *makeSearchButton(const char *name, const QString &text, const QString &tip)
{
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

QToolButton *makeSearchOption(const char *name, const QString &text, const QString &tip)
{
    QToolButton *button = makeSearchButton(name, text, tip);
    button->setCheckable(true);
    return button;
}

TermOptions::TermOptions(const QByteArray &prefix)
    : matchesCase(
        makeSearchOption(QByteArray(prefix + "Case").constData(), tr("Aa"), tr("Match case")))
    , isWholeWords(makeSearchOption(QByteArray(prefix + "Words").constData(), tr("Word"),
                                    tr("Whole words only")))
    , isExpression(makeSearchOption(QByteArray(prefix + "Expression").constData(), tr(".*"),
                                    tr("Regular expression")))
{
}

SearchTerm TermOptions::term(const QLineEdit &edit) const
{
    return {edit.text(), matchesCase->isChecked(), isWholeWords->isChecked(),
            isExpression->isChecked()};
}

void TermOptions::setTerm(const SearchTerm &term, QLineEdit &edit)
{
    edit.setText(term.text);
    matchesCase->setChecked(term.matchesCase);
    isWholeWords->setChecked(term.isWholeWords);
    isExpression->setChecked(term.isExpression);
}

} // namespace Studio
