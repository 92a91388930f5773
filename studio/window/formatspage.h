// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QCheckBox;
class QPlainTextEdit;
class QPushButton;
class QTextCharFormat;
class QTreeWidget;
class QTreeWidgetItem;

namespace Studio {

class Colors;

/// Lists how each kind of word in definition texts looks, changes it and gives it back its default.
/// A sample of a text shows the result at once.
class FormatsPage : public QWidget
{
    Q_OBJECT

public:
    explicit FormatsPage(Colors &colors, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    QWidget *makeControls();
    QCheckBox *makeStyle(const QString &text, const char *name);
    QPushButton *makeButton(const QString &text, const char *name);
    void fill();
    void showAll();
    void showCurrent();
    void showSample();
    void chooseColor(bool background);
    void takeStyles();
    void store(const QTextCharFormat &format);
    QString currentKey() const;

    Colors &m_colors;
    QTreeWidget *m_list;
    QPlainTextEdit *m_sample;
    QPushButton *m_foreground;
    QPushButton *m_background;
    QPushButton *m_reset;
    QCheckBox *m_bold;
    QCheckBox *m_italic;
    QCheckBox *m_underline;
};

} // namespace Studio
