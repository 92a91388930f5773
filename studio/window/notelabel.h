// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace Studio {

/// A label with less weight than its surroundings, in a colour made of the palette's own.
class NoteLabel : public QLabel
{
    Q_OBJECT

public:
    explicit NoteLabel(QWidget *parent = nullptr);
    explicit NoteLabel(const QString &text, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void blend();
};

} // namespace Studio
