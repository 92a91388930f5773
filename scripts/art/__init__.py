"""The pictures of examples/meadow, drawn by make_art.py."""
