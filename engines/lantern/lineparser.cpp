// SPDX-License-Identifier: MIT
#include "lantern/lineparser.h"

#include "lantern/linereader.h"
#include "lantern/motionbox.h"
#include "lantern/motioncode.h"
#include "lantern/motionframe.h"
#include "lantern/namelink.h"
#include "lantern/report.h"
#include "lantern/scriptcode.h"
#include "lantern/scriptreader.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"
#include "lantern/values.h"

namespace Lantern {

namespace {

using Vela::CodeNode;

// Returns the kind of section that a line behind a node stands in. Nodes stand only where they
// belong, so the one right above tells, and no search is needed.
unsigned int sectionBehind(const CodeNode *previous)
{
    switch (previous->type()) {
    case CodeNode::Root:
        return NoSection;
    case CodeNode::Value:
        previous = previous->parent();
        return previous ? static_cast<const SectionCode *>(previous)->subType() : NoSection;
    case CodeNode::Group:
        return static_cast<const SectionCode *>(previous)->subType();
    case CodeNode::Animation:
    case CodeNode::Frame:
    case CodeNode::HitBox:
        break;
    }
    return AnimationSection;
}

/// The parsing of one line.
class LineParse
{
public:
    LineParse(const Line &line, ParserContext &context, const QTextBlock &block, CodeNode *oldNode,
              CodeNode *previous, Report &report)
        : m_line(line)
        , m_context(context)
        , m_block(block)
        , m_oldNode(oldNode)
        , m_previous(previous)
        , m_report(report)
    {
    }

    CodeNode *parse()
    {
        const unsigned int section = sectionBehind(m_previous);
        if (m_context.scope() == Scope::Script)
            return script(section);
        switch (lineKind(m_line, section, m_report)) {
        case LineKind::None:
            break;
        case LineKind::Header:
            return header();
        case LineKind::Include:
            include();
            break;
        case LineKind::Setting:
            return setting(section);
        case LineKind::Frame:
            return frame();
        case LineKind::Box:
            return box();
        }
        return nullptr;
    }

private:
    // Returns the old node if it is of a type. All nodes of a text were made here, so the type
    // tells the class.
    template <typename T>
    T *old(CodeNode::Type type) const
    {
        return m_oldNode && m_oldNode->type() == type ? static_cast<T *>(m_oldNode) : nullptr;
    }

    // Returns the old node if it is of a type and has the parent that a new one would join. Headers
    // that come and go in between leave nodes without the parent that they now have.
    template <typename T>
    T *oldChild(CodeNode::Type type, CodeNode::Type parent, CodeNode::Type end) const
    {
        T *const node = old<T>(type);
        return node && node->parent() == joined(type, parent, end) ? node : nullptr;
    }

    const CodeNode *joined(CodeNode::Type type, CodeNode::Type parent, CodeNode::Type end) const
    {
        for (const CodeNode *node = m_previous; node && node->type() != end;
             node = node->previous()) {
            if (node->type() == type)
                return node->parent();
            if (node->type() == parent)
                return node;
        }
        return nullptr;
    }

    CodeNode *header()
    {
        HeaderLine header;
        if (!readHeader(m_line, m_context.scope(), header, m_report))
            return nullptr;
        if (header.kind == AnimationSection)
            return animation(header);
        return section(header);
    }

    CodeNode *section(const HeaderLine &header)
    {
        const QStringView word = m_line.text(header.word);
        if (auto *const section = old<SectionCode>(CodeNode::Group)) {
            section->update(header.kind, word, header.rest);
            return section;
        }
        return new SectionCode(m_block, m_previous, header.kind, word.toString().toLower(),
                               header.rest.toString());
    }

    CodeNode *animation(const HeaderLine &header)
    {
        const QStringView identifier = m_line.text(header.name);
        const QString title = header.title < 0 ? QString() : m_line.value(header.title);
        if (auto *const animation = old<MotionCode>(CodeNode::Animation)) {
            animation->update(identifier, title);
            return animation;
        }
        return new MotionCode(m_block, m_previous, identifier.toString(), title);
    }

    CodeNode *script(unsigned int section)
    {
        if (!isReadable(m_line, m_report) || m_line.shape() == Line::Blank)
            return nullptr;
        if (m_line.shape() == Line::Header) {
            HeaderLine header;
            return readScriptHeader(m_line, header, m_report) ? this->section(header) : nullptr;
        }
        if (section != ScriptLines) {
            m_report.expected(QT_TRANSLATE_NOOP("Lantern", "'[script NAME]'"), 0);
            return nullptr;
        }
        ScriptLine script;
        if (!readScriptLine(m_line, script, m_report))
            return nullptr;
        if (m_report.isHeard())
            linkNames(script);
        auto *const node =
            oldChild<ScriptCode>(CodeNode::Value, CodeNode::Group, CodeNode::Animation);
        if (!node)
            return new ScriptCode(m_block, m_previous, m_line, script);
        node->update(m_line, script);
        return node;
    }

    void linkNames(const ScriptLine &script)
    {
        for (const int token : script.animations)
            link(token, m_line.value(token), &ParserContext::openAnimation);
        for (const int token : script.sounds) {
            const QString name = m_line.value(token);
            link(token, name, &ParserContext::openSound);
            if (m_context.soundPresence(name) == Presence::Missing)
                missing(Report::tr("There is no sound '%1'."), name, token);
        }
    }

    void include()
    {
        QString path;
        if (!readInclude(m_line, path, m_report) || !m_report.isHeard())
            return;
        link(1, path, &ParserContext::openFile);
        if (m_context.filePresence(path) == Presence::Missing)
            missing(Report::tr("There is no file '%1'."), path, 1);
    }

    // Whether the files of the project's lists are there is told with the lists.
    void path(const Rule &rule, const QString &path)
    {
        link(2, path, &ParserContext::openFile);
        if (rule.fileType < 0 && m_context.filePresence(path) == Presence::Missing)
            missing(Report::tr("There is no file '%1'."), path, 2);
    }

    CodeNode *setting(unsigned int section)
    {
        SettingLine setting;
        if (!readSetting(m_line, m_context.scope(), section, setting, m_report))
            return nullptr;
        if (m_report.isHeard() && setting.rule && setting.rule->form == Form::Path)
            path(*setting.rule, insidePath(setting.value.toString()));
        auto *const node =
            oldChild<SettingCode>(CodeNode::Value, CodeNode::Group, CodeNode::Animation);
        const auto type = setting.rule ? setting.rule->type : Vela::ValueCode::Unknown;
        if (node && node->valueType() == type) {
            node->update(setting.rule, m_line.text(0), setting.value);
            return node;
        }
        const QString key = setting.rule ? QString() : m_line.text(0).toString().toLower();
        return new SettingCode(m_block, m_previous, setting.rule, key, setting.value);
    }

    CodeNode *frame()
    {
        FrameLine frame;
        if (!readFrame(m_line, frame, m_report))
            return nullptr;
        auto *node = oldChild<MotionFrame>(CodeNode::Frame, CodeNode::Animation, CodeNode::Group);
        if (node)
            node->update(m_line, frame);
        else
            node = new MotionFrame(m_block, m_previous, m_line, frame, m_context);
        if (m_report.isHeard())
            checkNames(*node, frame);
        return node;
    }

    void checkNames(const MotionFrame &node, const FrameLine &frame)
    {
        if (frame.sprite >= 0 && m_context.spritePresence(node.spriteName()) == Presence::Missing)
            missing(Report::tr("There is no sprite '%1'."), node.spriteName(), frame.sprite);
        if (frame.sound >= 0 && m_context.soundPresence(node.soundName()) == Presence::Missing)
            missing(Report::tr("There is no sound '%1'."), node.soundName(), frame.sound);
    }

    CodeNode *box()
    {
        BoxLine box;
        if (!readBox(m_line, box, m_report))
            return nullptr;
        if (auto *const node = old<MotionBox>(CodeNode::HitBox)) {
            node->update(box);
            return node;
        }
        return new MotionBox(m_block, m_previous, box);
    }

    void link(int token, const QString &name, NameLink::Open open)
    {
        m_report.syntax()->addLink(
            new NameLink(m_line.at(token).start, m_line.at(token).end, name, m_context, open));
    }

    void missing(const QString &message, const QString &name, int token)
    {
        m_report.warning(TokenKind::Name, message.arg(clipped(name)), token);
    }

    const Line &m_line;
    ParserContext &m_context;
    const QTextBlock &m_block;
    CodeNode *const m_oldNode;
    CodeNode *const m_previous;
    Report &m_report;
};

} // namespace

LineParser::LineParser(ParserContext &context)
    : m_context(context)
{
}

LineParser::~LineParser() = default;

CodeNode *LineParser::parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                                CodeNode *previous, Vela::RootCode *,
                                Vela::CodeParserSyntax *syntax)
{
    const Line tokens(line);
    Report report(tokens, syntax);
    CodeNode *const node = LineParse(tokens, m_context, block, oldNode, previous, report).parse();
    if (tokens.hasComment())
        report.span(TokenKind::Comment, tokens.commentStart(), line.size());
    return node;
}

} // namespace Lantern
