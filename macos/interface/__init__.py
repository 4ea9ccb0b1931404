"""Holds what program and stand-in take from macOS against tables of what macOS has."""
