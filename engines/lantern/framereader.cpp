// SPDX-License-Identifier: MIT
#include "lantern/linereader.h"

#include "lantern/report.h"
#include "lantern/values.h"

namespace Lantern {

namespace {

using Vela::FrameCode;

/// Reads the options of a frame.
class OptionReader
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)

public:
    OptionReader(const Line &line, FrameLine &frame, Report &report)
        : m_line(line)
        , m_frame(frame)
        , m_report(report)
    {
    }

    /// Reads the option that begins with a token, and moves behind its last.
    bool read(int &index);

private:
    struct Word
    {
        QLatin1String word;
        FrameOption option;
        bool (OptionReader::*read)();
    };

    static const Word *find(QStringView word);
    bool readX()
    {
        return readOffset(m_frame.x);
    }
    bool readY()
    {
        return readOffset(m_frame.y);
    }
    bool readOffset(int &offset);
    bool readFlip();
    bool readMirror();
    bool readScale();
    bool readAngle();
    bool readRotate();
    bool readBlend();
    bool readFactor(int index, double &factor);
    bool readLoop();
    bool readPlay();
    bool hasValue(const char *what);
    bool hasNothing(int index);
    void warnOfUnknown();

    const Line &m_line;
    FrameLine &m_frame;
    Report &m_report;
    int m_first = 0; // tokens of the option
    int m_end = 0;
};

const OptionReader::Word *OptionReader::find(QStringView word)
{
    static const Word words[] = {
        {QLatin1String("x"), FrameOption::X, &OptionReader::readX},
        {QLatin1String("y"), FrameOption::Y, &OptionReader::readY},
        {QLatin1String("flip"), FrameOption::Flip, &OptionReader::readFlip},
        {QLatin1String("scale"), FrameOption::Scale, &OptionReader::readScale},
        {QLatin1String("angle"), FrameOption::Angle, &OptionReader::readAngle},
        {QLatin1String("blend"), FrameOption::Blend, &OptionReader::readBlend},
        {QLatin1String("loop"), FrameOption::Loop, &OptionReader::readLoop},
        {QLatin1String("play"), FrameOption::Play, &OptionReader::readPlay},
        {QLatin1String("mirror"), FrameOption::Flip, &OptionReader::readMirror},
        {QLatin1String("rotate"), FrameOption::Angle, &OptionReader::readRotate},
    };
    for (const Word &entry : words) {
        if (saysWord(word, entry.word))
            return &entry;
    }
    return nullptr;
}

bool OptionReader::read(int &index)
{
    m_first = index;
    m_end = index;
    while (m_end < m_line.count() && !m_line.is(m_end, Token::Comma))
        ++m_end;
    if (!m_line.is(m_first, Token::Word))
        return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "an option such as 'x = 4'"),
                                 m_first);
    const Word *const word = find(m_line.text(m_first));
    const FrameOption option = word ? word->option : FrameOption::Unknown;
    if (word) {
        m_report.token(TokenKind::Option, m_first);
        if (m_frame.has(option)) {
            m_report.warning(TokenKind::Option,
                             tr("'%1' stands twice in this frame; the last one counts.")
                                 .arg(m_line.text(m_first).toString()),
                             m_first);
        }
        if (!(this->*word->read)())
            return false;
    } else {
        warnOfUnknown();
    }
    m_frame.add(option, m_line.at(m_first).start, m_line.at(m_end - 1).end);
    index = m_end;
    return true;
}

bool OptionReader::readOffset(int &offset)
{
    const char *const what = QT_TRANSLATE_NOOP("Lantern", "a whole number of pixels");
    if (!hasValue(what))
        return false;
    if (!readInteger(m_line.text(m_first + 2), offset))
        return m_report.expected(what, m_first + 2);
    m_report.tokens(TokenKind::Option, m_first + 1, m_first + 2);
    return hasNothing(m_first + 3);
}

bool OptionReader::readFlip()
{
    const char *const what = QT_TRANSLATE_NOOP("Lantern", "'h', 'v' or 'hv'");
    if (!hasValue(what))
        return false;
    const int number = indexOfWord(m_line.text(m_first + 2), flipWords());
    if (number < 0)
        return m_report.expected(what, m_first + 2);
    m_frame.flip = static_cast<unsigned char>(number + 1);
    m_report.token(TokenKind::Keyword, m_first + 2);
    return hasNothing(m_first + 3);
}

bool OptionReader::readMirror()
{
    m_frame.flip = FrameCode::Horizontal;
    m_report.outdated(TokenKind::Option, m_first, QStringLiteral("flip = h"));
    return hasNothing(m_first + 1);
}

bool OptionReader::readScale()
{
    const char *const what = QT_TRANSLATE_NOOP("Lantern", "a scale such as 2 or 1.5 x 2");
    if (!hasValue(what))
        return false;
    const int start = m_line.at(m_first + 2).start;
    const int end = m_line.at(m_end - 1).end;
    bool isPair = false;
    if (!readPair(m_line.text().mid(start, end - start), m_frame.scale, isPair))
        return m_report.expectedAt(what, start, end);
    m_report.tokens(TokenKind::Option, m_first + 1, m_end - 1);
    return true;
}

bool OptionReader::readAngle()
{
    const char *const what = QT_TRANSLATE_NOOP("Lantern", "a number of degrees");
    if (!hasValue(what))
        return false;
    if (!readNumber(m_line.text(m_first + 2), m_frame.angle))
        return m_report.expected(what, m_first + 2);
    m_report.tokens(TokenKind::Option, m_first + 1, m_first + 2);
    return hasNothing(m_first + 3);
}

bool OptionReader::readRotate()
{
    m_report.outdated(TokenKind::Option, m_first, QStringLiteral("angle"));
    return readAngle();
}

bool OptionReader::readBlend()
{
    const char *const what = QT_TRANSLATE_NOOP("Lantern", "a way to blend such as 'addition'");
    if (!hasValue(what))
        return false;
    const int mode = indexOfWord(m_line.text(m_first + 2), blendWords());
    if (mode < 0)
        return m_report.expected(what, m_first + 2);
    m_report.token(TokenKind::Keyword, m_first + 2);
    m_frame.blend = FrameCode::Blend();
    m_frame.blend.mode = FrameCode::Blend::Mode(mode);
    return readFactor(m_first + 3, m_frame.blend.source)
        && readFactor(m_first + 4, m_frame.blend.destination) && hasNothing(m_first + 5);
}

bool OptionReader::readFactor(int index, double &factor)
{
    if (index >= m_end)
        return true;
    if (!readNumber(m_line.text(index), factor))
        return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "a factor, which is a number"),
                                 index);
    m_report.token(TokenKind::Number, index);
    return true;
}

bool OptionReader::readLoop()
{
    m_frame.loop = true;
    return hasNothing(m_first + 1);
}

bool OptionReader::readPlay()
{
    const int sound = m_first + 1;
    if (!m_line.isName(sound))
        return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "the name of a sound"), sound);
    m_frame.sound = sound;
    m_report.token(TokenKind::Name, sound);
    return hasNothing(sound + 1);
}

bool OptionReader::hasValue(const char *what)
{
    if (!m_line.is(m_first + 1, Token::Equals))
        return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "'='"), m_first + 1);
    if (!m_line.is(m_first + 2, Token::Word))
        return m_report.expected(what, m_first + 2);
    return true;
}

bool OptionReader::hasNothing(int index)
{
    return index >= m_end
        || m_report.expected(QT_TRANSLATE_NOOP("Lantern", "',' or the end of the line"), index);
}

void OptionReader::warnOfUnknown()
{
    m_report.span(TokenKind::Ignored, m_line.at(m_first).start, m_line.at(m_end - 1).end);
    if (m_report.isHeard()) {
        const QString word = clipped(m_line.text(m_first).toString());
        m_report.unknown(tr("The option '%1' is unknown.").arg(word), m_first, frameOptionWords());
    }
}

} // namespace

bool readFrame(const Line &line, FrameLine &frame, Report &report)
{
    report.token(TokenKind::Command, 0);
    if (!line.isName(1))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "the name of a sprite, or 'none'"), 1);
    const bool isNone = line.says(1, QLatin1String("none"));
    frame.sprite = isNone ? -1 : 1;
    report.token(isNone ? TokenKind::Keyword : TokenKind::Name, 1);
    if (line.says(2, QLatin1String("wait")))
        report.outdated(TokenKind::Keyword, 2, QStringLiteral(":"));
    else if (!line.is(2, Token::Colon))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "':' and a number of ticks"), 2);
    if (line.says(3, QLatin1String("forever"))) {
        frame.delay = -1;
        report.token(TokenKind::Keyword, 3);
    } else if (line.is(3, Token::Word) && readInteger(line.text(3), frame.delay)
               && frame.delay >= 0) {
        report.token(TokenKind::Number, 3);
        if (frame.delay == 0)
            report.warning(TokenKind::Number, Report::tr("A frame of 0 ticks is never shown."), 3);
    } else {
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "a number of ticks or 'forever'"), 3);
    }
    OptionReader options(line, frame, report);
    for (int next = 4; next < line.count();) {
        if (!line.is(next, Token::Comma))
            return report.expected(QT_TRANSLATE_NOOP("Lantern", "',' and an option"), next);
        ++next;
        if (!options.read(next))
            return false;
    }
    return true;
}

const QStringList &frameOptionWords()
{
    static const QStringList words = {QStringLiteral("x"),     QStringLiteral("y"),
                                      QStringLiteral("flip"),  QStringLiteral("scale"),
                                      QStringLiteral("angle"), QStringLiteral("blend"),
                                      QStringLiteral("loop"),  QStringLiteral("play")};
    return words;
}

const QStringList &flipWords()
{
    // In the order of FrameCode::FlipFlag, from Horizontal on.
    static const QStringList words = {QStringLiteral("h"), QStringLiteral("v"),
                                      QStringLiteral("hv")};
    return words;
}

const QStringList &blendWords()
{
    // In the order of FrameCode::Blend::Mode.
    static const QStringList words = {QStringLiteral("none"),        QStringLiteral("addition"),
                                      QStringLiteral("subtraction"), QStringLiteral("overlay"),
                                      QStringLiteral("hardlight"),   QStringLiteral("dodge"),
                                      QStringLiteral("opacity")};
    return words;
}

} // namespace Lantern
