// SPDX-License-Identifier: MIT
#pragma once

#include "support/dialoganswerer.h"
#include "support/recordinghost.h"

#include <QtTest>

// What the tests of snippets share.

inline QString operator""_s(const char *text, size_t size)
{
    return QString::fromUtf8(text, int(size));
}

inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(missing)");
}

inline QByteArray withCode(const QByteArray &fields, const QByteArray &code)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><snippet>" + fields + "<code>" + code
        + "</code></snippet>";
}

inline void press(QDialog *dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
}

inline void type(QWidget *parent, const char *widget, const QString &text)
{
    auto *const target = parent->findChild<QWidget *>(QString::fromUtf8(widget));
    QVERIFY2(target, widget);
    target->setFocus();
    if (auto *const spin = qobject_cast<QAbstractSpinBox *>(target))
        spin->selectAll();
    QTest::keyClicks(target, text);
}

/// Returns class, row and column of each widget of the dialog's grid, with the text of labels and
/// the name of others.
inline QStringList gridOf(const QDialog *dialog)
{
    const auto *const grid = dialog->findChild<QGridLayout *>();
    QStringList cells;
    for (int i = 0; i < grid->count(); ++i) {
        int row = 0;
        int column = 0;
        int rowSpan = 0;
        int columnSpan = 0;
        grid->getItemPosition(i, &row, &column, &rowSpan, &columnSpan);
        const QWidget *const widget = grid->itemAt(i)->widget();
        const auto *const label = qobject_cast<const QLabel *>(widget);
        cells.append("%1 %2 %3,%4"_s
                         .arg(QString::fromUtf8(widget->metaObject()->className()),
                              label ? label->text() : widget->objectName())
                         .arg(row)
                         .arg(column));
    }
    return cells;
}

/// A folder of snippets, a host and a user, anew for each test.
class SnippetFixture
{
protected:
    void setUp()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_host = std::make_unique<RecordingHost>();
        m_host->texts = {{0, "Broken"_s}, {1, "%1|%2|%3"_s}};
        m_answerer = std::make_unique<DialogAnswerer>();
    }
    void tearDown()
    {
        m_answerer.reset();
        m_host.reset();
    }
    /// Writes the snippet "walk" and returns its path.
    QString writeWalk(const QByteArray &xml) const
    {
        write(path("walk.xml"_s), xml);
        return path("walk.xml"_s);
    }
    QString path(const QString &name) const
    {
        return m_folder->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<DialogAnswerer> m_answerer;
};
