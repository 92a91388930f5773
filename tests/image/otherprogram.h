// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <cstring>

/// Another program that reads or writes the files under test, with its arguments.
class OtherProgram
{
    QStringList m_words;

public:
    explicit OtherProgram(const QString &command)
        : m_words(command.split(QLatin1Char(' ')))
    {
    }

    QString name() const
    {
        return m_words.first();
    }
    bool isMissing() const
    {
        return QStandardPaths::findExecutable(name()).isEmpty();
    }
    /// Returns what the program writes when it reads \a input; nothing if it fails.
    QByteArray run(const QByteArray &input) const
    {
        QProcess process;
        process.start(name(), m_words.mid(1));
        process.write(input);
        process.closeWriteChannel();
        process.waitForFinished(30000);
        const QByteArray errors = process.readAllStandardError();
        if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
            return process.readAllStandardOutput();
        qWarning("%s: %s", qPrintable(name()), errors.constData());
        return {};
    }
};

#define SKIP_IF_MISSING(program)                                                                   \
    if ((program).isMissing())                                                                     \
    QSKIP(qPrintable((program).name() + QLatin1String(" is not installed")))

/// Returns the pixels of an image without padding, four bytes each.
inline QByteArray rgbaBytes(const QImage &image)
{
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    return QByteArray(reinterpret_cast<const char *>(rgba.constBits()), int(rgba.sizeInBytes()));
}

/// Returns an image of RGBA pixels, as rgbaBytes() gives them.
inline QImage rgbaImage(const QByteArray &bytes, QSize size)
{
    QImage image(size, QImage::Format_RGBA8888);
    if (bytes.size() == image.sizeInBytes())
        std::memcpy(image.bits(), bytes.constData(), size_t(bytes.size()));
    else
        image = QImage();
    return image;
}
