// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QString>

/// Calls of the command line, as a user or a script makes them.
namespace CliRun {

struct Result
{
    int code = -1;
    QString out;
    QString err;
};

inline QString fromEnvironment(const char *name)
{
    return qEnvironmentVariable(name);
}

inline QString program()
{
    return fromEnvironment("VELA_BUILD_DIR") + QStringLiteral("/bin/vela");
}

/// Runs the program where there is no display, with nothing of the environment that would help it.
inline Result run(const QStringList &arguments, const QMap<QString, QString> &environment = {})
{
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        variables.remove(QString::fromUtf8(name));
    for (auto it = environment.begin(); it != environment.end(); ++it)
        variables.insert(it.key(), it.value());
    process.setProcessEnvironment(variables);
    process.start(program(), arguments);
    Result result;
    if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit)
        result.code = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

/// Runs the words of \a call, with \a place for each "@" in them.
inline Result run(const QString &call, const QString &place)
{
    QStringList arguments = call.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    arguments.replaceInStrings(QStringLiteral("@"), place);
    return run(arguments);
}

inline QJsonObject json(const Result &result)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(result.out.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError)
        qWarning("%s", qPrintable(error.errorString()));
    return document.object();
}

inline QString string(const QJsonValue &object, const char *key)
{
    return object.toObject().value(QLatin1String(key)).toString();
}

inline QStringList linesOf(const QString &text)
{
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace CliRun
