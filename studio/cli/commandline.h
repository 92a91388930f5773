// SPDX-License-Identifier: MIT
#pragma once

#include <QFlags>
#include <QMap>
#include <QString>
#include <QStringList>

namespace Studio {

enum CallOption {
    Json = 1,
    DryRun = 2,
    Quiet = 4,
    Check = 8,
    IndentOnly = 16,
    Ticks = 32,
    InFile = 64,
    WithPalette = 128,
    ColorCount = 256,
    Scale = 512,
    Filter = 1024,
    Rotate = 2048,
    Format = 4096,
    Speed = 8192,
    Crop = 16384,
    SharedPalette = 32768,
    Once = 65536,
    SampleRate = 131072,
    SampleBits = 262144,
    ChannelCount = 524288
};
Q_DECLARE_FLAGS(CallOptions, CallOption)

/// One call of a command, checked: it has as many arguments as the command takes, every option that
/// the command needs, and none that it does not have.
struct Call
{
    QStringList arguments;
    CallOptions options;
    QMap<CallOption, QString> values; ///< of the given options that have one
};

/// One command of the program.
struct Command
{
    const char *name; ///< a word, or two with a blank between
    /// Their names as help shows them, separated by blanks; "..." behind the last one lets it come
    /// several times.
    const char *arguments;
    CallOptions required;
    CallOptions options; ///< the required ones included
    const char *summary;
    const char *description;
    int (*run)(const Call &call); ///< returns an ExitCode
};

/// The arguments of the program: a command, what it works on, and options in any order.
class CommandLine
{
public:
    enum Kind {
        RunCommand,
        ShowHelp,        ///< of the program
        ShowCommandHelp, ///< of command()
        ShowVersion,
        WrongCall ///< error() says why
    };

    /// \a arguments begin with the program's name.
    explicit CommandLine(const QStringList &arguments);

    Kind kind() const;
    QString error() const;
    /// Returns the command that was named; null for none.
    const Command *command() const;
    const Call &call() const;
    /// Returns the folder of the extension modules; empty where none was given.
    QString extensions() const;

    static QString help();
    static QString help(const Command &command);
    static QString version();

private:
    void parse(const QStringList &arguments);
    void readCommand(QStringList words, bool helpWanted);
    void fail(const QString &error);

    Kind m_kind = ShowHelp;
    QString m_error;
    const Command *m_command = nullptr;
    Call m_call;
    QString m_extensions;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CallOptions)

} // namespace Studio
