// SPDX-License-Identifier: MIT
#include "require.h"

#include "lantern/document.h"
#include "lantern/motioncode.h"
#include "lantern/motionframe.h"
#include "lantern/motions.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"

#include "code/codeblockdata.h"
#include "code/codelink.h"
#include "code/rootcode.h"
#include "frame/textcodecs.h"
#include "project/messages.h"
#include "support/memoryarchive.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QCompleter>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <cstdlib>
#include <iterator>

using Lantern::Document;
using Lantern::MotionCode;
using Lantern::MotionFrame;
using Lantern::Motions;
using Vela::CodeBlockData;
using Vela::CodeNode;

namespace {

/// The end of the input, read as numbers; zeros when it is used up.
class Choices
{
public:
    Choices(const uint8_t *data, size_t size)
        : m_data(data)
        , m_size(size)
    {
    }

    int below(int end)
    {
        unsigned int number = 0;
        for (int i = 0; i < 2 && m_size > 0; ++i)
            number = number << 8 | m_data[--m_size];
        return int(number % unsigned(std::max(end, 1)));
    }

    size_t rest() const
    {
        return m_size;
    }

private:
    const uint8_t *m_data;
    size_t m_size;
};

// The text with its lines as they stand: a separator that is no end of a line stays.
QString textOf(const Document &document)
{
    return document.toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

Motions &motionsOf(const Document &document)
{
    return *static_cast<Motions *>(document.nodeFile(CodeNode::Animation, 0));
}

QString number(double value)
{
    return QString::number(value, 'g', 17);
}

QString saysBox(const Vela::ContactBoxCode &box)
{
    return Lantern::boxCode(box.boxType(), box.rect(), box.depth());
}

QList<Vela::ContactBoxCode *> boxesOf(const Vela::FrameCode &frame)
{
    return static_cast<Lantern::MotionBoxes *>(frame.attackBoxes())->boxes()
        + static_cast<Lantern::MotionBoxes *>(frame.collisionBoxes())->boxes();
}

QString saysFrame(const MotionFrame &frame)
{
    const Vela::FrameCode::Blend blend = frame.blend();
    return QStringList{
        frame.spriteName(),         frame.soundName(),       number(frame.delay()),
        number(frame.offsetX()),    number(frame.offsetY()), number(frame.scaleX()),
        number(frame.scaleY()),     number(frame.angle()),   number(frame.flipFlags()),
        number(blend.mode),         number(blend.source),    number(blend.destination),
        number(frame.isLoopPoint())}
        .join(QLatin1Char('|'));
}

QString saysNode(CodeNode *node)
{
    switch (node->type()) {
    case CodeNode::Group: {
        auto *const section = static_cast<Lantern::SectionCode *>(node);
        return section->name() + QLatin1Char('|') + section->displayName();
    }
    case CodeNode::Value: {
        auto *const setting = static_cast<Lantern::SettingCode *>(node);
        if (!setting->rule())
            return setting->name() + QLatin1Char('|') + setting->text();
        return setting->name() + QLatin1Char('|')
            + Lantern::SettingCode::asString(setting, setting->valueType(), setting->rawValue(),
                                             QLatin1Char(','));
    }
    case CodeNode::Animation: {
        auto *const animation = static_cast<MotionCode *>(node);
        return QStringList{animation->identifier(), animation->name(),
                           number(animation->frameCount()), number(animation->loopPoint())}
            .join(QLatin1Char('|'));
    }
    case CodeNode::Frame:
        return saysFrame(*static_cast<MotionFrame *>(node));
    case CodeNode::HitBox:
        return saysBox(*static_cast<Lantern::MotionBox *>(node));
    case CodeNode::Root:
        break;
    }
    std::abort();
}

// What each line says, and where it stands in the tree.
QStringList outline(const Document &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        CodeNode *const node = document.nodeInBlock(block);
        if (!node) {
            lines.append(QString());
            continue;
        }
        const Vela::ParentCode *const parent = node->parent();
        const int parentLine = !parent ? -2 : parent->block().isValid() ? parent->lineNo() : -1;
        lines.append(QStringLiteral("%1 %2 ").arg(node->type()).arg(parentLine) + saysNode(node));
    }
    return lines;
}

// What the animations say, each with its frames, and each frame with its boxes.
QStringList animationsOf(const Document &document)
{
    QStringList said;
    const auto animations = motionsOf(document).animations();
    for (Vela::AnimationCode *const animation : animations) {
        said.append(saysNode(animation));
        const auto frames = animation->frames();
        for (Vela::FrameCode *const frame : frames) {
            said.append(saysNode(frame));
            QStringList boxes;
            for (const Vela::ContactBoxCode *const box : boxesOf(*frame))
                boxes.append(saysBox(*box));
            boxes.sort();
            boxes.removeDuplicates();
            said += boxes;
        }
    }
    return said;
}

void checkTree(Vela::ParentCode &parent)
{
    int line = -1;
    for (unsigned int row = 0; row < parent.childCount(); ++row) {
        CodeNode *const child = parent.childAt(row);
        require(CodeNode::isValid(child) && child->parent() == &parent);
        require(parent.childIndex(child) == int(row));
        require(child->lineNo() > line);
        line = child->lineNo();
    }
}

// Every node is in the chain, in the order of the lines, and knows its place.
void checkNodes(const Document &document)
{
    CodeNode *last = document.root();
    checkTree(*document.root());
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        CodeNode *const node = document.nodeInBlock(block);
        if (!node)
            continue;
        require(CodeNode::isValid(node) && last->next() == node && node->previous() == last);
        require(node->block() == block && node->document() == &document);
        require(node->firstLine() >= 0 && node->firstLine() <= block.blockNumber());
        require(node->lastLine() >= block.blockNumber());
        if (node->parent())
            require(node->parent()->childIndex(node) >= 0);
        if (node->type() == CodeNode::Animation)
            checkTree(*static_cast<MotionCode *>(node));
        else if (node->type() == CodeNode::Group)
            checkTree(*static_cast<Lantern::SectionCode *>(node));
        last = node;
    }
    require(!last->next());
}

void checkAnimations(const Document &document)
{
    QList<Vela::AnimationCode *> inTree;
    const auto childs = document.root()->childs();
    for (CodeNode *const child : childs) {
        if (child->type() == CodeNode::Animation)
            inTree.append(static_cast<MotionCode *>(child));
    }
    require(motionsOf(document).animations() == inTree);
    require(motionsOf(document).listModel()->rowCount() == inTree.size());
}

// What is told of a line lies in it.
void checkSpans(const Document &document)
{
    int messages = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int length = block.length() - 1;
        const auto isInside = [length](int start, int end) {
            return start >= 0 && start <= end && end <= length;
        };
        const auto formats = block.layout()->formats();
        for (const QTextLayout::FormatRange &format : formats)
            require(isInside(format.start, format.start + format.length));
        const CodeBlockData *const data = CodeBlockData::testBlockData(block);
        if (!data)
            continue;
        for (const Vela::CodeLink *const link : data->links())
            require(isInside(link->start(), link->end()));
        for (const CodeBlockData::Parenthesis &parenthesis : data->parenthesis())
            require(isInside(parenthesis.position, parenthesis.position + 1));
        for (const CodeBlockData::SyntaxMessage &message : data->syntaxMessages())
            require(isInside(message.start, message.end));
        messages += data->syntaxMessages().size();
    }
    // Each look at a row walks the text.
    const Vela::Messages *const all = document.messages();
    require(all->rowCount() >= messages);
    for (int row = 0; row < all->rowCount(); row += 1 + all->rowCount() / 32) {
        const Vela::Message message = all->at(unsigned(row), Vela::Message::Any);
        const QTextBlock block = document.findBlockByNumber(int(message.line));
        require(block.isValid() && int(message.column) < block.length());
    }
}

// A document that has been edited is one that reads the same text at once. A line that depends on
// more than the line above it may need the whole text to be parsed.
void check(Document &document)
{
    checkNodes(document);
    checkAnimations(document);
    checkSpans(document);
    auto *const fresh = new Document(document.scope());
    fresh->fromString(textOf(document));
    const QStringList expected = outline(*fresh);
    fresh->release();
    if (outline(document) == expected)
        return;
    document.rehighlight();
    checkNodes(document);
    checkAnimations(document);
    require(outline(document) == expected);
}

void checkFormat(Document &document, int first, int last, bool indentOnly)
{
    const QString text = textOf(document);
    const QStringList lines = outline(document);
    document.formatLines(first, last, indentOnly);
    const QString formatted = textOf(document);
    require(outline(document) == lines);
    check(document);
    document.formatLines(first, last, indentOnly);
    require(textOf(document) == formatted);
    if (formatted != text)
        document.undo();
    require(textOf(document) == text);
}

void checkOptimize(Document &document)
{
    const QString text = textOf(document);
    const QStringList animations = animationsOf(document);
    const int lines = document.blockCount();
    const unsigned int removed = motionsOf(document).optimize();
    require(document.blockCount() == std::max(1, lines - int(removed)));
    require(animationsOf(document) == animations);
    check(document);
    require(motionsOf(document).optimize() == 0);
    if (textOf(document) != text)
        document.undo();
    require(textOf(document) == text);
}

// A copy of the boxes of a frame comes on top of them.
void checkClipboard(Document &document, int animationIndex, int frameIndex)
{
    const QString text = textOf(document);
    const auto frame = [&]() -> Vela::FrameCode & {
        return *motionsOf(document).at(unsigned(animationIndex))->frameAt(unsigned(frameIndex));
    };
    const auto copied = [&] { return frame().contactBoxesText(boxesOf(frame())); };
    const int count = boxesOf(frame()).size();
    const QString boxes = copied();
    require(frame().pasteContactBoxes(boxes) == count);
    require(boxesOf(frame()).size() == 2 * count);
    QStringList twice = boxes.repeated(2).split(QLatin1Char('\n'));
    QStringList now = copied().split(QLatin1Char('\n'));
    std::sort(twice.begin(), twice.end());
    std::sort(now.begin(), now.end());
    require(now == twice);
    check(document);
    if (count > 0)
        document.undo();
    require(textOf(document) == text);
}

QByteArray saved(Document &document)
{
    MemoryArchive archive;
    require(document.toFile(archive, QStringLiteral("a.motion"), Vela::ProjectFile::Copy, nullptr));
    return archive.content(QStringLiteral("a.motion"));
}

// Of an encoding with a mark of its own nothing is guessed.
void checkFile(Document &document)
{
    if (!document.toRawText().isValidUtf16())
        return;
    QString text = document.toString();
    require(saved(document)
            == QString(text).replace(QLatin1Char('\n'), QLatin1String("\r\n")).toUtf8());
    document.setProperty(QStringLiteral("Encoding"), QStringLiteral("UTF-16BE"));
    MemoryArchive archive;
    archive.put(QStringLiteral("a.motion"), saved(document));
    auto *const loaded = new Document(document.scope());
    require(loaded->fromFile(archive, QStringLiteral("a.motion"), 0, nullptr));
    // A carriage return ends a line with the line feed behind it, and also alone.
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    require(textOf(*loaded) == text && !loaded->isModified());
    // A separator of lines is the end of one in a file, and a character in a text.
    if (!document.toRawText().contains(QChar::LineSeparator))
        require(outline(*loaded) == outline(document));
    loaded->release();
}

void complete(Document &document, QTextCursor cursor, int choice)
{
    QCompleter completer;
    QString prefix;
    if (!document.autoComplete(cursor, &completer, 0, prefix))
        return;
    const QAbstractItemModel &words = *completer.model();
    require(words.rowCount() > 0);
    const int lines = document.blockCount();
    document.insertCompletion(nullptr, cursor,
                              words.index(choice % words.rowCount(), 0).data().toString());
    require(document.blockCount() == lines);
}

/// Edits that the end of the input chooses.
class Edits
{
public:
    Edits(Document &document, Choices &choices)
        : m_document(document)
        , m_choices(choices)
    {
    }

    void edit()
    {
        switch (m_choices.below(12)) {
        case 0:
        case 1:
            place(6).removeSelectedText();
            break;
        case 2:
            place(300).removeSelectedText();
            break;
        case 3:
        case 4:
            place(1).insertText(word());
            break;
        case 5:
            place(40).insertText(place(300).selectedText());
            break;
        case 6:
            m_document.undo();
            break;
        case 7:
            m_document.redo();
            break;
        case 8:
            m_document.rehighlight();
            break;
        case 9:
            complete(m_document, place(1), m_choices.below(99));
            break;
        default:
            editNodes();
        }
    }

private:
    // A selection of fewer characters than \a length. It may part a surrogate pair.
    QTextCursor place(int length)
    {
        const int end = m_document.characterCount();
        QTextCursor cursor(&m_document);
        cursor.setPosition(m_choices.below(end));
        cursor.setPosition(std::min(end - 1, cursor.position() + m_choices.below(length)),
                           QTextCursor::KeepAnchor);
        return cursor;
    }

    QString word()
    {
        static const char *const words[] = {"\n",
                                            "#",
                                            "\"",
                                            "[",
                                            "]",
                                            ",",
                                            " ",
                                            "",
                                            "none",
                                            "a \"\" # b",
                                            "tags = move",
                                            "\n[animation a]\n",
                                            "\n[motion]\n",
                                            "\n[sprite x]\n",
                                            "\nframe a : 1, loop\n",
                                            "\nbody 1 2 3 4\n"};
        return QString::fromLatin1(words[m_choices.below(int(std::size(words)))]);
    }

    int number()
    {
        return m_choices.below(65536) - 32768;
    }

    void editNodes()
    {
        m_document.beginChange();
        for (int count = 1 + m_choices.below(4); count > 0; --count) {
            const int line = m_choices.below(m_document.blockCount());
            if (CodeNode *const node = m_document.nodeInBlock(m_document.findBlockByNumber(line)))
                editNode(*node);
        }
        m_document.endChange();
    }

    void editNode(CodeNode &node)
    {
        const int kind = m_choices.below(8);
        if (kind == 0) {
            node.remove(m_choices.below(2) == 0);
            return;
        }
        const QTextBlock block = node.block();
        const int lines = m_document.blockCount();
        switch (node.type()) {
        case CodeNode::Group:
            if (kind > 1)
                static_cast<Lantern::SectionCode &>(node).addValue(QStringLiteral("author"), word(),
                                                                   false);
            else
                static_cast<Lantern::SectionCode &>(node).setName(word());
            return;
        case CodeNode::Value:
            if (kind > 3)
                static_cast<Lantern::SettingCode &>(node).setValue(number());
            else
                static_cast<Lantern::SettingCode &>(node).setValue(word());
            break;
        case CodeNode::Animation:
            editAnimation(static_cast<MotionCode &>(node), kind);
            return;
        case CodeNode::Frame:
            editFrame(static_cast<MotionFrame &>(node), kind);
            break;
        case CodeNode::HitBox: {
            const QRect rect(number(), number(), number(), number());
            static_cast<Lantern::MotionBox &>(node).setRect(rect);
            const auto *const box =
                static_cast<Lantern::MotionBox *>(m_document.nodeInBlock(block));
            require(box && box->type() == CodeNode::HitBox && box->rect() == rect);
            break;
        }
        case CodeNode::Root:
            break;
        }
        // A change of a value stays in its line.
        require(block.isValid() && m_document.blockCount() == lines);
    }

    void editAnimation(MotionCode &animation, int kind)
    {
        Motions &motions = motionsOf(m_document);
        const auto count = int(motions.count());
        const auto frames = int(animation.frameCount());
        const auto frame = unsigned(m_choices.below(frames));
        const int index = m_choices.below(count);
        switch (kind) {
        case 1:
            animation.setLoopPoint(frame);
            require(frames == 0 || animation.loopPoint() == frame);
            break;
        case 2:
            require(animation.insertFrame(frame, number()) == animation.frameAt(frame));
            break;
        case 3:
            animation.setName(word());
            break;
        case 4:
            move(motions, index, m_choices.below(count));
            break;
        case 5:
            motions.duplicate(unsigned(index), QStringLiteral("copy"));
            require(int(motions.count()) == count + 1);
            break;
        case 6:
            animation.removeFrame(frame);
            require(int(animation.frameCount()) == std::max(0, frames - 1));
            break;
        default:
            animation.setCode(QStringLiteral("[animation b] \"B\"\nbody 1 2 3 4\nframe a : 1"));
            require(int(motions.count()) == count);
        }
    }

    static void move(Motions &motions, int from, int to)
    {
        const auto identifiers = [&motions] {
            QStringList found;
            for (const Vela::AnimationCode *const animation : motions.animations())
                found.append(static_cast<const MotionCode *>(animation)->identifier());
            return found;
        };
        QStringList expected = identifiers();
        expected.move(from, to);
        motions.move(unsigned(from), unsigned(to));
        require(identifiers() == expected);
    }

    // What was set is what the line says.
    void editFrame(MotionFrame &frame, int kind)
    {
        const QTextBlock block = frame.block();
        const auto now = [&]() -> MotionFrame & {
            CodeNode *const node = m_document.nodeInBlock(block);
            require(node && node->type() == CodeNode::Frame);
            return static_cast<MotionFrame &>(*node);
        };
        switch (kind) {
        case 1: {
            const QString name = word().remove(QLatin1Char('\n'));
            frame.setSprite(name);
            require(now().spriteName() == name);
            break;
        }
        case 2: {
            const int ticks = number();
            frame.setDelay(ticks);
            require(now().delay() == std::max(ticks, -1));
            break;
        }
        case 3: {
            const QPoint offset(number(), number());
            frame.setOffset(offset);
            require(now().offset() == offset);
            break;
        }
        case 4: {
            const double angle = number() / 8.0;
            frame.setAngle(angle);
            require(now().angle() == angle);
            break;
        }
        case 5: {
            const auto flags = unsigned(m_choices.below(4));
            frame.setFlipFlags(flags);
            require(now().flipFlags() == flags);
            break;
        }
        case 6: {
            const auto mode = Vela::FrameCode::Blend::Mode(m_choices.below(7));
            frame.setBlend({mode, number() / 4.0, number() / 4.0});
            require(now().blendMode() == mode);
            break;
        }
        default:
            frame.setLoopPoint(kind == 7);
            require(now().isLoopPoint() == (kind == 7));
        }
    }

    Document &m_document;
    Choices &m_choices;
};

void checkOperations(Document &document, Choices &choices)
{
    const int last = document.blockCount() - 1;
    checkFormat(document, 0, last, false);
    checkFormat(document, 0, last, true);
    checkFormat(document, choices.below(last), choices.below(last), choices.below(2) == 0);
    checkOptimize(document);
    const int animation = choices.below(int(motionsOf(document).count()));
    if (const auto *const found = motionsOf(document).at(unsigned(animation))) {
        if (found->frameCount() > 0)
            checkClipboard(document, animation, choices.below(int(found->frameCount())));
    }
    document.rehighlight();
    check(document);
    checkFile(document);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*argc, *argv);
    Vela::TextCodecs::initialize();
    return 0;
}

// The input is a motion file; its last byte tells how much of its end chooses the edits.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const size_t choosing = std::min<size_t>(size, data[size - 1]);
    const size_t textSize = size - std::max<size_t>(choosing, 1);
    Choices choices(data + textSize, choosing > 0 ? choosing - 1 : 0);

    int codec = -1;
    const QByteArray file(reinterpret_cast<const char *>(data), int(textSize));
    auto *const document = new Document(Lantern::Scope::Motion);
    document->fromString(Vela::TextCodecs::stringFromData(file, &codec));
    check(*document);
    Edits edits(*document, choices);
    for (int count = 0; count < 8 && choices.rest() > 8; ++count) {
        edits.edit();
        check(*document);
    }
    checkOperations(*document, choices);
    document->release();
    return 0;
}
