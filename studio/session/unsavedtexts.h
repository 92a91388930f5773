// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QStringList>
#include <memory>
#include <vector>

class QLockFile;

namespace Studio {

/// What tells whether a file on the disk is still the one that was read.
struct FileState
{
    qint64 size = -1; ///< in bytes; -1 where there is no file
    QDateTime time;   ///< of the last change; invalid where there is no file

    static FileState of(const QString &fileName);
    bool operator==(const FileState &other) const;
    bool operator!=(const FileState &other) const;
};

/// A text with changes that are not saved, as it is kept against a crash.
struct UnsavedText
{
    QString project;     ///< the root folder; absolute
    QString file;        ///< relative to it
    QByteArray encoding; ///< of the file, by its name
    FileState disk;      ///< of the file when the text was last read from it or saved to it
    QString text;
    QDateTime time; ///< when it was written
    QString entry;  ///< the file that keeps it; absolute

    /// Returns the index of the encoding in TextCodecs; -1 for one that is not known here.
    int codec() const;
};

/// The unsaved texts of this program while it runs, in a folder of its own below one for all
/// programs. A lock beside the folder says that the program lives; both go with this object.
///
/// It may be used on any thread, but on one at a time.
class UnsavedTexts
{
    Q_DECLARE_TR_FUNCTIONS(UnsavedTexts)

public:
    /// A text that takes more bytes than these in UTF-8 is neither written nor read.
    static constexpr int LargestText = 256 * 1024 * 1024;

    /// \a folder is the one for all programs, and need not exist. Nothing is made before it is
    /// needed.
    explicit UnsavedTexts(const QString &folder);
    ~UnsavedTexts();

    /// Keeps a text in the place of the one before of that file; \a entry and \a time are this
    /// function's to know. Returns false, with the reason in \a error and the one before still
    /// there, on failure.
    bool write(const UnsavedText &text, QString *error);
    /// Takes over a text that another program left, in the place of the own one of that file.
    bool adopt(const UnsavedText &text, QString *error);
    /// Forgets the text of a file, if there is one.
    void remove(const QString &project, const QString &file);

private:
    Q_DISABLE_COPY(UnsavedTexts)

    bool begin(QString *error);
    QString entryOf(const QString &project, const QString &file) const;

    const QString m_folder;
    const QString m_own;
    std::unique_ptr<QLockFile> m_lock; // null until something is written
};

/// The unsaved texts of one project that programs left when they crashed. While this object lives
/// no other program takes them; what is still there then is found again the next time.
class LeftTexts
{
    Q_DECLARE_TR_FUNCTIONS(LeftTexts)

public:
    /// More texts than these are not read at once.
    static constexpr int MostTexts = 1000;

    /// Reads what there is; \a folder is the one for all programs.
    LeftTexts(const QString &folder, const QString &project);
    ~LeftTexts();

    /// Returns the texts, the newest first.
    const QList<UnsavedText> &texts() const;
    /// Returns a line for each file that cannot be read as one. It stays where it is.
    const QStringList &problems() const;
    /// Writes a text to a file of that name, or beside it if there is one, and removes what was
    /// left. Returns false, with the reason in \a error, on failure; \a written is the name.
    static bool putBack(const UnsavedText &text, const QString &fileName, QString *written,
                        QString *error);
    /// Removes a text. Returns false, with the reason in \a error, on failure.
    static bool discard(const UnsavedText &text, QString *error);

private:
    Q_DISABLE_COPY(LeftTexts)

    void read(const QString &folder, const QString &project);

    /// The folder of a program that has ended, held by its lock.
    struct Claim
    {
        QString folder;
        std::unique_ptr<QLockFile> lock;
    };
    static void release(const Claim &claim);

    QList<UnsavedText> m_texts;
    QStringList m_problems;
    std::vector<Claim> m_claims;
};

} // namespace Studio
