// SPDX-License-Identifier: MIT
#include "lantern/document.h"

#include "lantern/completion.h"
#include "lantern/filenames.h"
#include "lantern/formatter.h"
#include "lantern/motions.h"
#include "lantern/options.h"
#include "lantern/textcontent.h"

#include "engine/engine.h"
#include "frame/archive.h"
#include "frame/jobstats.h"
#include "frame/textcodecs.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QTextBlock>
#include <QTextCodec>
#include <QTextCursor>

#include <algorithm>

using Vela::TextCodecs;

namespace Lantern {

namespace {

QString encodingProperty()
{
    return QStringLiteral("Encoding");
}

QString linesProperty()
{
    return QStringLiteral("Lines");
}

// The index of an encoding by its name; -1 for one that the list, which gives 0, does not have.
int listedCodec(const QString &name)
{
    const int codec = TextCodecs::index(name.toLatin1().constData());
    const bool known =
        TextCodecs::aliases(codec).split(QStringLiteral(", ")).contains(name, Qt::CaseInsensitive);
    return known ? codec : -1;
}

Vela::Message wholeFileError(const QString &text)
{
    return {Vela::Message::Error, 0, 0, text};
}

constexpr int restBeforeChecks = 300; // ms without a change of the text

} // namespace

/// The job of a save: the document learns by it how the save ends, and the job that was asked for
/// what it is told.
class Document::SaveJob : public Vela::JobStats
{
public:
    SaveJob(Document &document, Vela::JobStats *job, unsigned int flags)
        : m_document(document)
        , m_job(job)
        , m_flags(flags)
    {
    }

    ~SaveJob() override
    {
        if (!m_failed && !(m_flags & Copy))
            m_document.onSaved();
        if (m_flags & WithJob)
            delete m_job;
    }

    bool wasCancelled() const override
    {
        return m_job && m_job->wasCancelled();
    }

    void setMaximum(unsigned int maximum) override
    {
        if (m_job)
            m_job->setMaximum(maximum);
    }

    void setValue(unsigned int value) override
    {
        if (m_job)
            m_job->setValue(value);
    }

    void incrementValue() override
    {
        if (m_job)
            m_job->incrementValue();
    }

    void error(const QString &text) override
    {
        m_failed = true;
        m_document.addFailure(wholeFileError(text));
        if (m_job)
            m_job->error(text);
    }

private:
    Document &m_document;
    Vela::JobStats *const m_job;
    const unsigned int m_flags;
    bool m_failed = false;
};

Document::Document(Scope scope)
    : CodeDocument(short(scope))
    , m_scope(scope)
    , m_parser(*this)
    , m_motions(scope == Scope::Script ? nullptr : new Motions(this))
    , m_messages(this, CodeDocument::fileMessages())
{
    setParser(&m_parser);
    if (m_motions)
        registerNodeFile(m_motions, Vela::CodeNode::Animation, 0);
    m_checkTimer.setSingleShot(true);
    m_checkTimer.setInterval(restBeforeChecks);
    connect(&m_checkTimer, &QTimer::timeout, this, [this] {
        setChecks(boxMessages());
        showMessages();
    });
}

Document::~Document()
{
    // The end of a save is told to this class.
    waitForSave();
}

// The animations hold the document, and it holds them: the last one outside lets both go.
void Document::release()
{
    if (m_motions && refCount() == 2) {
        Motions *const motions = m_motions;
        m_motions = nullptr;
        motions->release();
    }
    CodeDocument::release();
}

Scope Document::scope() const
{
    return m_scope;
}

const char *Document::fileExtension() const
{
    switch (m_scope) {
    case Scope::Motion:
        return "motion";
    case Scope::Script:
        return "script";
    case Scope::Game:
    case Scope::Project:
        break;
    }
    return "lantern";
}

QVariant Document::option(const QString &key) const
{
    static const QStringList onByDefault = {
        QStringLiteral("parseCode"), QStringLiteral("highlightCode"), QStringLiteral("modelCode")};
    const Vela::Engine *const engine = project() ? project()->parent()->engine() : nullptr;
    if (engine && isEngineOption(key))
        return engine->option(key, QVariant());
    const QVariant value = CodeDocument::option(key);
    return value.isValid() || !onByDefault.contains(key) ? value : QVariant(true);
}

// Reading and writing.

QAbstractItemModel *Document::model()
{
    ensureLoaded();
    return CodeDocument::model();
}

bool Document::isEmpty() const
{
    ensureLoaded();
    return CodeDocument::isEmpty();
}

void Document::beginChange()
{
    ensureLoaded();
    CodeDocument::beginChange();
}

QList<Document::SearchResult> Document::search(const Vela::RegExp &expression,
                                               unsigned int flags) const
{
    ensureLoaded();
    return CodeDocument::search(expression, flags);
}

void Document::replace(const QList<SearchResult> &results, const QString &text)
{
    ensureLoaded();
    CodeDocument::replace(results, text);
}

QString Document::fileName() const
{
    const QString name = CodeDocument::fileName();
    return name.isEmpty() && isSaving() ? m_savingName : name;
}

void Document::bindTo(Vela::Archive &archive, const QString &name)
{
    setFileName(name);
    ProjectFile::fromFile(archive, name, 0, nullptr);
}

void Document::load()
{
    QByteArray data;
    QString error;
    if (readAll(archive(), fileName(), largestFile, data, error))
        take(data, -1, false);
    else
        addFailure(wholeFileError(error));
}

bool Document::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                        Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!readAll(archive, name, largestFile, data, error))
        return fail(wholeFileError(error), error, 0, stats);
    waitForSave();
    // The content of another file is a change to this one.
    const bool copy = flags & Copy;
    if (copy)
        ensureLoaded();
    const bool again = isLoaded() && (copy || name == fileName());
    setLoaded();
    // The lines ask for files beside their own while they are read.
    if (!copy) {
        fileLoaded(archive, name, false);
        setFileName(name);
    }
    ProjectFile::fromFile(archive, name, flags, stats);
    take(data, again && !copy ? codecId() : -1, again);
    setModified(copy);
    return true;
}

// With \a again the text is a change of the one that stands, and keeps the encoding \a codec where
// the bytes fit it.
void Document::take(const QByteArray &data, int codec, bool again)
{
    TextContent content(data, QTextCodec::codecForUtfText(data, nullptr) ? -1 : codec);
    if (codec >= 0 && content.isDamaged())
        content = TextContent(data);
    m_isReading = true;
    if (again) {
        setText(content.text());
    } else {
        const QString name = fileName();
        fromString(content.text());
        fileLoaded(archive(), name, false);
        setFileName(name);
    }
    setCodecId(content.codec());
    setUtf8Mark(content.hasMark() && codecName() == "UTF-8");
    m_isReading = false;
    m_isDamaged = content.isDamaged();
    m_readMessages = content.messages();
    m_failures.clear();
    updateChecks(true);
    showMessages();
}

void Document::setText(const QString &text)
{
    ensureLoaded();
    QString before = toRawText();
    before.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    QString after = text;
    after.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    after.replace(QLatin1Char('\r'), QLatin1Char('\n'));

    const auto differing =
        std::mismatch(before.cbegin(), before.cend(), after.cbegin(), after.cend());
    int first = int(differing.first - before.cbegin());
    // No half of a surrogate pair stays behind.
    if (first > 0 && before.at(first - 1).isHighSurrogate())
        --first;
    int same = 0;
    const int most = std::min(before.size(), after.size()) - first;
    while (same < most && before.at(before.size() - 1 - same) == after.at(after.size() - 1 - same))
        ++same;
    if (same > 0 && before.at(before.size() - same).isLowSurrogate())
        --same;
    if (first == before.size() && first == after.size())
        return;
    QTextCursor cursor(this);
    cursor.setPosition(first);
    cursor.setPosition(before.size() - same, QTextCursor::KeepAnchor);
    insertOnCursor(after.mid(first, after.size() - same - first), cursor);
}

void Document::reset()
{
    setLoaded();
    m_isReading = true;
    CodeDocument::reset();
    setUtf8Mark(false);
    m_isReading = false;
    m_isDamaged = false;
    m_readMessages.clear();
    m_failures.clear();
    updateChecks(true);
    showMessages();
}

void Document::reload()
{
    if (mayReload(*this))
        fromFile(archive(), fileName(), 0, nullptr);
}

bool Document::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                      Vela::JobStats *stats)
{
    // What nobody has read or changed is passed on as it is.
    if (!isLoaded() || (m_isDamaged && !isModified()))
        return passOn(archive, name, flags, stats);
    const Vela::Message unwritable = unwritableMessage();
    if (unwritable.type == Vela::Message::Error)
        return fail(unwritable, placedText(displayName(), unwritable), flags, stats);
    m_savingName = name;
    if (flags & WithJob)
        return CodeDocument::toFile(archive, name, flags, new SaveJob(*this, stats, flags));
    SaveJob job(*this, stats, flags);
    return CodeDocument::toFile(archive, name, flags, &job);
}

// The file holds nothing but the text now.
void Document::onSaved()
{
    m_isDamaged = false;
    m_readMessages.clear();
    m_failures.clear();
    showMessages();
}

bool Document::passOn(Vela::Archive &archive, const QString &name, unsigned int flags,
                      Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!readAll(this->archive(), fileName(), largestFile, data, error)
        || !writeAll(archive, name, data, error))
        return fail(wholeFileError(error), error, flags, stats);
    if (!(flags & Copy)) {
        if (isLoaded())
            fileSaved(archive, name, false);
        setFileName(name);
        if (isLoaded())
            pauseWatch(false);
    }
    ProjectFile::toFile(archive, name, flags, stats);
    if (flags & WithJob)
        delete stats;
    return true;
}

// Returns the error about the first character that the encoding lacks, else an empty message.
Vela::Message Document::unwritableMessage() const
{
    // Unicode holds every text.
    if (codecName().startsWith("UTF-"))
        return {};
    TextContent content;
    content.setText(toString());
    content.setCodec(codecId());
    const int offset = content.firstUnwritable();
    if (offset < 0)
        return {};
    const QTextBlock block = findBlock(offset);
    return content.unwritableMessage(offset, block.blockNumber(), offset - block.position());
}

bool Document::fail(const Vela::Message &message, const QString &error, unsigned int flags,
                    Vela::JobStats *stats)
{
    addFailure(message);
    if (stats)
        stats->error(error);
    if (flags & WithJob)
        delete stats;
    return false;
}

// Messages.

Vela::Messages *Document::fileMessages() const
{
    return &m_messages;
}

void Document::codeUpdated()
{
    m_fileNames.reset();
    if (m_isReading)
        return;
    // A pass may come without a change of the text.
    if (revision() != m_failureRevision)
        m_failures.clear();
    updateChecks(false);
    showMessages();
}

void Document::updateChecks(bool read)
{
    if (read)
        setChecks(boxMessages());
    else if (m_motions)
        m_checkTimer.start();
}

QVector<Vela::Message> Document::boxMessages() const
{
    return m_motions ? m_motions->boxesWithoutFrame() : QVector<Vela::Message>();
}

void Document::setChecks(const QVector<Vela::Message> &messages)
{
    m_checks = messages;
}

void Document::addFailure(const Vela::Message &message)
{
    m_failures.append(message);
    m_failureRevision = revision();
    showMessages();
}

void Document::showMessages()
{
    m_messages.setOwn(m_failures + m_readMessages + m_checks);
    m_messages.notifyUpdate();
}

// Completion and format.

bool Document::autoComplete(QTextCursor &cursor, QCompleter *completer, int, QString &prefix)
{
    return completer && complete(cursor, *completer, prefix, *this);
}

bool Document::insertCompletion(Vela::CodeEditor *, QTextCursor cursor, const QString &text)
{
    return Lantern::insertCompletion(cursor, text, *this);
}

void Document::formatLines(int firstLine, int lastLine, bool indentOnly)
{
    Lantern::formatLines(*this, firstLine, lastLine, indentOnly);
}

// Properties.

QStringList Document::propertyNames() const
{
    return {encodingProperty(), linesProperty()};
}

QVariant Document::property(const QString &name) const
{
    ensureLoaded();
    if (name == encodingProperty())
        return QString::fromLatin1(codecName());
    if (name == linesProperty())
        return lastBlock().length() > 1 ? blockCount() : blockCount() - 1;
    return QVariant();
}

void Document::setProperty(const QString &name, const QVariant &value)
{
    ensureLoaded();
    const int codec = name == encodingProperty() ? listedCodec(value.toString()) : -1;
    if (codec < 0 || codec == codecId())
        return;
    setCodecId(codec);
    setUtf8Mark(false);
    setModified(true);
    m_failures.clear();
    showMessages();
}

} // namespace Lantern
