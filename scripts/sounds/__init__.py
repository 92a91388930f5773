"""The sounds of examples/meadow, made by make_sounds.py."""
