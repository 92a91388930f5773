// SPDX-License-Identifier: MIT
#include "studio/window/syntaxcolors.h"

#include "code/codedocument.h"
#include "studio/colors.h"

#include <QTextCharFormat>

namespace Studio {

namespace {

// The names of the host's formats by the number of the token. What a number means is the engine's
// to say, apart from that of comments.
constexpr const char *formatKeys[Vela::CodeParserSyntax::TokenTypeCount] = {
    "operator", "comment",  "number",  "string",   "property",
    "keyword",  "property", "section", "function", "information",
};

constexpr char generationProperty[] = "studio_colors";

} // namespace

SyntaxColors::SyntaxColors(const Colors &colors)
    : m_colors(colors)
{
    setFormats();
}

void SyntaxColors::update()
{
    if (setFormats())
        ++m_generation;
}

bool SyntaxColors::setFormats()
{
    bool changed = false;
    for (int type = 0; type < Vela::CodeParserSyntax::TokenTypeCount; ++type) {
        const QTextCharFormat format = m_colors.format(QLatin1String(formatKeys[type]));
        if (format == Vela::CodeDocument::syntaxFormat(type))
            continue;
        Vela::CodeDocument::setSyntaxFormat(type, format);
        changed = true;
    }
    return changed;
}

void SyntaxColors::refresh(Vela::CodeDocument &document) const
{
    // Documents are loaded behind the program's start, so none is older than generation 0.
    if (document.property(generationProperty).toInt() == m_generation)
        return;
    document.setProperty(generationProperty, m_generation);
    document.rehighlight();
}

} // namespace Studio
