// SPDX-License-Identifier: MIT
#include "frame/ftranslator.h"

#include <iterator>

namespace Vela {

struct FTranslator::Entry
{
    const char *text = nullptr;
    const char *toolTip = nullptr;
};

// An entry's place is its id, which actions, labels and TextCodecs refer to: new entries go to the
// end, and none is ever taken out.
const FTranslator::Entry FTranslator::entries[] = {
    // 0: Names of text encodings
    {QT_TR_NOOP("System")},
    {QT_TR_NOOP("System default")},
    {QT_TR_NOOP("Baltic")},
    {QT_TR_NOOP("Central European")},
    {QT_TR_NOOP("Chinese (Simplified)")},
    {QT_TR_NOOP("Chinese (Traditional)")},
    {QT_TR_NOOP("Cyrillic")},
    {QT_TR_NOOP("Hebrew")},
    {QT_TR_NOOP("Japanese")},
    {QT_TR_NOOP("Korean")},
    {QT_TR_NOOP("Latin/Arabic")},
    {QT_TR_NOOP("Latin/Baltic")},
    {QT_TR_NOOP("Latin/Bengali")},
    {QT_TR_NOOP("Latin/Celtic")},
    {QT_TR_NOOP("Latin/Cyrillic")},
    {QT_TR_NOOP("Latin/Devanagari")},
    {QT_TR_NOOP("Latin/Eastern European")},
    {QT_TR_NOOP("Latin/Greek")},
    {QT_TR_NOOP("Latin/Gujarati")},
    {QT_TR_NOOP("Latin/Gurmukhī")},
    {QT_TR_NOOP("Latin/Hebrew")},
    {QT_TR_NOOP("Latin/Kannada")},
    {QT_TR_NOOP("Latin/Malayalam")},
    {QT_TR_NOOP("Latin/Nordic")},
    {QT_TR_NOOP("Latin/North European")},
    {QT_TR_NOOP("Latin/Odia")},
    {QT_TR_NOOP("Latin/South European")},
    {QT_TR_NOOP("Latin/South-Eastern European")},
    {QT_TR_NOOP("Latin/Tamil")},
    {QT_TR_NOOP("Latin/Telugu")},
    {QT_TR_NOOP("Latin/Thai")},
    {QT_TR_NOOP("Latin/Turkish")},
    {QT_TR_NOOP("Latin/Western European")},
    {QT_TR_NOOP("Modern Greek")},
    {QT_TR_NOOP("Tamil")},
    {QT_TR_NOOP("Unicode")},
    {QT_TR_NOOP("Vietnamese")},
    {QT_TR_NOOP("Western European")},
    {QT_TR_NOOP("Unknown")},

    // 39: Languages that an encoding serves
    {QT_TR_NOOP("Estonian, Latvian, Lithuanian, Latgalian, (also supports Polish, Slovene, "
                "Swedish, Finnish, Norwegian, Danish, German, English, Rotokas, Hawaiian, "
                "Niuean, Samoan, Tokelauan, Tongan, Tuvaluan)")},
    {QT_TR_NOOP("Czech, Polish, Slovak, Hungarian, Slovene, Serbo-Croatian (Latin script), "
                "Montenegrin, Romanian (before 1993 spelling reform), Gagauz, Rotokas, "
                "Albanian, English, German, Luxembourgish")},
    {QT_TR_NOOP("Chinese (Simplified)")},
    {QT_TR_NOOP("Chinese (Traditional)")},
    {QT_TR_NOOP("Chinese (Traditional) - Hong Kong")},
    {QT_TR_NOOP("Russian, Ukrainian, Belarusian, Bulgarian, Serbian Cyrillic, Bosnian "
                "Cyrillic, Macedonian, Rotokas, Rusyn, English")},
    {QT_TR_NOOP("Russian, Bulgarian")},
    {QT_TR_NOOP("Russian, Bulgarian, Ukrainian")},
    {QT_TR_NOOP("Russian, Belarusian, Bulgarian, Ukrainian")},
    {QT_TR_NOOP("Japanese")},
    {QT_TR_NOOP("Korean")},
    {QT_TR_NOOP("Arabic")},
    {QT_TR_NOOP("Arabic, Persian, Urdu, English, French (except capital letters with "
                "diacritics)")},
    {QT_TR_NOOP("Baltic languages")},
    {QT_TR_NOOP("Irish, Manx, Scottish Gaelic, Welsh, Cornish, Breton, English")},
    {QT_TR_NOOP("Russian, Bulgarian, Belarusian, Macedonian, Serbian, Ukrainian (partial)")},
    {QT_TR_NOOP("Albanian, Bosnian, Croatian, Czech, German (missing uppercase ẞ), "
                "Hungarian, Polish, Rotokas, Serbian Latin, Slovak, Slovene, Upper "
                "Sorbian, Lower Sorbian, Turkmen")},
    {QT_TR_NOOP("Greek, English")},
    {QT_TR_NOOP("Hebrew, English")},
    {QT_TR_NOOP("Nordic languages")},
    {QT_TR_NOOP("Estonian, Latvian, Lithuanian, Greenlandic, Sámi")},
    {QT_TR_NOOP("Maltese, Esperanto, Turkish, English, German")},
    {QT_TR_NOOP("Albanian, Gaj's Latin alphabet (Croatian, Bosnian, Serbian), Hungarian, "
                "Polish, Romanian, Slovene (also French, German, Italian, Irish)")},
    {QT_TR_NOOP("Thai, English")},
    {QT_TR_NOOP("Turkish, English")},
    {QT_TR_NOOP("Afrikaans, Albanian, Breton, Catalan, Danish, Dutch, English, Estonian, "
                "Faroese, Finnish, French, Galician, German (missing uppercase ẞ), "
                "Icelandic, Irish, Italian, Latin, Luxembourgish, Malay, Norwegian, "
                "Occitan, Portuguese, Rhaeto-Romanic, Rotokas, Scottish Gaelic")},
    {QT_TR_NOOP("Greek, English, mathematical usage")},
    {QT_TR_NOOP("Tamil")},
    {QT_TR_NOOP("Any language")},
    {QT_TR_NOOP("Vietnamese, English, French, German, Spanish, Danish, Norwegian, Swedish, "
                "Finnish, Irish, Albanian, Luxembourgish, Tswana. With combining "
                "diacritics: Estonian, Italian, Portuguese, Yoruba, Guarani, Igbo, "
                "Nauruan, Devanagari transliteration")},
    {QT_TR_NOOP("Italian, Spanish, Portuguese, French, German, Dutch, English, Danish, "
                "Swedish, Norwegian, Icelandic")},
    {QT_TR_NOOP("Bengali script")},
    {QT_TR_NOOP("Devanagari script")},
    {QT_TR_NOOP("Gujarati script")},
    {QT_TR_NOOP("Kannada script")},
    {QT_TR_NOOP("Malayalam script")},
    {QT_TR_NOOP("Odia script")},
    {QT_TR_NOOP("Gurmukhī script")},
    {QT_TR_NOOP("Telugu script")},

    // 78: Questions about a file's encoding
    {QT_TR_NOOP("No document.")},
    {QT_TR_NOOP("Reload")},
    {QT_TR_NOOP("Do you want to reload the file using the specified encoding?\n"
                "This will make the editor display characters using this encoding, "
                "otherwise characters will remain unchanged and only saved using this "
                "encoding.")},

    // 81: View of the workspace
    {QT_TR_NOOP("Code toolbar"), QT_TR_NOOP("Show/Hide the code toolbar in all code editors")},
    {QT_TR_NOOP("Centralize origin"),
     QT_TR_NOOP("Place the origin at the center of the workspace")},
    {QT_TR_NOOP("Main cross"), QT_TR_NOOP("Show/Hide the main cross")},
    {QT_TR_NOOP("Secondary cross"), QT_TR_NOOP("Show/Hide the secondary cross")},
    {QT_TR_NOOP("Extra cross"), QT_TR_NOOP("Show/Hide the extra cross")},
    {QT_TR_NOOP("Rulers"), QT_TR_NOOP("Show/Hide the Rulers")},
    {QT_TR_NOOP("Guide lines"), QT_TR_NOOP("Show/Hide the Guide lines")},
    {QT_TR_NOOP("Attack Box"), QT_TR_NOOP("Show/Hide the Attack contact boxes")},
    {QT_TR_NOOP("Collision Box"), QT_TR_NOOP("Show/Hide the Collision contact boxes")},

    // 90: Code snippets
    {QT_TR_NOOP("Code snippets")},
    {QT_TR_NOOP("Insert code snippet"), QT_TR_NOOP("Insert the current code snippet")},
    {QT_TR_NOOP("New code snippet"), QT_TR_NOOP("Create a new code snippet")},
    {QT_TR_NOOP("Edit code snippet"), QT_TR_NOOP("Edit the current code snippet")},

    // 94: Code editor
    {QT_TR_NOOP("Code")},
    {QT_TR_NOOP("Go to line..."), QT_TR_NOOP("Go to the specifed line")},
    {QT_TR_NOOP("Previous syntax error"), QT_TR_NOOP("Go to the previous syntax error")},
    {QT_TR_NOOP("Next syntax error"), QT_TR_NOOP("Go to the next syntax error")},
    {QT_TR_NOOP("Previous deprecation"), QT_TR_NOOP("Go to the previous deprecation")},
    {QT_TR_NOOP("Next deprecation"), QT_TR_NOOP("Go to the next deprecation")},
    {QT_TR_NOOP("Comment/Uncomment selection"), QT_TR_NOOP("Comment/Uncomment all selected lines")},
    {QT_TR_NOOP("Fold all code blocks")},
    {QT_TR_NOOP("Unfold all coded blocks")},
    {QT_TR_NOOP("Auto-indent selection"), QT_TR_NOOP("Auto-indent selected lines")},
    {QT_TR_NOOP("Auto-format selection"), QT_TR_NOOP("Auto-format selected lines")},
    {QT_TR_NOOP("Encoding"), QT_TR_NOOP("Selects the file encoding")},

    // 106: Files
    {QT_TR_NOOP("New")},
    {QT_TR_NOOP("Open")},
    {QT_TR_NOOP("Save")},
    {QT_TR_NOOP("Save as...")},

    // 110: Palettes
    {QT_TR_NOOP("Palettes")},
    {QT_TR_NOOP("Clear"), QT_TR_NOOP("Remove all palettes")},
    {QT_TR_NOOP("Clear all unused"), QT_TR_NOOP("Remove all unused palettes")},
    {QT_TR_NOOP("Add"), QT_TR_NOOP("Add one or more palettes")},
    {QT_TR_NOOP("Delete"), QT_TR_NOOP("Remove the current palette")},
    {QT_TR_NOOP("Remove all duplicates"), QT_TR_NOOP("Remove all duplicate palettes")},
    {QT_TR_NOOP("Change..."), QT_TR_NOOP("Define new colors to the palette from a file...")},
    {QT_TR_NOOP("Save as..."), QT_TR_NOOP("Save the palette as a file...")},
    {QT_TR_NOOP("Remap"), QT_TR_NOOP("Open the palette Remap tool")},
    {QT_TR_NOOP("Undo")},
    {QT_TR_NOOP("Redo")},
    {QT_TR_NOOP("Exchange position of selected colors")},
    {QT_TR_NOOP("Sets the color of the selected slots")},
    {QT_TR_NOOP("Apply to the sprites"),
     QT_TR_NOOP("Apply the current palette to the specified sprites")},
    {QT_TR_NOOP("Previous palette")},
    {QT_TR_NOOP("Next palette")},
    {QT_TR_NOOP("Open palette"), QT_TR_NOOP("Open palette from a file...")},
    {QT_TR_NOOP("Save current palette"), QT_TR_NOOP("Save current palette to a new file...")},

    // 128: Animations
    {QT_TR_NOOP("Animations")},
    {QT_TR_NOOP("Edit code"), QT_TR_NOOP("Edit animation code in code editor")},
    {QT_TR_NOOP("Add"), QT_TR_NOOP("Add a new animation")},
    {QT_TR_NOOP("Delete"), QT_TR_NOOP("Remove the current animation")},
    {QT_TR_NOOP("Duplicate"), QT_TR_NOOP("Duplicate the current animation")},
    {QT_TR_NOOP("Edit animation code"), QT_TR_NOOP("Edit the code of current animation")},
    {QT_TR_NOOP("Save as animated GIF..."),
     QT_TR_NOOP("Save the current animation as an animated GIF...")},
    {QT_TR_NOOP("Play"), QT_TR_NOOP("Play the current animation")},
    {QT_TR_NOOP("Stop"), QT_TR_NOOP("Stop the animation")},
    {QT_TR_NOOP("Move 1px to the left"), QT_TR_NOOP("Move the sprite 1px to the left")},
    {QT_TR_NOOP("Move 1px up"), QT_TR_NOOP("Move the sprite 1px up")},
    {QT_TR_NOOP("Move 1px to the right"), QT_TR_NOOP("Move the sprite 1px to the right")},
    {QT_TR_NOOP("Move 1px down"), QT_TR_NOOP("Move the sprite 1px down")},
    {QT_TR_NOOP("Add frame"), QT_TR_NOOP("Add a new frame in the animation")},
    {QT_TR_NOOP("Delete frame"), QT_TR_NOOP("Remove the current frame")},
    {QT_TR_NOOP("Add Attack box"),
     QT_TR_NOOP("Enable/disable the drawing mode for Attack contact box")},
    {QT_TR_NOOP("Add Collision box"),
     QT_TR_NOOP("Enable/disable the drawing mode for Collision contact box")},
    {QT_TR_NOOP("Delete selected Contact boxes"), QT_TR_NOOP("Remove all selected Contact boxes")},
    {QT_TR_NOOP("Delete all Contact boxes"),
     QT_TR_NOOP("Remove all Contact boxes of current frame")},
    {QT_TR_NOOP("Delete all Contact boxes of current animation"),
     QT_TR_NOOP("Remove all Contact boxs of current animation")},
    {QT_TR_NOOP("Switch Contact box type"),
     QT_TR_NOOP("Switch type of all selected Contact boxes")},
    {QT_TR_NOOP("Copy Contact boxes of previous frame"),
     QT_TR_NOOP("Copy all Contact boxes of previous frame")},
    {QT_TR_NOOP("Use these Contact boxes in all other instances of this frame")},
    {QT_TR_NOOP("Optimize"), QT_TR_NOOP("Optimize animation code")},
    {QT_TR_NOOP("Export..."), QT_TR_NOOP("Export one or more animations to file system...")},
    {QT_TR_NOOP("Import..."), QT_TR_NOOP("Import one or more animations from file system...")},
    {QT_TR_NOOP("Import from another project..."),
     QT_TR_NOOP("Import one or more animations from another opened project...")},
    {QT_TR_NOOP("Apply time to all next frames")},
    {QT_TR_NOOP("Apply flip to all next frames")},
    {QT_TR_NOOP("Apply offset to all next frames")},
    {QT_TR_NOOP("Apply scale to all next frames")},

    // 159: Alignment of frames
    {QT_TR_NOOP("Alignment Tool")},
    {QT_TR_NOOP("Frames:")},
    {QT_TR_NOOP("X axis:")},
    {QT_TR_NOOP("Y axis:")},
    {QT_TR_NOOP("Flip:")},
    {QT_TR_NOOP("None")},
    {QT_TR_NOOP("Vertically")},
    {QT_TR_NOOP("Horizontally")},
    {QT_TR_NOOP("Both")},
    {QT_TR_NOOP("X scale:")},
    {QT_TR_NOOP("Y scale:")},
    {QT_TR_NOOP("Angle:")},
    {QT_TR_NOOP("Time:")},

    // 172: Animation player
    {QT_TR_NOOP("Previous animation")},
    {QT_TR_NOOP("Next animation")},
    {QT_TR_NOOP("Previous frame")},
    {QT_TR_NOOP("Next frame")},
    {QT_TR_NOOP("OnionSkin"), QT_TR_NOOP("Enable OnionSkin")},
    {QT_TR_NOOP("Find animation")},

    // 178: Sprites
    {QT_TR_NOOP("Sprites")},
    {QT_TR_NOOP("Previous sprite"), QT_TR_NOOP("Previous sprite")},
    {QT_TR_NOOP("Next sprite"), QT_TR_NOOP("Next sprite")},

    // 181: Canvas tools
    {QT_TR_NOOP("Move canvas")},
    {QT_TR_NOOP("Move selection")},
    {QT_TR_NOOP("Rectangle selection")},
    {QT_TR_NOOP("Free selection")},
    {QT_TR_NOOP("Magic Wand")},
    {QT_TR_NOOP("Color picker")},
    {QT_TR_NOOP("Pen")},
    {QT_TR_NOOP("Eraser")},
    {QT_TR_NOOP("Remap pen")},
    {QT_TR_NOOP("Paint bucket")},

    // 191: Blend modes
    {QT_TR_NOOP("Normal")},
    {QT_TR_NOOP("Add"), QT_TR_NOOP("Add one or more sprites")},
    {QT_TR_NOOP("Multiply")},
    {QT_TR_NOOP("Screen")},
    {QT_TR_NOOP("Overlay")},
    {QT_TR_NOOP("Darken")},
    {QT_TR_NOOP("Lighten")},
    {QT_TR_NOOP("Color Dodge")},
    {QT_TR_NOOP("Color Burn")},
    {QT_TR_NOOP("Hard Light")},
    {QT_TR_NOOP("Soft Light")},
    {QT_TR_NOOP("Difference")},
    {QT_TR_NOOP("Exclusion")},

    // 204: Layers
    {QT_TR_NOOP("Layers")},
    {QT_TR_NOOP("Add"), QT_TR_NOOP("Add a new layer")},
    {QT_TR_NOOP("Delete"), QT_TR_NOOP("Remove the current layer")},
    {QT_TR_NOOP("Duplicate"), QT_TR_NOOP("Duplicate the current layer")},
    {QT_TR_NOOP("Merge visible"), QT_TR_NOOP("Merge all visible layers into one")},
    {QT_TR_NOOP("Merge all"), QT_TR_NOOP("Merge all layers into one")},
    {QT_TR_NOOP("Save visible as sprites")},

    // 211: Sprite list and images
    {QT_TR_NOOP("Play")},
    {QT_TR_NOOP("Delete"), QT_TR_NOOP("Remove the current sprite")},
    {QT_TR_NOOP("Change image..."), QT_TR_NOOP("Change the image of the sprite from a file...")},
    {QT_TR_NOOP("Save image changes"), QT_TR_NOOP("Save changes on current sprite")},
    {QT_TR_NOOP("Save image..."), QT_TR_NOOP("Save one or more sprites as image files...")},
    {QT_TR_NOOP("Play layers")},
    {QT_TR_NOOP("Crop image"), QT_TR_NOOP("Remove free borders from the current sprite")},
    {QT_TR_NOOP("Duplicate"), QT_TR_NOOP("Duplicate the current sprite")},
    {QT_TR_NOOP("Export..."), QT_TR_NOOP("Export one or more sprites to file system...")},
    {QT_TR_NOOP("Import..."), QT_TR_NOOP("Import one or more sprites from file system...")},
    {QT_TR_NOOP("Import from another project..."),
     QT_TR_NOOP("Import one or more sprites from another opened project...")},
    {QT_TR_NOOP("Switch to the frame's sprite"),
     QT_TR_NOOP("Switch to the sprite of the current frame")},

    // 223: Canvas
    {QT_TR_NOOP("Original"), QT_TR_NOOP("Split the viewport with the Original size at left")},
    {QT_TR_NOOP("Image")},
    {QT_TR_NOOP("Properties"), QT_TR_NOOP("Canvas properties (format and size)")},
    {QT_TR_NOOP("Resize"), QT_TR_NOOP("Resize all layers")},
    {QT_TR_NOOP("Rotation")},
    {QT_TR_NOOP("Rotate"), QT_TR_NOOP("Rotate all layers")},
    {QT_TR_NOOP("Flip horizontally"), QT_TR_NOOP("Flip all layers horizontally")},
    {QT_TR_NOOP("Flip vertically"), QT_TR_NOOP("Flip all layers vertically")},
    {QT_TR_NOOP("Split channels"),
     QT_TR_NOOP("Split the RGB channels of the current sprite as separate sprites")},

    // 232: Canvas selection
    {QT_TR_NOOP("Select")},
    {QT_TR_NOOP("All"), QT_TR_NOOP("Select the entire canvas")},
    {QT_TR_NOOP("Deselect"), QT_TR_NOOP("Clear any selection")},
    {QT_TR_NOOP("Invert"), QT_TR_NOOP("Invert the current selection")},
    {QT_TR_NOOP("Switch to the sprite palette"),
     QT_TR_NOOP("Switch the current palette to the palette of the sprite")},

    // 237: Sounds
    {QT_TR_NOOP("Sounds")},
    {QT_TR_NOOP("Add"), QT_TR_NOOP("Add one or more sounds")},
    {QT_TR_NOOP("Delete"), QT_TR_NOOP("Remove the current sound")},
    {QT_TR_NOOP("Change sound..."), QT_TR_NOOP("Change the current sound from a file...")},
    {QT_TR_NOOP("Save sound as..."), QT_TR_NOOP("Save the sound as WAV...")},
    {QT_TR_NOOP("Resample"), QT_TR_NOOP("Resample one or more sounds")},
    {QT_TR_NOOP("Duplicate"), QT_TR_NOOP("Duplicate the current sound")},
    {QT_TR_NOOP("Play"), QT_TR_NOOP("Play the current sound")},
    {QT_TR_NOOP("Play with loop"), QT_TR_NOOP("Play the current sound with infinite loop")},
    {QT_TR_NOOP("Pause")},
    {QT_TR_NOOP("Stop"), QT_TR_NOOP("Stop the sound")},
    {QT_TR_NOOP("Export..."), QT_TR_NOOP("Export one or more sounds to file system...")},
    {QT_TR_NOOP("Import..."), QT_TR_NOOP("Import one or more sounds from file system...")},
    {QT_TR_NOOP("Import from another project..."),
     QT_TR_NOOP("Import one or more sounds from another opened project...")},

    // 251: Sound editor
    {QT_TR_NOOP("Previous sound")},
    {QT_TR_NOOP("Select")},
    {QT_TR_NOOP("Next sound")},
    {QT_TR_NOOP("All")},
    {QT_TR_NOOP("Deselect")},
    {QT_TR_NOOP("Remove selected")},
    {QT_TR_NOOP("Fill silence")},
    {QT_TR_NOOP("Fade in")},
    {QT_TR_NOOP("Fade out")},
    {QT_TR_NOOP("Save changes")},
    {QT_TR_NOOP("Discard changes")},
    {QT_TR_NOOP("Effects")},
    {QT_TR_NOOP("Selection:")},
    {QT_TR_NOOP("Start:")},
    {QT_TR_NOOP("End:")},
    {QT_TR_NOOP("Selection start:")},
    {QT_TR_NOOP("Selection end:")},
    {QT_TR_NOOP("Current sample:")},
    {QT_TR_NOOP("Move view offset")},
    {QT_TR_NOOP("Zoom")},
    {QT_TR_NOOP("Free selection")},
    {QT_TR_NOOP("Move selection")},
    {QT_TR_NOOP("Horizontal resizer")},
    {QT_TR_NOOP("Vertical resizer")},
    {QT_TR_NOOP("Wave draw tool")},

    // 276: Organizer
    {QT_TR_NOOP("Organizer")},
    {QT_TR_NOOP("Move one position up")},
    {QT_TR_NOOP("Move one position down")},
    {QT_TR_NOOP("Move ten positions up")},
    {QT_TR_NOOP("Move ten positions down")},
    {QT_TR_NOOP("Move to the top")},
    {QT_TR_NOOP("Move to the bottom")},
    {QT_TR_NOOP("Organize automatically")},

    // 284: Sprite explorer
    {QT_TR_NOOP("Sprite explorer")},
    {QT_TR_NOOP("Add selected to the current animation")},
    {QT_TR_NOOP("Add all to the current animation")},
    {QT_TR_NOOP("New animation with selected")},
    {QT_TR_NOOP("New animation with all")},
    {QT_TR_NOOP("Add selected as layers")},
    {QT_TR_NOOP("Add all as layers")},
    {QT_TR_NOOP("Add selected as layers (aligned)")},
    {QT_TR_NOOP("Add all as layers (aligned)")},
    {QT_TR_NOOP("Save selected images")},

    // 294: Emulator
    {QT_TR_NOOP("Emulator")},
};

FTranslator *FTranslator::instance()
{
    static FTranslator translator;
    return &translator;
}

QString FTranslator::translate(int id) const
{
    return tr(entry(id).text);
}

QString FTranslator::toolTip(int id) const
{
    return tr(entry(id).toolTip);
}

FTranslator::Entry FTranslator::entry(int id)
{
    return id >= 0 && id < int(std::size(entries)) ? entries[id] : Entry();
}

} // namespace Vela
