// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QList>
#include <QString>
#include <QTextBlock>
#include <QTextBlockUserData>
#include <QVector>
#include <memory>

namespace Vela {

class CodeDocumentPrivate;
class CodeLink;
class CodeMark;
class CodeNode;

/// What is known of one line of a document. It belongs to its block, and takes the line's node,
/// links and messages with it.
class VELA_EXPORT CodeBlockData : public QTextBlockUserData
{
public:
    struct SyntaxMessage
    {
        enum Kind { Error = 0, Deprecation = 1, Warning = 2, Information = 3 };

        int type = Error; ///< of Kind
        int start = 0;
        int end = 0; ///< excluded
        QString message;
    };

    struct Parenthesis
    {
        enum Type { Opening = 0, Closing = 1 };

        int type = Opening;
        QChar character;
        int position = 0;
    };

    ~CodeBlockData() override;

    /// Returns the data of a block, which is made if it is missing; null for an invalid block.
    static CodeBlockData *blockData(const QTextBlock &block, CodeDocumentPrivate *document);
    /// Returns the data that a block of a CodeDocument has, or null.
    static CodeBlockData *testBlockData(const QTextBlock &block);

    CodeNode *codeNode() const
    {
        return m_codeNode;
    }
    /// Returns how many levels the line is inside of what can be folded.
    unsigned int foldingIndent() const
    {
        return m_foldingIndent;
    }
    bool isFolded() const
    {
        return m_folded;
    }
    void setFolded(bool folded)
    {
        m_folded = folded;
    }
    /// Returns whether the parser has ever found more in the line than a comment.
    bool isParsed() const
    {
        return m_parsed;
    }
    QList<CodeMark *> marks() const
    {
        return m_marks;
    }
    QList<CodeLink *> links() const;
    QVector<Parenthesis> parenthesis() const;
    QVector<SyntaxMessage> syntaxMessages() const;

    /// There is one for each line of each text, so they come from a pool.
    static void *operator new(size_t size);
    static void operator delete(void *memory);

private:
    Q_DISABLE_COPY(CodeBlockData)
    friend class CodeDocument;
    friend class CodeDocumentPrivate;
    friend class CodeLayout;

    /// What few lines have.
    struct Reports;

    explicit CodeBlockData(CodeDocumentPrivate *document);

    Reports &reports();

    CodeDocumentPrivate *m_document;
    CodeNode *m_codeNode = nullptr;
    unsigned int m_foldingIndent = 0;
    bool m_folded = false;
    bool m_parsed = false;
    bool m_isNew = false;     ///< with its text, until the layout hears of the line
    bool m_formatted = false; ///< whether the layout of the line has formats of the highlight
    QList<CodeMark *> m_marks;
    std::unique_ptr<Reports> m_reports; ///< null for a line without any
};

} // namespace Vela
