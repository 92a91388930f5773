<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Vela::SnippetManager</name>
    <message>
        <source>animation</source>
        <comment>animation</comment>
        <translation>Animation</translation>
    </message>
    <message>
        <source>idle</source>
        <comment>animation</comment>
        <translation>Stehen</translation>
    </message>
    <message>
        <source>walk</source>
        <comment>animation</comment>
        <translation>Gehen</translation>
    </message>
    <message>
        <source>run</source>
        <comment>animation</comment>
        <translation>Laufen</translation>
    </message>
    <message>
        <source>jump</source>
        <comment>animation</comment>
        <translation>Springen</translation>
    </message>
    <message>
        <source>fall</source>
        <comment>animation</comment>
        <translation>Fallen</translation>
    </message>
    <message>
        <source>turn</source>
        <comment>animation</comment>
        <translation>Drehen</translation>
    </message>
    <message>
        <source>lift</source>
        <comment>animation</comment>
        <translation>Heben</translation>
    </message>
    <message>
        <source>end</source>
        <comment>animation</comment>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Animation</source>
        <comment>animation</comment>
        <translation>Animation</translation>
    </message>
    <message>
        <source>Title</source>
        <comment>animation</comment>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Frames</source>
        <comment>animation</comment>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Sprites, without their number</source>
        <comment>animation</comment>
        <translation>Sprites, ohne ihre Nummer</translation>
    </message>
    <message>
        <source>Ticks of a frame</source>
        <comment>animation</comment>
        <translation>Ticks eines Bildes</translation>
    </message>
    <message>
        <source>attack</source>
        <comment>attack</comment>
        <translation>Angriff</translation>
    </message>
    <message>
        <source>Sprite</source>
        <comment>attack</comment>
        <translation>Sprite</translation>
    </message>
    <message>
        <source>Ticks</source>
        <comment>attack</comment>
        <translation>Ticks</translation>
    </message>
    <message>
        <source>Sound</source>
        <comment>attack</comment>
        <translation>Ton</translation>
    </message>
    <message>
        <source>Scale</source>
        <comment>attack</comment>
        <translation>Maßstab</translation>
    </message>
    <message>
        <source>Left edge of the box</source>
        <comment>attack</comment>
        <translation>Linker Rand der Box</translation>
    </message>
    <message>
        <source>Upper edge</source>
        <comment>attack</comment>
        <translation>Oberer Rand</translation>
    </message>
    <message>
        <source>Width</source>
        <comment>attack</comment>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <comment>attack</comment>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>none</source>
        <comment>attack</comment>
        <translation>keine</translation>
    </message>
    <message>
        <source>Depth</source>
        <comment>attack</comment>
        <translation>Tiefe</translation>
    </message>
    <message>
        <source>boxes</source>
        <comment>boxes</comment>
        <translation>Boxen</translation>
    </message>
    <message>
        <source>Attack: left edge</source>
        <comment>boxes</comment>
        <translation>Angriff: linker Rand</translation>
    </message>
    <message>
        <source>Upper edge</source>
        <comment>boxes</comment>
        <translation>Oberer Rand</translation>
    </message>
    <message>
        <source>Width</source>
        <comment>boxes</comment>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <comment>boxes</comment>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Body: left edge</source>
        <comment>boxes</comment>
        <translation>Körper: linker Rand</translation>
    </message>
    <message>
        <source>evening</source>
        <comment>evening</comment>
        <translation>Abend</translation>
    </message>
    <message>
        <source>Name</source>
        <comment>evening</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>Start, in ticks</source>
        <comment>evening</comment>
        <translation>Beginn, in Ticks</translation>
    </message>
    <message>
        <source>End, in ticks</source>
        <comment>evening</comment>
        <translation>Ende, in Ticks</translation>
    </message>
    <message>
        <source>Light at the start, 0 to 1</source>
        <comment>evening</comment>
        <translation>Licht am Beginn, 0 bis 1</translation>
    </message>
    <message>
        <source>Light at the end, 0 to 1</source>
        <comment>evening</comment>
        <translation>Licht am Ende, 0 bis 1</translation>
    </message>
    <message>
        <source>Volume at the end, 0 to 1</source>
        <comment>evening</comment>
        <translation>Lautstärke am Ende, 0 bis 1</translation>
    </message>
    <message>
        <source>include</source>
        <comment>include</comment>
        <translation>Einbinden</translation>
    </message>
    <message>
        <source>File, without .motion</source>
        <comment>include</comment>
        <translation>Datei, ohne .motion</translation>
    </message>
    <message>
        <source>project</source>
        <comment>project</comment>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Name</source>
        <comment>project</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>Author</source>
        <comment>project</comment>
        <translation>Autor</translation>
    </message>
    <message>
        <source>character</source>
        <comment>project</comment>
        <translation>Figur</translation>
    </message>
    <message>
        <source>stage</source>
        <comment>project</comment>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>screen</source>
        <comment>project</comment>
        <translation>Bildschirm</translation>
    </message>
    <message>
        <source>shared</source>
        <comment>project</comment>
        <translation>gemeinsam</translation>
    </message>
    <message>
        <source>Kind</source>
        <comment>project</comment>
        <translation>Art</translation>
    </message>
    <message>
        <source>Stage</source>
        <comment>project</comment>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>Scale</source>
        <comment>project</comment>
        <translation>Maßstab</translation>
    </message>
    <message>
        <source>script</source>
        <comment>script</comment>
        <translation>Skript</translation>
    </message>
    <message>
        <source>Name</source>
        <comment>script</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>Thing that is near</source>
        <comment>script</comment>
        <translation>Ding in der Nähe</translation>
    </message>
    <message>
        <source>Text to show</source>
        <comment>script</comment>
        <translation>Text zum Anzeigen</translation>
    </message>
    <message>
        <source>Sound</source>
        <comment>script</comment>
        <translation>Ton</translation>
    </message>
    <message>
        <source>up</source>
        <comment>script</comment>
        <translation>hoch</translation>
    </message>
    <message>
        <source>down</source>
        <comment>script</comment>
        <translation>runter</translation>
    </message>
    <message>
        <source>Key</source>
        <comment>script</comment>
        <translation>Taste</translation>
    </message>
    <message>
        <source>walk</source>
        <comment>walk</comment>
        <translation>Gang</translation>
    </message>
    <message>
        <source>run</source>
        <comment>walk</comment>
        <translation>Laufen</translation>
    </message>
    <message>
        <source>swim</source>
        <comment>walk</comment>
        <translation>Schwimmen</translation>
    </message>
    <message>
        <source>fly</source>
        <comment>walk</comment>
        <translation>Fliegen</translation>
    </message>
    <message>
        <source>Animation</source>
        <comment>walk</comment>
        <translation>Animation</translation>
    </message>
    <message>
        <source>Sprites of the steps, without their number</source>
        <comment>walk</comment>
        <translation>Sprites der Schritte, ohne ihre Nummer</translation>
    </message>
    <message>
        <source>Sprite between the steps</source>
        <comment>walk</comment>
        <translation>Sprite zwischen den Schritten</translation>
    </message>
    <message>
        <source>Ticks of a frame</source>
        <comment>walk</comment>
        <translation>Ticks eines Bildes</translation>
    </message>
    <message>
        <source>Sound of a step</source>
        <comment>walk</comment>
        <translation>Ton eines Schritts</translation>
    </message>
    <message>
        <source>standing</source>
        <comment>walk</comment>
        <translation>auf der Stelle</translation>
    </message>
    <message>
        <source>to the right</source>
        <comment>walk</comment>
        <translation>nach rechts</translation>
    </message>
    <message>
        <source>to the left</source>
        <comment>walk</comment>
        <translation>nach links</translation>
    </message>
    <message>
        <source>Way</source>
        <comment>walk</comment>
        <translation>Weg</translation>
    </message>
</context>
</TS>
