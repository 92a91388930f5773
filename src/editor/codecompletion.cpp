// SPDX-License-Identifier: MIT
#include "editor/codecompletion_p.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFile>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QXmlStreamReader>

#include <algorithm>

namespace Vela {

namespace {

/// Takes the words of all models up to the first error; returns whether there was none.
bool readWords(QIODevice &file, QMap<QString, QStringList> &words)
{
    const QString prefix = QStringLiteral("prefix");
    QXmlStreamReader reader(&file);
    QStringList models; // round the present place, by their prefix
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        const bool isModel = reader.name() == QLatin1String("model");
        const QXmlStreamAttributes attributes = reader.attributes();
        if (token == QXmlStreamReader::EndElement && isModel) {
            models.removeLast();
        } else if (token != QXmlStreamReader::StartElement) {
            continue;
        } else if (isModel && !attributes.hasAttribute(prefix)) {
            reader.skipCurrentElement();
        } else if (isModel) {
            models.append(attributes.value(prefix).toString());
            words[models.last()].clear();
        } else if (reader.name() == QLatin1String("word") && !models.isEmpty()) {
            const QString word = attributes.value(QLatin1String("value")).toString();
            if (!word.isEmpty())
                words[models.last()].append(word);
        }
    }
    return !reader.hasError();
}

bool isModifier(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

bool movesCursor(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return false;
    }
}

/// Commands make a control character of a letter.
bool isCommand(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Escape
        || ((event.modifiers() & Qt::ControlModifier) && !event.text().at(0).isPrint());
}

/// No word that is completed goes on behind these.
bool endsWord(const QString &typed)
{
    static const QString ends = QStringLiteral("~!@#$%^&*)_+{}|:\"<>?,./;'[]\\-=");
    return !typed.isEmpty() && ends.contains(typed.at(typed.size() - 1));
}

bool isInWord(QChar c)
{
    return c == QLatin1Char('_') || !(c.isSpace() || c.isPunct() || c.isSymbol());
}

/// What belongs to a longer name than the prefix behind it.
bool isInName(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('.');
}

/// Selects the word that the cursor stands in or behind, if there is one.
QTextCursor withWord(QTextCursor cursor)
{
    const QString line = cursor.block().text();
    const int column = cursor.positionInBlock();
    int start = column;
    while (start > 0 && isInWord(line.at(start - 1)))
        --start;
    int end = column;
    while (start < column && end < line.size() && isInWord(line.at(end)))
        ++end;
    cursor.setPosition(cursor.block().position() + start);
    cursor.setPosition(cursor.block().position() + end, QTextCursor::KeepAnchor);
    return cursor;
}

} // namespace

CodeCompletion::CodeCompletion(CodeEditor *editor)
    : m_editor(editor)
    , m_completer(new QCompleter(editor))
{
    m_completer->setModel(&m_model);
    m_completer->setWidget(editor);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setModelSorting(QCompleter::CaseInsensitivelySortedModel);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setWrapAround(false);
    connect(m_completer, QOverload<const QString &>::of(&QCompleter::activated), this,
            &CodeCompletion::insert);
}

CodeCompletion::~CodeCompletion() = default;

bool CodeCompletion::load(const QString &fileName)
{
    QFile file(fileName);
    QMap<QString, QStringList> lists;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const bool isWhole = readWords(file, lists);
    for (auto list = lists.begin(); list != lists.end(); ++list) {
        // The completer searches by halves.
        std::sort(list->begin(), list->end(), [](const QString &a, const QString &b) {
            return a.compare(b, Qt::CaseInsensitive) < 0;
        });
        m_words.insert(list.key(), *list);
    }
    return isWhole;
}

bool CodeCompletion::isOpen() const
{
    return m_completer->popup()->isVisible();
}

void CodeCompletion::close()
{
    m_completer->popup()->hide();
}

bool CodeCompletion::takesKey(QKeyEvent *event)
{
    if (!isOpen())
        return false;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_completer->popup()->currentIndex().isValid()) {
            close();
            return false;
        }
        break;
    case Qt::Key_Escape:
        if (CodeDocument *const document = m_editor->codeDocument())
            document->autoCompleteDone();
        break;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        break;
    default:
        return false;
    }
    // The list does the rest with a key that the editor ignores.
    event->ignore();
    return true;
}

void CodeCompletion::keyTyped(const QKeyEvent &event)
{
    const bool isShifted = event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
    if (isModifier(event.key()) || (isShifted && event.text().isEmpty()))
        return;
    const bool isMove = movesCursor(event.key());
    if (!isOpen() && (isMove || isCommand(event)))
        return;
    QString prefix = withWord(m_editor->textCursor()).selectedText();
    const bool found = (!isMove && askDocument(event.key(), prefix)) || findWords(prefix);
    if (found && !endsWord(event.text()))
        open(prefix);
    else
        close();
}

bool CodeCompletion::askDocument(int key, QString &prefix)
{
    QTextCursor cursor = m_editor->textCursor();
    if (!m_editor->codeDocument()->autoComplete(cursor, m_completer, key, prefix))
        return false;
    m_isFromFile = false;
    return true;
}

// Words of the file that are shown stay while the word that they were shown for is typed.
bool CodeCompletion::findWords(const QString &prefix)
{
    const QStringList *const words = wordsAtCursor();
    if (!words)
        return isOpen() && m_isFromFile && !prefix.isEmpty();
    m_completer->setModel(&m_model);
    m_model.setStringList(*words);
    m_isFromFile = true;
    return true;
}

const QStringList *CodeCompletion::wordsAtCursor() const
{
    const QTextCursor cursor = m_editor->textCursor();
    QString line = cursor.block().text().left(cursor.positionInBlock());
    line.remove(QLatin1Char(' ')).remove(QLatin1Char('\t'));
    for (auto words = m_words.begin(); words != m_words.end(); ++words) {
        const int start = line.size() - words.key().size();
        if (line.endsWith(words.key()) && (start == 0 || !isInName(line.at(start - 1))))
            return &words.value();
    }
    return nullptr;
}

void CodeCompletion::open(const QString &prefix)
{
    m_completer->setCompletionPrefix(prefix);
    const QAbstractItemView *const list = m_completer->popup();
    QRect place = m_editor->cursorRect().translated(m_editor->viewport()->pos());
    place.setWidth(place.width() + list->verticalScrollBar()->sizeHint().width()
                   + list->sizeHintForColumn(0));
    m_completer->complete(place);
}

void CodeCompletion::insert(const QString &word)
{
    CodeDocument *const document = m_editor->codeDocument();
    if (!document || m_editor->isReadOnly())
        return;
    QTextCursor cursor = m_editor->textCursor();
    if (!document->insertCompletion(m_editor, cursor, word)) {
        if (!m_completer->completionPrefix().isEmpty())
            cursor = withWord(cursor);
        cursor.insertText(word);
    }
    document->autoCompleteDone();
}

} // namespace Vela
