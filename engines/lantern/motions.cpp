// SPDX-License-Identifier: MIT
#include "lantern/motions.h"

#include "lantern/line.h"
#include "lantern/motionbox.h"
#include "lantern/report.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"

#include "code/animationcode.h"
#include "code/codedocument.h"
#include "code/framecode.h"

#include <QHash>
#include <QSet>
#include <QTextBlock>

#include <algorithm>

namespace Lantern {

namespace {

using Vela::CodeNode;

/// Finds the lines of a text that change nothing for the engine.
class Cleaner
{
public:
    explicit Cleaner(Vela::CodeDocument &document)
        : m_document(document)
        , m_isRemoved(document.blockCount())
    {
    }

    unsigned int clean()
    {
        findSettings();
        findBoxes();
        findSections();
        findBlankLines();
        const auto removed = std::count(m_isRemoved.begin(), m_isRemoved.end(), true);
        if (removed > 0)
            remove();
        return unsigned(removed);
    }

private:
    template <typename Function>
    void forEachLine(const Function &function) const
    {
        for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next())
            function(block, block.blockNumber());
    }

    static bool hasComment(const QTextBlock &block)
    {
        const QString text = block.text();
        return Line(text).hasComment();
    }

    static bool saysDefault(const SettingCode &setting)
    {
        const QVariant value = setting.defaultValue();
        return value.isValid()
            && setting.convertFrom(setting.valueType(), value) == setting.rawValue();
    }

    // Of a setting that stands more than once the last counts. That one goes too if it says what
    // holds without it, and no other is left that would count in its place.
    void findSettings()
    {
        QHash<const Rule *, QVector<const SettingCode *>> settings;
        forEachLine([&](const QTextBlock &block, int) {
            const CodeNode *const node = m_document.nodeInBlock(block);
            if (!node || node->type() != CodeNode::Value)
                return;
            const auto *const setting = static_cast<const SettingCode *>(node);
            if (setting->rule() && !setting->rule()->isList)
                settings[setting->rule()].append(setting);
        });
        for (const QVector<const SettingCode *> &places : qAsConst(settings)) {
            bool isLastAlone = true;
            for (const SettingCode *place : places) {
                const bool isLast = place == places.last();
                const bool isRemoved = !hasComment(place->block())
                    && (!isLast || (isLastAlone && saysDefault(*place)));
                isLastAlone = isLastAlone && isRemoved;
                m_isRemoved[place->lineNo()] = isRemoved;
            }
        }
    }

    // A box that stands twice at a frame touches no more than one.
    void findBoxes()
    {
        QSet<QString> ofFrame;
        forEachLine([&](const QTextBlock &block, int number) {
            const CodeNode *const node = m_document.nodeInBlock(block);
            if (node && node->type() != CodeNode::HitBox)
                ofFrame.clear();
            if (!node || node->type() != CodeNode::HitBox)
                return;
            const auto *const box = static_cast<const MotionBox *>(node);
            const QString code = boxCode(box->boxType(), box->rect(), box->depth());
            if (ofFrame.contains(code) && !hasComment(block))
                m_isRemoved[number] = true;
            ofFrame.insert(code);
        });
    }

    // A main section must be there, and one that nobody knows may mean something by being there.
    static bool mayBeEmpty(SectionKind kind)
    {
        return kind == StageSection || kind == ProjectsSection || kind == FilesSection
            || kind == MotionSection;
    }

    void findSections()
    {
        int header = -1; // of a section that has had no line yet
        const auto endSection = [&] {
            if (header >= 0)
                m_isRemoved[header] = true;
            header = -1;
        };
        forEachLine([&](const QTextBlock &block, int number) {
            const CodeNode *const node = m_document.nodeInBlock(block);
            if (node && (node->type() == CodeNode::Group || node->type() == CodeNode::Animation)) {
                endSection();
                if (node->type() == CodeNode::Group && !hasComment(block)
                    && mayBeEmpty(static_cast<const SectionCode *>(node)->kind()))
                    header = number;
                return;
            }
            const QString text = block.text();
            if (!m_isRemoved.at(number) && Line(text).shape() != Line::Blank)
                header = -1;
        });
        endSection();
    }

    // The last line of a text that ends with a line end has no characters and is none.
    void findBlankLines()
    {
        bool wasBlank = false;
        forEachLine([&](const QTextBlock &block, int number) {
            const QString text = block.text();
            const Line line(text);
            const bool isBlank = line.shape() == Line::Blank && !line.hasComment();
            if (m_isRemoved.at(number) || !block.next().isValid())
                return;
            if (isBlank && wasBlank && !isReservedSection(unsigned(block.userState())))
                m_isRemoved[number] = true;
            wasBlank = isBlank;
        });
    }

    // Goes from the last line to the first, so that the numbers stay right.
    void remove()
    {
        m_document.beginChange();
        for (int last = m_isRemoved.size() - 1; last >= 0; --last) {
            if (!m_isRemoved.at(last))
                continue;
            int first = last;
            while (first > 0 && m_isRemoved.at(first - 1))
                --first;
            removeLines(first, last);
            last = first;
        }
        m_document.endChange();
    }

    void removeLines(int first, int last)
    {
        const QTextBlock begin = m_document.findBlockByNumber(first);
        const QTextBlock end = m_document.findBlockByNumber(last);
        int from = begin.position();
        int to = end.position() + end.length();
        if (!end.next().isValid()) {
            from = std::max(0, from - 1);
            --to;
        }
        QTextCursor cursor(begin);
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        m_document.insertOnCursor(QString(), cursor);
    }

    Vela::CodeDocument &m_document;
    QVector<bool> m_isRemoved;
};

} // namespace

Motions::Motions(Vela::CodeDocument *document)
    : Animations(document)
{
}

unsigned int Motions::optimize()
{
    // A document may read its content when it is first asked for it.
    return document()->isEmpty() ? 0 : Cleaner(*document()).clean();
}

QString Motions::animationTemplate() const
{
    // The first line end keeps the header apart from a text without one at its end.
    return QStringLiteral("\n[animation %1]\n");
}

QVector<Vela::Message> Motions::boxesWithoutFrame() const
{
    QVector<Vela::Message> messages;
    for (unsigned int i = 0; i < count(); ++i) {
        const Vela::AnimationCode *const animation = at(i);
        const CodeNode *last = animation;
        if (animation->frameCount() > 0)
            last = animation->frameAt(animation->frameCount() - 1);
        for (const CodeNode *node = last->next(); node && node->type() == CodeNode::HitBox;
             node = node->next()) {
            messages.append({Vela::Message::Warning, unsigned(node->lineNo()), 0,
                             Report::tr("This box stands above no frame: it touches nothing.")});
        }
    }
    return messages;
}

void Motions::free()
{
    delete this;
}

} // namespace Lantern
