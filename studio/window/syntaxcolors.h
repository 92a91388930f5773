// SPDX-License-Identifier: MIT
#pragma once

namespace Vela {
class CodeDocument;
}

namespace Studio {

class Colors;

/// The host's colours on the tokens of definition texts. The formats are those of the whole
/// program; a document takes new ones when it is highlighted again, which costs a pass over all of
/// it and is therefore left to the moment when it is shown.
class SyntaxColors
{
public:
    explicit SyntaxColors(const Colors &colors);

    /// Sets the formats of all kinds of tokens anew.
    void update();
    /// Highlights a document again if its formats are older than the last update.
    void refresh(Vela::CodeDocument &document) const;

private:
    /// Returns whether one is another than it was.
    bool setFormats();

    const Colors &m_colors;
    int m_generation = 0;
};

} // namespace Studio
