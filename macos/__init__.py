"""Building, signing and checking the Mac application, on a Mac and elsewhere."""
