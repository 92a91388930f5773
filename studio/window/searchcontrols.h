// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/textsearch.h"

class QLineEdit;
class QString;
class QToolButton;

namespace Studio {

// The controls that the find bar and the dock of search results have in common.

QLineEdit *makeSearchEdit(const char *name, const QString &label);
QToolButton *makeSearchButton(const char *name, const QString &text, const QString &tip);
QToolButton *makeSearchOption(const char *name, const QString &text, const QString &tip);

/// The switches that say how a text is meant. They belong to the layouts that they are put in.
struct TermOptions
{
    /// \a prefix begins the names of the switches.
    explicit TermOptions(const QByteArray &prefix);

    SearchTerm term(const QLineEdit &edit) const;
    void setTerm(const SearchTerm &term, QLineEdit &edit);

    QToolButton *matchesCase;
    QToolButton *isWholeWords;
    QToolButton *isExpression;
};

} // namespace Studio
