"""The program that is shipped, run here in the stand-in desktop; README.md tells how."""
